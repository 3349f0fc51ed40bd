#include "velm/D3D9Surface.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

#include "FakeDevice9.h"
#include "velm/D3D9ResourceManager.h"

namespace velm {
namespace {

using test::FakeSurface9;

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

    test::FakeDevice9 m_device;
};

TEST_F(D3D9SurfaceTest, WhatSurvivesDependsOnPoolAndUsage) {
    const struct {
        const char* what;
        D3DSURFACE_DESC desc;
        bool released, rebuilt;
        BOOL lockable,
            discard;  // -1: the device was not asked for a render target, or a depth-stencil surface
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
            D3DSURFACE_DESC desc{};
            surface.GetSurface()->GetDesc(&desc);
            EXPECT_EQ(std::memcmp(&desc, &row.desc, sizeof desc), 0);
            EXPECT_EQ(static_cast<FakeSurface9*>(surface.GetSurface())->Count(), 1U);
        }
    }
}

TEST_F(D3D9SurfaceTest, ASurfaceHoldsExactlyOneReference) {
    FakeSurface9* const a = m_device.Create(Desc(D3DUSAGE_RENDERTARGET));
    D3D9Surface first;
    first.Bind(a);
    a->AddRef();
    first.Bind(a);  // with a reference of its own
    EXPECT_EQ(a->Count(), 1U);
    D3D9Surface second;
    second.Bind(m_device.Create(Desc(D3DUSAGE_RENDERTARGET)));
    const D3D9Surface copy(first);
    EXPECT_EQ(a->Count(), 2U);
    for (const D3D9Surface* const source : {&std::as_const(first), &copy}) {
        second = *source;
        EXPECT_EQ(a->Count(), 3U) << "on assignment, also of the same surface";
        EXPECT_EQ(m_device.living.size(), 1U) << "what was bound before was kept";
    }
    second = D3D9Surface();
    EXPECT_EQ(second.GetSurface(), nullptr);
    EXPECT_EQ(a->Count(), 2U);
    first.Bind(nullptr);
    EXPECT_EQ(a->Count(), 1U);
    D3D9ResourceManager::OnLost();
    EXPECT_TRUE(m_device.living.empty()) << "a copy kept the surface through the loss";
    D3D9ResourceManager::OnRecoverLost(&m_device, D3DPRESENT_PARAMETERS{});
    EXPECT_NE(first.GetSurface(), nullptr) << "binding null lost the description";
}

}  // namespace
}  // namespace velm
