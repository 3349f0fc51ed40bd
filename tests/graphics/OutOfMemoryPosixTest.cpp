#include <gtest/gtest.h>

#include "Allocations.h"
#include "FakeDevice9.h"
#include "FakeDirect3D9.h"
#include "velm/D3d9AdapterCheckSet.h"
#include "velm/D3D9ResourceManager.h"
#include "velm/D3D9Surface.h"

namespace velm {
namespace {

using test::Allocations;
using test::Shortage;

TEST(OutOfMemory, ACheckAllocatesOnceAndFailsWithoutPassing) {
    FakeDirect3D9 d3d;
    D3d9AdapterCheckSet set;
    const std::tr1::shared_ptr<D3d9AdapterCheckItem> item(new D3d9AdapterCheckItem);
    item->SetAsString(D3D9_ADAPTER_CHECK_VENDOR_NAME, D3D9_ADAPTER_COMPARE_EQUAL, "RDP");
    for (int i = 0; i < 100; ++i) {
        set.AddItem(item);
    }
    bool passed = false;
    const unsigned int before = Allocations();
    EXPECT_EQ(set.Check(&passed, &d3d, 0), 0U);
    EXPECT_EQ(Allocations(), before + 1);
    EXPECT_TRUE(passed);
    const Shortage shortage(0);
    EXPECT_EQ(set.Check(&passed, &d3d, 0), VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY);
    EXPECT_FALSE(passed);
}

TEST(OutOfMemory, NoManagerComesOutOfAFailedInitialize) {
    {
        const Shortage shortage(0);
        EXPECT_EQ(D3D9ResourceManager::Initialize(), VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY);
    }
    FakeDevice9 device;
    D3D9Surface surface;
    surface.Bind(device.Create({D3DFMT_D24S8, D3DRTYPE_SURFACE, D3DUSAGE_RENDERTARGET, D3DPOOL_DEFAULT,
                                D3DMULTISAMPLE_NONE, 0, 16, 16}));
    D3D9ResourceManager::OnLost();
    EXPECT_NE(surface.GetSurface(), nullptr);

    EXPECT_EQ(D3D9ResourceManager::Initialize(), 0U);
    {
        const Shortage shortage(0);
        surface.Bind(nullptr);  // the registration fails, silently
    }
    surface.Bind(nullptr);  // and is tried again
    D3D9ResourceManager::OnRecoverLost(&device, D3DPRESENT_PARAMETERS{});
    EXPECT_NE(surface.GetSurface(), nullptr);
    D3D9ResourceManager::Finalize();
}

}  // namespace
}  // namespace velm
