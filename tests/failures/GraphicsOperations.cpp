#include <velm/VelmUtil.h>

#include "FakeDevice9.h"
#include "FakeDirect3D9.h"
#include "Operation.h"

namespace velm::test {
namespace {

using Rule = std::tr1::shared_ptr<D3d9AdapterCheckItem>;

Rule MakeRule() {
    const Rule rule(new D3d9AdapterCheckItem);
    rule->SetAsString(D3D9_ADAPTER_CHECK_VENDOR_NAME, D3D9_ADAPTER_COMPARE_NOT_EQUAL, kText.c_str());
    return rule;
}

long long CompareRule(Attempt& attempt) {
    const Rule rule = MakeRule();
    return attempt([&] { return rule->ValueToString().size() == kText.size() && rule->CheckAsString("x"); });
}

long long CheckRules(Attempt& attempt) {
    FakeDirect3D9 d3d;
    D3d9AdapterCheckSet set;
    set.AddItem(MakeRule());
    bool passed = true;
    const long long code = attempt([&] { return set.Check(&passed, &d3d, 0); });
    EXPECT_EQ(passed, code == 0);
    return code;
}

constexpr D3DSURFACE_DESC kTarget{
    D3DFMT_D24S8, D3DRTYPE_SURFACE, D3DUSAGE_RENDERTARGET, D3DPOOL_DEFAULT, D3DMULTISAMPLE_NONE, 0, 16, 16};

long long InitializeManager(Attempt& attempt) {
    const long long code = attempt([] { return D3D9ResourceManager::Initialize(); });
    FakeDevice9 device;
    D3D9Surface surface;
    surface.Bind(device.Create(kTarget));
    D3D9ResourceManager::OnLost();
    EXPECT_EQ(surface.GetSurface() == nullptr, code == 0) << "a manager after a failure, or none";
    D3D9ResourceManager::Finalize();
    return code;
}

long long BindSurface(Attempt& attempt) {
    FakeDevice9 device;
    D3D9ResourceManager::Initialize();
    long long lost = 0;
    {
        D3D9Surface surface;
        IDirect3DSurface9* const bound = device.Create(kTarget);
        attempt([&] { return surface.Bind(bound), 0; });
        D3D9ResourceManager::OnLost();
        lost = surface.GetSurface() == nullptr;
        surface.Bind(device.Create(kTarget));  // registers when it is not
        D3D9ResourceManager::OnLost();
        EXPECT_EQ(surface.GetSurface(), nullptr);
    }
    D3D9ResourceManager::Finalize();
    return lost;
}

}  // namespace

Operations GraphicsOperations() {
    constexpr long long kNoMemory = VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    return {
        {.what = "D3d9AdapterCheckItem", .run = CompareRule, .outcome = 1, .noMemory = {kThrew}},
        {.what = "D3d9AdapterCheckSet::Check", .run = CheckRules, .noMemory = {kNoMemory}},
        {.what = "D3D9ResourceManager", .run = InitializeManager, .noMemory = {kNoMemory}},
        {.what = "D3D9Surface", .run = BindSurface, .outcome = 1, .noMemory = {0}},
    };
}

}  // namespace velm::test
