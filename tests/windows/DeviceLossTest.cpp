#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "velm/D3D9ResourceManager.h"
#include "velm/D3D9Surface.h"
#include "velm/platform/Direct3D.h"

namespace velm {
namespace {

using platform::InterfacePtr;

constexpr UINT kSize = 64;

ULONG References(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

/// A real device with a hidden window.
class DeviceLoss : public testing::Test {
protected:
    void SetUp() override {
        m_d3d = platform::CreateDirect3D9();
        m_window = platform::CreateDrawingWindow("DeviceLossTest", kSize, kSize, false);
        ASSERT_NE(m_d3d, nullptr);
        ASSERT_NE(m_window, nullptr);
        m_parameters.BackBufferWidth = kSize;
        m_parameters.BackBufferHeight = kSize;
        m_parameters.BackBufferFormat = D3DFMT_X8R8G8B8;
        m_parameters.BackBufferCount = 1;
        m_parameters.SwapEffect = D3DSWAPEFFECT_DISCARD;
        m_parameters.hDeviceWindow = m_window.get();
        m_parameters.Windowed = TRUE;
        IDirect3DDevice9* device = nullptr;
        ASSERT_EQ(m_d3d->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, m_window.get(),
                                      D3DCREATE_SOFTWARE_VERTEXPROCESSING, &m_parameters, &device),
                  D3D_OK);
        m_device.reset(device);
        m_references = References(device);
        ASSERT_EQ(D3D9ResourceManager::Initialize(), 0U);
    }

    void TearDown() override {
        D3D9ResourceManager::Finalize();
        if (m_device != nullptr) {
            EXPECT_EQ(References(m_device.get()), m_references) << "a surface still holds the device";
            EXPECT_EQ(m_device.release()->Release(), 0U);
        }
        if (m_d3d != nullptr) {
            EXPECT_EQ(m_d3d.release()->Release(), 0U);
        }
    }

    HRESULT Reset() {
        D3DPRESENT_PARAMETERS parameters = m_parameters;
        return m_device->Reset(&parameters);
    }

    IDirect3DSurface9* NewPlain(D3DFORMAT format, D3DPOOL pool) {
        IDirect3DSurface9* surface = nullptr;
        EXPECT_EQ(m_device->CreateOffscreenPlainSurface(kSize, kSize, format, pool, &surface, nullptr),
                  D3D_OK);
        return surface;
    }

    /// Has the device draw into the surfaces, and sets them free again.
    void Clear(D3D9Surface& target, D3D9Surface& depth, D3DCOLOR color) {
        IDirect3DSurface9* backBuffer = nullptr;
        ASSERT_EQ(m_device->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &backBuffer), D3D_OK);
        const InterfacePtr<IDirect3DSurface9> back(backBuffer);
        EXPECT_EQ(m_device->SetRenderTarget(0, target.GetSurface()), D3D_OK);
        EXPECT_EQ(m_device->SetDepthStencilSurface(depth.GetSurface()), D3D_OK);
        EXPECT_EQ(m_device->Clear(0, nullptr, D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, color, 1.0f, 0), D3D_OK);
        EXPECT_EQ(m_device->SetRenderTarget(0, back.get()), D3D_OK);
        EXPECT_EQ(m_device->SetDepthStencilSurface(nullptr), D3D_OK);
    }

    std::vector<D3DCOLOR> ReadBack(D3D9Surface& target) {
        std::vector<D3DCOLOR> pixels(kSize * kSize);
        const InterfacePtr<IDirect3DSurface9> memory(NewPlain(D3DFMT_A8R8G8B8, D3DPOOL_SYSTEMMEM));
        EXPECT_EQ(m_device->GetRenderTargetData(target.GetSurface(), memory.get()), D3D_OK);
        D3DLOCKED_RECT locked{};
        EXPECT_EQ(memory->LockRect(&locked, nullptr, D3DLOCK_READONLY), D3D_OK);
        for (UINT y = 0; locked.pBits != nullptr && y < kSize; ++y) {
            std::memcpy(&pixels[y * kSize],
                        static_cast<char*>(locked.pBits) + static_cast<int>(y) * locked.Pitch,
                        kSize * sizeof(D3DCOLOR));
        }
        memory->UnlockRect();
        return pixels;
    }

    InterfacePtr<IDirect3D9> m_d3d;
    platform::WindowPtr m_window;
    D3DPRESENT_PARAMETERS m_parameters{};
    InterfacePtr<IDirect3DDevice9> m_device;
    ULONG m_references = 0;
};

TEST_F(DeviceLoss, AHundredRoundsLeaveSurfacesThatDrawAndNoReference) {
    D3D9Surface target;
    D3D9Surface depth;
    D3D9Surface plain;
    D3D9Surface memory;
    IDirect3DSurface9* surface = nullptr;
    ASSERT_EQ(m_device->CreateRenderTarget(kSize, kSize, D3DFMT_A8R8G8B8, D3DMULTISAMPLE_NONE, 0, FALSE,
                                           &surface, nullptr),
              D3D_OK);
    target.Bind(surface);
    ASSERT_EQ(m_device->CreateDepthStencilSurface(kSize, kSize, D3DFMT_D24S8, D3DMULTISAMPLE_NONE, 0, TRUE,
                                                  &surface, nullptr),
              D3D_OK);
    depth.Bind(surface);
    plain.Bind(NewPlain(D3DFMT_X8R8G8B8, D3DPOOL_DEFAULT));
    memory.Bind(NewPlain(D3DFMT_X8R8G8B8, D3DPOOL_SYSTEMMEM));
    auto copy = std::make_unique<const D3D9Surface>(target);
    for (DWORD round = 0; round < 100; ++round) {
        ASSERT_TRUE(FAILED(Reset())) << "a reset that live surfaces do not stop proves nothing";
        D3D9ResourceManager::OnLost();
        ASSERT_EQ(Reset(), D3D_OK);
        EXPECT_EQ(m_device->TestCooperativeLevel(), D3D_OK);
        copy.reset();
        D3D9ResourceManager::OnRecoverLost(m_device.get(), m_parameters);
        ASSERT_NE(target.GetSurface(), nullptr);
        ASSERT_NE(depth.GetSurface(), nullptr);
        EXPECT_EQ(References(target.GetSurface()), 1U);
        EXPECT_EQ(References(depth.GetSurface()), 1U);
        EXPECT_EQ(plain.GetSurface(), nullptr);
        EXPECT_NE(memory.GetSurface(), nullptr);
        const D3DCOLOR color = 0xFF000000 | (round * 0x020307 + 1);
        Clear(target, depth, color);
        ASSERT_EQ(ReadBack(target), std::vector<D3DCOLOR>(kSize * kSize, color)) << "round " << round;
    }
    D3D9ResourceManager::OnLost();
}

}  // namespace
}  // namespace velm
