#pragma once

#include <windows.h>

#include <string>

#include "velm/core/Export.h"

namespace velm {

/// The fact about a display adapter that a rule tests, with the operand type it requires (see
/// D3d9AdapterCheckSet::GetCommandType).
enum D3d9AdapterCheckCommand : int {
    D3D9_ADAPTER_CHECK_DRIVER_VERSION = 0,  ///< int64: driver version; newer ones compare greater
    D3D9_ADAPTER_CHECK_VENDOR_NAME = 1,     ///< string: "NVIDIA", "AMD", "Intel", ... from the PCI vendor id
    D3D9_ADAPTER_CHECK_DEVICE_ID = 2,       ///< DWORD: PCI device id
    D3D9_ADAPTER_CHECK_SUBSYS_ID = 3,       ///< DWORD: PCI subsystem id
    D3D9_ADAPTER_CHECK_REVISION = 4,        ///< DWORD: PCI revision
    D3D9_ADAPTER_CHECK_DEVICE_IDENTIFIER = 5,        ///< GUID: identifies driver and chip
    D3D9_ADAPTER_CHECK_WHQL_LEVEL = 6,               ///< DWORD: certification level of the driver
    D3D9_ADAPTER_CHECK_CAPS = 7,                     ///< DWORD: D3DCAPS9::Caps of the hardware device
    D3D9_ADAPTER_CHECK_CAPS2 = 8,                    ///< DWORD: D3DCAPS9::Caps2
    D3D9_ADAPTER_CHECK_CAPS3 = 9,                    ///< DWORD: D3DCAPS9::Caps3
    D3D9_ADAPTER_CHECK_PRESENTATION_INTERVALS = 10,  ///< DWORD: D3DCAPS9::PresentationIntervals
    D3D9_ADAPTER_CHECK_DISPLAY_WIDTH = 11,           ///< UINT: of the current display mode, in pixels
    D3D9_ADAPTER_CHECK_DISPLAY_HEIGHT = 12,          ///< UINT: in pixels
    D3D9_ADAPTER_CHECK_DISPLAY_REFRESH_RATE = 13,    ///< UINT: in hertz
    D3D9_ADAPTER_CHECK_DISPLAY_FORMAT = 14,          ///< DWORD: D3DFORMAT of the current display mode
};

/// The type of a rule's operand.
enum D3d9AdapterParamType : int {
    D3D9_ADAPTER_PARAM_STRING = 0,  ///< at most 127 bytes
    D3D9_ADAPTER_PARAM_INT32 = 1,
    D3D9_ADAPTER_PARAM_DWORD = 2,
    D3D9_ADAPTER_PARAM_UINT = 3,
    D3D9_ADAPTER_PARAM_INT64 = 4,
    D3D9_ADAPTER_PARAM_FLOAT = 5,
    D3D9_ADAPTER_PARAM_DOUBLE = 6,
    D3D9_ADAPTER_PARAM_GUID = 7,
};

/// The operator of a rule: compares the fact (left) with the rule's operand (right).
enum D3d9AdapterParamCompare : int {
    D3D9_ADAPTER_COMPARE_EQUAL = 0,
    D3D9_ADAPTER_COMPARE_NOT_EQUAL = 1,
    D3D9_ADAPTER_COMPARE_GREATER = 2,  ///< this and the next three: all types except GUID
    D3D9_ADAPTER_COMPARE_GREATER_EQUAL = 3,
    D3D9_ADAPTER_COMPARE_LESS_EQUAL = 4,
    D3D9_ADAPTER_COMPARE_LESS = 5,
    D3D9_ADAPTER_COMPARE_AND_ANY = 6,   ///< (fact & operand) != 0; int32, DWORD, UINT, int64
    D3D9_ADAPTER_COMPARE_AND_NONE = 7,  ///< (fact & operand) == 0; the same types
};

/// A rule about a display adapter: a fact, an operator and a typed operand. The item stores the rule and
/// compares; D3d9AdapterCheckSet reads the facts. Unknown commands and operators are stored too; a comparison
/// with an unknown operator is false.
///
/// Threads: any number may read and compare an item, as long as none sets it.
class VELM_UTIL_API D3d9AdapterCheckItem {
public:
    /// Starts with the rule that the driver version equals the string "". D3d9AdapterCheckSet rejects it:
    /// wrong operand type.
    D3d9AdapterCheckItem();
    /// @{
    /// Copies the rule.
    D3d9AdapterCheckItem(const D3d9AdapterCheckItem& other);
    D3d9AdapterCheckItem& operator=(const D3d9AdapterCheckItem& other);
    /// @}

    /// @{
    /// Replaces the rule.
    /// @param command  the fact
    /// @param compare  the operator
    /// @param value  the operand. A string is NUL-terminated and copied, up to 127 bytes of it; null counts
    ///               as ""
    void SetAsString(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare, const char* value);
    void SetAsInt32(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare, int value);
    void SetAsDWORD(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare, DWORD value);
    void SetAsUINT(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare, unsigned int value);
    void SetAsInt64(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare, long long value);
    void SetAsFloat(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare, float value);
    void SetAsDouble(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare, double value);
    void SetAsGUID(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare, GUID value);
    /// @}

    D3d9AdapterCheckCommand GetCommand();  ///< the fact
    D3d9AdapterParamType GetType();        ///< the type of the operand
    D3d9AdapterParamCompare GetCompare();  ///< the operator

    /// Whether the operand has this type.
    bool CheckType(D3d9AdapterParamType type);

    /// @{
    /// Returns the operand.
    /// @return zero, or "", when the operand has another type. A string is owned by the item, valid until the
    ///         item is set or destroyed, and never null
    const char* AsString();
    int AsInt32();
    DWORD AsDWORD();
    unsigned int AsUINT();
    long long AsInt64();
    float AsFloat();
    double AsDouble();
    GUID AsGUID();
    /// @}

    /// @{
    /// Whether `actual` satisfies the rule. Strings compare as with strcmp, numbers exactly; with a NaN only
    /// not-equal is true.
    /// @param actual  the fact; a string is NUL-terminated
    /// @return false also when the operand has another type, when the operator is unknown or not defined for
    ///         the type, and for null
    bool CheckAsString(const char* actual);
    bool CheckAsInt32(int actual);
    bool CheckAsDWORD(DWORD actual);
    bool CheckAsUINT(unsigned int actual);
    bool CheckAsInt64(long long actual);
    bool CheckAsFloat(float actual);
    bool CheckAsDouble(double actual);
    bool CheckAsGUID(GUID actual);
    /// @}

    /// Formats the operand as up to 255 characters; DWORD and UINT as signed 32-bit numbers.
    /// Throws std::bad_alloc when out of memory.
    std::string ValueToString();

    /// Does nothing.
    void Dump();

private:
    union Value {
        char text[128];
        int int32;
        DWORD dword;
        unsigned int uint;
        long long int64;
        float float32;
        double float64;
        GUID guid;
    };

    /// @return the value, to be set
    Value& Set(D3d9AdapterCheckCommand command, D3d9AdapterParamType type, D3d9AdapterParamCompare compare);

    D3d9AdapterCheckCommand m_eCommand;
    D3d9AdapterParamType m_eType;
    D3d9AdapterParamCompare m_eCompare;
    Value m_value;
};

}  // namespace velm
