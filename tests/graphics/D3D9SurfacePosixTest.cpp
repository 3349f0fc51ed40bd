#include "velm/D3D9Surface.h"

#include <gtest/gtest.h>

#include <cstring>

#include "FakeDevice9.h"
#include "velm/D3D9ResourceManager.h"

namespace velm {
namespace {

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

    FakeDevice9 m_device;
};

TEST_F(D3D9SurfaceTest, WhatSurvivesDependsOnPoolAndUsage) {
    const struct {
        const char* what;
        D3DSURFACE_DESC desc;
        bool released, rebuilt, failCreation;
    } cases[] = {
        {"render target", Desc(D3DUSAGE_RENDERTARGET), true, true, false},
        {"depth-stencil", Desc(D3DUSAGE_DEPTHSTENCIL), true, true, false},
        {"both usages", Desc(D3DUSAGE_RENDERTARGET | D3DUSAGE_DEPTHSTENCIL), true, false, false},
        {"managed", Desc(D3DUSAGE_RENDERTARGET, D3DPOOL_MANAGED), false, false, false},
        {"creation fails", Desc(D3DUSAGE_RENDERTARGET), true, false, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        D3DPRESENT_PARAMETERS parameters{};
        D3D9Surface surface;
        IDirect3DSurface9* const first = m_device.Create(c.desc);
        surface.Bind(first);
        EXPECT_EQ(FAILED(m_device.Reset(&parameters)), c.released);
        for (const DWORD flags : {0xFFFFFFFDU, 2U}) {  // to discard the depth or not
            D3D9ResourceManager::OnLost();
            EXPECT_EQ(surface.GetSurface() == nullptr, c.released);
            EXPECT_EQ(m_device.Reset(&parameters), D3D_OK);
            m_device.failCreation = c.failCreation;
            parameters.Flags = flags;
            D3D9ResourceManager::OnRecoverLost(&m_device, parameters);
            m_device.failCreation = false;
            if (c.desc.Usage == D3DUSAGE_DEPTHSTENCIL) {
                EXPECT_EQ(m_device.lastDiscard, flags == 2 ? TRUE : FALSE);
            }
        }
        if (!c.released) {
            EXPECT_EQ(surface.GetSurface(), first);
            continue;
        }
        ASSERT_EQ(surface.GetSurface() != nullptr, c.rebuilt);
        if (c.rebuilt) {
            D3DSURFACE_DESC desc{};
            surface.GetSurface()->GetDesc(&desc);
            EXPECT_EQ(std::memcmp(&desc, &c.desc, sizeof desc), 0);
            EXPECT_EQ(static_cast<FakeSurface9*>(surface.GetSurface())->Count(), 1U);
        }
    }
    EXPECT_EQ(m_device.lastLockable, FALSE);
}

TEST_F(D3D9SurfaceTest, ABoundSurfaceGivesUpExactlyTheReferenceItTook) {
    FakeSurface9* const a = m_device.Create(Desc(D3DUSAGE_RENDERTARGET));
    FakeSurface9* const b = m_device.Create(Desc(0));
    a->AddRef();
    b->AddRef();
    {
        D3D9Surface surface;
        surface.Bind(a);
        EXPECT_EQ(a->Count(), 2U);
        a->AddRef();
        surface.Bind(surface.GetSurface());  // with a reference of its own
        EXPECT_EQ(a->Count(), 2U);
        surface.Bind(b);
        EXPECT_EQ(a->Count(), 1U);
        EXPECT_EQ(b->Count(), 2U);
        a->AddRef();
        surface.Bind(a);
        surface.Bind(nullptr);
        EXPECT_EQ(a->Count(), 1U);
        D3D9ResourceManager::OnRecoverLost(&m_device, D3DPRESENT_PARAMETERS{});
        EXPECT_NE(surface.GetSurface(), nullptr) << "binding null lost the description";
    }
    EXPECT_EQ(a->Release(), 0U);
    EXPECT_EQ(b->Release(), 0U);
}

TEST_F(D3D9SurfaceTest, CopiesCountTheSurfaceTheyShare) {
    FakeSurface9* const a = m_device.Create(Desc(D3DUSAGE_RENDERTARGET));
    D3D9Surface first;
    D3D9Surface second;
    first.Bind(a);
    second.Bind(m_device.Create(Desc(D3DUSAGE_RENDERTARGET)));
    const D3D9Surface copy(first);
    EXPECT_EQ(a->Count(), 2U);
    second = first;
    EXPECT_EQ(a->Count(), 3U);
    EXPECT_EQ(m_device.living.size(), 1U) << "what was bound before was kept";
    second = copy;
    EXPECT_EQ(a->Count(), 3U) << "the same surface";
    second = D3D9Surface();
    EXPECT_EQ(second.GetSurface(), nullptr);
    EXPECT_EQ(a->Count(), 2U);
    D3D9ResourceManager::OnLost();
    EXPECT_TRUE(m_device.living.empty()) << "a copy kept the surface through the loss";
}

}  // namespace
}  // namespace velm
