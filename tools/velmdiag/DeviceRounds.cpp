#include "DeviceRounds.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "Command.h"
#include "Progress.h"
#include "velm/core/Tick.h"
#include "velm/D3D9ResourceManager.h"
#include "velm/D3D9Surface.h"
#include "velm/platform/Direct3D.h"

namespace velmdiag {
namespace {

using velm::platform::InterfacePtr;

constexpr UINT kWidth = 320;
constexpr UINT kHeight = 240;
constexpr D3DFORMAT kPixels = D3DFMT_X8R8G8B8;
constexpr DWORD kColorBits = 0x00FFFFFF;

struct ResultName {
    unsigned int code;
    const char* name;
};

/// The results documented for the calls in this file (d3d9.h, winerror.h).
constexpr ResultName kResultNames[] = {
    {0x88760827, "D3DERR_DRIVERINTERNALERROR"},
    {0x8876017C, "D3DERR_OUTOFVIDEOMEMORY"},
    {0x88760868, "D3DERR_DEVICELOST"},
    {0x88760869, "D3DERR_DEVICENOTRESET"},
    {0x8876086A, "D3DERR_NOTAVAILABLE"},
    {0x8876086C, "D3DERR_INVALIDCALL"},
    {0x88760870, "D3DERR_DEVICEREMOVED"},
    {0x88760874, "D3DERR_DEVICEHUNG"},
    {0x8007000E, "E_OUTOFMEMORY"},
    {0x80004005, "E_FAIL"},
};

/// A result in hexadecimal, with its name if it is known.
std::string TextOfResult(HRESULT result) {
    const auto code = static_cast<unsigned int>(result);
    const auto* const found = std::ranges::find(kResultNames, code, &ResultName::code);
    return HexOf(code) + (found != std::end(kResultNames) ? std::string(" (") + found->name + ')' : "");
}

void Check(HRESULT result, const char* call, int exitStatus = 1) {
    if (FAILED(result)) {
        throw Failure{std::string(call) + " failed with " + TextOfResult(result), exitStatus};
    }
}

IDirect3DSurface9* CreateTarget(IDirect3DDevice9* device) {
    IDirect3DSurface9* surface = nullptr;
    Check(device->CreateRenderTarget(kWidth, kHeight, kPixels, D3DMULTISAMPLE_NONE, 0, FALSE, &surface,
                                     nullptr),
          "CreateRenderTarget", kNotDone);
    return surface;
}

ULONG References(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

/// Initializes the resource manager, and finalizes it in the destructor.
struct Manager {
    Manager() {
        const velm::ErrorCode result = velm::D3D9ResourceManager::Initialize();
        if (result.IsFailed()) {
            throw Failure{"the resource manager cannot be created: " + Describe(result), kNotDone};
        }
    }
    ~Manager() { velm::D3D9ResourceManager::Finalize(); }
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;
};

/// A render target and a depth-stencil surface that survive the loss of their device.
class RecoverableSurfaces {
public:
    RecoverableSurfaces(IDirect3DDevice9* device, const D3DPRESENT_PARAMETERS& presentParameters)
        : m_device(device), m_presentParameters(presentParameters) {
        m_target.Bind(CreateTarget(m_device));
        IDirect3DSurface9* surface = nullptr;
        Check(m_device->CreateDepthStencilSurface(kWidth, kHeight, D3DFMT_D24S8, D3DMULTISAMPLE_NONE, 0, TRUE,
                                                  &surface, nullptr),
              "CreateDepthStencilSurface", kNotDone);
        m_depth.Bind(surface);
    }

    /// Loses the surfaces, resets the device and rebuilds them.
    void LoseAndRecover() {
        D3DPRESENT_PARAMETERS parameters = m_presentParameters;
        if (SUCCEEDED(m_device->Reset(&parameters))) {
            throw Failure{"Reset succeeded although surfaces in the default pool exist"};
        }
        ++m_counts.resetsRefused;
        velm::D3D9ResourceManager::OnLost();
        parameters = m_presentParameters;
        Check(m_device->Reset(&parameters), "Reset");
        ++m_counts.resetsDone;
        velm::D3D9ResourceManager::OnRecoverLost(m_device, parameters);
        if (m_target.GetSurface() == nullptr || m_depth.GetSurface() == nullptr) {
            throw Failure{"a surface was not rebuilt"};
        }
    }

    /// Clears both surfaces, presents the target in the window and compares its pixels.
    void DrawAndCompare(D3DCOLOR color) {
        const auto backBuffer = BackBuffer();
        Check(m_device->SetRenderTarget(0, m_target.GetSurface()), "SetRenderTarget");
        Check(m_device->SetDepthStencilSurface(m_depth.GetSurface()), "SetDepthStencilSurface");
        Check(m_device->Clear(0, nullptr, D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER | D3DCLEAR_STENCIL, color, 1.0f,
                              0),
              "Clear");
        // Unset them: a device that references a surface cannot be reset.
        Check(m_device->SetRenderTarget(0, backBuffer.get()), "SetRenderTarget");
        Check(m_device->SetDepthStencilSurface(nullptr), "SetDepthStencilSurface");
        Check(m_device->StretchRect(m_target.GetSurface(), nullptr, backBuffer.get(), nullptr, D3DTEXF_NONE),
              "StretchRect");
        Check(m_device->Present(nullptr, nullptr, nullptr, nullptr), "Present");
        Compare(color);
    }

    const DeviceCounts& Counts() const { return m_counts; }

private:
    InterfacePtr<IDirect3DSurface9> BackBuffer() {
        IDirect3DSurface9* surface = nullptr;
        Check(m_device->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &surface), "GetBackBuffer");
        return InterfacePtr<IDirect3DSurface9>(surface);
    }

    void Compare(D3DCOLOR color) {
        IDirect3DSurface9* surface = nullptr;
        Check(m_device->CreateOffscreenPlainSurface(kWidth, kHeight, kPixels, D3DPOOL_SYSTEMMEM, &surface,
                                                    nullptr),
              "CreateOffscreenPlainSurface");
        const InterfacePtr<IDirect3DSurface9> memory(surface);
        Check(m_device->GetRenderTargetData(m_target.GetSurface(), memory.get()), "GetRenderTargetData");
        D3DLOCKED_RECT locked{};
        Check(memory->LockRect(&locked, nullptr, D3DLOCK_READONLY), "LockRect");
        unsigned int wrong = 0;
        for (UINT y = 0; y < kHeight; ++y) {
            const char* const row =
                static_cast<const char*>(locked.pBits) + static_cast<int>(y) * locked.Pitch;
            for (UINT x = 0; x < kWidth; ++x) {
                DWORD pixel = 0;
                std::memcpy(&pixel, row + x * sizeof pixel, sizeof pixel);
                wrong += ((pixel ^ color) & kColorBits) != 0;
            }
        }
        memory->UnlockRect();
        if (wrong != 0) {
            throw Failure{std::to_string(wrong) + " pixels differ from what was drawn"};
        }
        ++m_counts.picturesEqual;
    }

    IDirect3DDevice9* m_device;
    D3DPRESENT_PARAMETERS m_presentParameters;
    velm::D3D9Surface m_target;
    velm::D3D9Surface m_depth;
    DeviceCounts m_counts;
};

D3DPRESENT_PARAMETERS PresentParameters(HWND window) {
    D3DPRESENT_PARAMETERS parameters{};
    parameters.BackBufferWidth = kWidth;
    parameters.BackBufferHeight = kHeight;
    parameters.BackBufferFormat = kPixels;
    parameters.BackBufferCount = 1;
    parameters.SwapEffect = D3DSWAPEFFECT_DISCARD;
    parameters.hDeviceWindow = window;
    parameters.Windowed = TRUE;
    parameters.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
    return parameters;
}

InterfacePtr<IDirect3DDevice9> CreateDevice(IDirect3D9* d3d, D3DPRESENT_PARAMETERS parameters) {
    IDirect3DDevice9* device = nullptr;
    Check(d3d->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, parameters.hDeviceWindow,
                            D3DCREATE_SOFTWARE_VERTEXPROCESSING, &parameters, &device),
          "CreateDevice", kNotDone);
    return InterfacePtr<IDirect3DDevice9>(device);
}

/// A colour for each round, different from the previous one.
D3DCOLOR ColorOf(unsigned int round) {
    return D3DCOLOR_XRGB(round * 37 % 256, 255 - round * 11 % 256, 64 + round * 5 % 128);
}

DeviceCounts RunRounds(IDirect3DDevice9* device, const D3DPRESENT_PARAMETERS& parameters, unsigned int rounds,
                       bool showProgress) {
    RecoverableSurfaces surfaces(device, parameters);
    Progress progress(showProgress);
    surfaces.DrawAndCompare(ColorOf(0));
    for (unsigned int round = 1; round <= rounds; ++round) {
        try {
            surfaces.LoseAndRecover();
            surfaces.DrawAndCompare(ColorOf(round));
        } catch (const Failure& failure) {
            throw Failure{"round " + std::to_string(round) + ": " + failure.message};
        }
        velm::platform::PumpMessages();
        progress.Show("round " + std::to_string(round));
    }
    return surfaces.Counts();
}

/// A surface bound before the manager exists is not registered: after a loss, the device must refuse the
/// reset until the surface is bound again.
/// @return the result of the refused reset
HRESULT ResetWithUnregisteredSurface(IDirect3DDevice9* device, D3DPRESENT_PARAMETERS parameters) {
    IDirect3DSurface9* const target = CreateTarget(device);
    velm::D3D9Surface surface;
    surface.Bind(target);
    const Manager manager;
    velm::D3D9ResourceManager::OnLost();
    D3DPRESENT_PARAMETERS refused = parameters;
    const HRESULT result = device->Reset(&refused);
    if (SUCCEEDED(result)) {
        throw Failure{"Reset succeeded although an unregistered surface exists"};
    }
    target->AddRef();
    surface.Bind(target);
    velm::D3D9ResourceManager::OnLost();
    Check(device->Reset(&parameters), "Reset, once the surface is bound again,");
    return result;
}

}  // namespace

