/// @file
/// The table of the fifteen facts that rules test, shared by the checks, velmdiag and the tests.
#pragma once

#include "velm/D3d9AdapterCheckItem.h"
#include "velm/D3d9AdapterContext.h"

namespace velm {

/// The value of a fact, in the member for its command's type; int64, DWORD and UINT use `number`.
struct D3d9AdapterFact {
    constexpr D3d9AdapterFact(long long value) : number(value) {}
    constexpr D3d9AdapterFact(const char* value) : text(value) {}
    constexpr D3d9AdapterFact(const GUID& value) : guid(value) {}

    long long number = 0;
    const char* text = "";
    GUID guid{};
};

struct D3d9AdapterCommand {
    D3d9AdapterCheckCommand command;
    D3d9AdapterParamType type;  ///< operand type that an item must have
    const char* name;           ///< in rule files and reports
    D3d9AdapterFact (*read)(const D3d9AdapterContext& context);
};

/// Returns the vendor's name for a PCI vendor id.
constexpr const char* GetVendorName(DWORD vendorId) {
    constexpr struct {
        DWORD id;
        const char* name;
    } kVendors[] = {
        {0x0000, "RDP"},       {0x1002, "AMD"},   {0x1022, "AMD"},   {0x102B, "Matrox"}, {0x10DE, "NVIDIA"},
        {0x1414, "Microsoft"}, {0x163C, "Intel"}, {0x8086, "Intel"}, {0x8087, "Intel"},
    };
    for (const auto& vendor : kVendors) {
        if (vendor.id == vendorId) {
            return vendor.name;
        }
    }
    return "Unknown";
}

/// Indexed by command: in the order of the commands' values, without gaps.
inline constexpr D3d9AdapterCommand kD3d9AdapterCommands[] = {
    {D3D9_ADAPTER_CHECK_DRIVER_VERSION, D3D9_ADAPTER_PARAM_INT64, "driver-version",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_identifier.DriverVersion.QuadPart); }},
    {D3D9_ADAPTER_CHECK_VENDOR_NAME, D3D9_ADAPTER_PARAM_STRING, "vendor-name",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(GetVendorName(c.m_identifier.VendorId)); }},
    {D3D9_ADAPTER_CHECK_DEVICE_ID, D3D9_ADAPTER_PARAM_DWORD, "device-id",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_identifier.DeviceId); }},
    {D3D9_ADAPTER_CHECK_SUBSYS_ID, D3D9_ADAPTER_PARAM_DWORD, "subsys-id",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_identifier.SubSysId); }},
    {D3D9_ADAPTER_CHECK_REVISION, D3D9_ADAPTER_PARAM_DWORD, "revision",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_identifier.Revision); }},
    {D3D9_ADAPTER_CHECK_DEVICE_IDENTIFIER, D3D9_ADAPTER_PARAM_GUID, "device-identifier",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_identifier.DeviceIdentifier); }},
    {D3D9_ADAPTER_CHECK_WHQL_LEVEL, D3D9_ADAPTER_PARAM_DWORD, "whql-level",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_identifier.WHQLLevel); }},
    {D3D9_ADAPTER_CHECK_CAPS, D3D9_ADAPTER_PARAM_DWORD, "caps",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_caps.Caps); }},
    {D3D9_ADAPTER_CHECK_CAPS2, D3D9_ADAPTER_PARAM_DWORD, "caps2",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_caps.Caps2); }},
    {D3D9_ADAPTER_CHECK_CAPS3, D3D9_ADAPTER_PARAM_DWORD, "caps3",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_caps.Caps3); }},
    {D3D9_ADAPTER_CHECK_PRESENTATION_INTERVALS, D3D9_ADAPTER_PARAM_DWORD, "presentation-intervals",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_caps.PresentationIntervals); }},
    {D3D9_ADAPTER_CHECK_DISPLAY_WIDTH, D3D9_ADAPTER_PARAM_UINT, "display-width",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_displayMode.Width); }},
    {D3D9_ADAPTER_CHECK_DISPLAY_HEIGHT, D3D9_ADAPTER_PARAM_UINT, "display-height",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_displayMode.Height); }},
    {D3D9_ADAPTER_CHECK_DISPLAY_REFRESH_RATE, D3D9_ADAPTER_PARAM_UINT, "display-refresh-rate",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(c.m_displayMode.RefreshRate); }},
    {D3D9_ADAPTER_CHECK_DISPLAY_FORMAT, D3D9_ADAPTER_PARAM_DWORD, "display-format",
     [](const D3d9AdapterContext& c) { return D3d9AdapterFact(static_cast<DWORD>(c.m_displayMode.Format)); }},
};

}  // namespace velm
