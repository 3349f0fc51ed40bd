#include "velm/D3D9Surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>

#include "velm/D3D9ResourceManager.h"

namespace velm::d3_d9_surface_posix_test {

/// A surface that counts its references and leaves its device's set when the last one is released.
class FakeSurface final : public IDirect3DSurface9 {
public:
    FakeSurface(std::set<FakeSurface*>& living, const D3DSURFACE_DESC& given)
        : desc(given), m_living(living) {}

    HRESULT WINAPI QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG WINAPI AddRef() override { return ++count; }
    ULONG WINAPI Release() override {
        const ULONG left = --count;
        if (left == 0) {
            m_living.erase(this);
            delete this;
        }
        return left;
    }
    HRESULT WINAPI GetDesc(D3DSURFACE_DESC* out) override {
        *out = desc;
        return D3D_OK;
    }

    const D3DSURFACE_DESC desc;
    ULONG count = 1;

private:
    std::set<FakeSurface*>& m_living;
};

/// A device that creates surfaces, unless told to fail, and cannot be reset while one is in its default pool.
class FakeDevice final : public IDirect3DDevice9 {
public:
    bool failCreation = false;
    std::set<FakeSurface*> living;
    BOOL lastDiscard = -1;
    BOOL lastLockable = -1;

    FakeSurface* Create(const D3DSURFACE_DESC& desc) {
        return *living.insert(new FakeSurface(living, desc)).first;
    }

    HRESULT WINAPI QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG WINAPI AddRef() override { return 1; }
    ULONG WINAPI Release() override { return 1; }
    HRESULT WINAPI Reset(D3DPRESENT_PARAMETERS*) override {
        const auto blocks = [](const FakeSurface* surface) { return surface->desc.Pool == D3DPOOL_DEFAULT; };
        return std::ranges::any_of(living, blocks) ? D3DERR_INVALIDCALL : D3D_OK;
    }
    HRESULT WINAPI CreateRenderTarget(UINT width, UINT height, D3DFORMAT format,
                                      D3DMULTISAMPLE_TYPE multiSample, DWORD quality, BOOL lockable,
                                      IDirect3DSurface9** surface, HANDLE*) override {
        lastLockable = lockable;
        return Create({format, D3DRTYPE_SURFACE, D3DUSAGE_RENDERTARGET, D3DPOOL_DEFAULT, multiSample, quality,
                       width, height},
                      surface);
    }
    HRESULT WINAPI CreateDepthStencilSurface(UINT width, UINT height, D3DFORMAT format,
                                             D3DMULTISAMPLE_TYPE multiSample, DWORD quality, BOOL discard,
                                             IDirect3DSurface9** surface, HANDLE*) override {
        lastDiscard = discard;
        return Create({format, D3DRTYPE_SURFACE, D3DUSAGE_DEPTHSTENCIL, D3DPOOL_DEFAULT, multiSample, quality,
                       width, height},
                      surface);
    }

private:
    HRESULT Create(const D3DSURFACE_DESC& desc, IDirect3DSurface9** surface) {
        *surface = failCreation ? nullptr : Create(desc);
        return failCreation ? D3DERR_NOTAVAILABLE : D3D_OK;
    }
};

D3DSURFACE_DESC Desc(DWORD usage, D3DPOOL pool = D3DPOOL_DEFAULT) {
    return {D3DFMT_D24S8, D3DRTYPE_SURFACE, usage, pool, D3DMULTISAMPLE_4_SAMPLES, 3, 640, 480};
}

class D3D9SurfaceTest : public testing::Test {
protected:
    D3D9SurfaceTest() { D3D9ResourceManager::Initialize(); }
    ~D3D9SurfaceTest() override {
        D3D9ResourceManager::Finalize();
        EXPECT_TRUE(m_device.living.empty()) << "a surface was never released";
    }