DeviceOutcome RunDeviceRounds(unsigned int rounds, bool showProgress) {
    const auto d3d = velm::platform::CreateDirect3D9();
    if (d3d == nullptr) {
        throw Failure{"this system has no Direct3D 9", kNotDone};
    }
    const auto window = velm::platform::CreateDrawingWindow("velmdiag device", kWidth, kHeight, true);
    if (window == nullptr) {
        throw Failure{"a window cannot be opened", kNotDone};
    }
    const D3DPRESENT_PARAMETERS parameters = PresentParameters(window.get());
    const auto device = CreateDevice(d3d.get(), parameters);
    DeviceOutcome outcome;
    outcome.referencesBefore = References(device.get());
    const velm::Tick start = velm::Tick::Get();
    outcome.unregistered = TextOfResult(ResetWithUnregisteredSurface(device.get(), parameters));
    {
        const Manager manager;
        outcome.counts = RunRounds(device.get(), parameters, rounds, showProgress);
    }
    outcome.milliseconds = static_cast<double>(velm::Tick::Get().GetCount() - start.GetCount()) * 1000.0 /
                           static_cast<double>(velm::Tick::GetFrequency());
    outcome.referencesAfter = References(device.get());
    return outcome;
}

void AddDeviceOutcome(Report& report, unsigned int rounds, const DeviceOutcome& outcome) {
    report.Add("rounds", static_cast<long long>(rounds));
    report.Add("resets_refused_before_the_loss", outcome.counts.resetsRefused);
    report.Add("resets_done_after_it", outcome.counts.resetsDone);
    report.Add("pictures_equal", outcome.counts.picturesEqual);
    report.Add("reset_with_unregistered_surface", "refused, " + outcome.unregistered);
    report.Add("elapsed", outcome.milliseconds, "ms", 0);
    report.Add("device_references_before", static_cast<long long>(outcome.referencesBefore));
    report.Add("device_references_after", static_cast<long long>(outcome.referencesAfter));
}

void CheckDeviceReferences(const DeviceOutcome& outcome) {
    if (outcome.referencesAfter != outcome.referencesBefore) {
        throw Failure{"the device's reference count differs from before the rounds"};
    }
}

}  // namespace velmdiag