    FakeDevice m_device;
};

TEST_F(D3D9SurfaceTest, RebuildsByPoolAndUsage) {
    const struct {
        const char* what;
        D3DSURFACE_DESC desc;
        bool released, rebuilt;
        BOOL lockable, discard;  // -1: no render target or depth-stencil surface was requested
        DWORD flags = 0xFFFFFFFD;
        bool failCreation = false;
    } rows[] = {
        {"render target", Desc(D3DUSAGE_RENDERTARGET), true, true, FALSE, -1},
        {"depth-stencil, kept", Desc(D3DUSAGE_DEPTHSTENCIL), true, true, -1, FALSE},
        {"depth-stencil, discarded", Desc(D3DUSAGE_DEPTHSTENCIL), true, true, -1, TRUE, 2},
        {"both usages", Desc(D3DUSAGE_RENDERTARGET | D3DUSAGE_DEPTHSTENCIL), true, false, -1, -1},
        {"managed", Desc(D3DUSAGE_RENDERTARGET, D3DPOOL_MANAGED), false, false, -1, -1},
        {"creation fails", Desc(D3DUSAGE_RENDERTARGET), true, false, FALSE, -1, 2, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        D3DPRESENT_PARAMETERS parameters{};
        parameters.Flags = row.flags;
        m_device.lastLockable = m_device.lastDiscard = -1;
        D3D9Surface surface;
        IDirect3DSurface9* const first = m_device.Create(row.desc);
        surface.Bind(first);
        EXPECT_EQ(FAILED(m_device.Reset(&parameters)), row.released);
        D3D9ResourceManager::OnLost();
        EXPECT_EQ(surface.GetSurface(), row.released ? nullptr : first);
        EXPECT_EQ(m_device.Reset(&parameters), D3D_OK);
        m_device.failCreation = row.failCreation;
        D3D9ResourceManager::OnRecoverLost(&m_device, parameters);
        m_device.failCreation = false;
        EXPECT_EQ(m_device.lastLockable, row.lockable);
        EXPECT_EQ(m_device.lastDiscard, row.discard);
        ASSERT_EQ(surface.GetSurface() != nullptr, row.rebuilt || !row.released);
        if (row.rebuilt) {
            const auto* const rebuilt = static_cast<FakeSurface*>(surface.GetSurface());
            EXPECT_EQ(std::memcmp(&rebuilt->desc, &row.desc, sizeof row.desc), 0);
            EXPECT_EQ(rebuilt->count, 1U);
        }
    }
}

TEST_F(D3D9SurfaceTest, HoldsOneReferencePerObject) {
    FakeSurface* const a = m_device.Create(Desc(D3DUSAGE_RENDERTARGET));
    D3D9Surface first;
    first.Bind(a);
    a->AddRef();
    first.Bind(a);  // takes the second reference
    EXPECT_EQ(a->count, 1U);
    D3D9Surface second;
    second.Bind(m_device.Create(Desc(D3DUSAGE_RENDERTARGET)));
    const D3D9Surface copy(first);
    EXPECT_EQ(a->count, 2U);
    for (const D3D9Surface* const source : {&std::as_const(first), &copy}) {
        second = *source;
        EXPECT_EQ(a->count, 3U) << "wrong count after assignment, also of the same surface";
        EXPECT_EQ(m_device.living.size(), 1U) << "kept the previously bound surface";
    }
    second = D3D9Surface();
    EXPECT_EQ(second.GetSurface(), nullptr);
    EXPECT_EQ(a->count, 2U);
    first.Bind(nullptr);
    EXPECT_EQ(a->count, 1U);
    D3D9ResourceManager::OnLost();
    EXPECT_TRUE(m_device.living.empty()) << "a copy kept the surface through the loss";
    D3D9ResourceManager::OnRecoverLost(&m_device, D3DPRESENT_PARAMETERS{});
    EXPECT_NE(first.GetSurface(), nullptr) << "binding null lost the description";
}

}  // namespace velm::d3_d9_surface_posix_test
