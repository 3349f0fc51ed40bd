#pragma once

#include <windows.h>

#include <string>

#include "velm/core/Export.h"

namespace velm {

/// The fact about a display adapter that a rule tests. D3d9AdapterCheckSet::GetCommandType tells the type of
/// each: the type that is named here.
enum D3d9AdapterCheckCommand : int {
    D3D9_ADAPTER_CHECK_DRIVER_VERSION = 0,     ///< int64: the driver's version, in numeric order
    D3D9_ADAPTER_CHECK_VENDOR_NAME = 1,        ///< string: "NVIDIA", "AMD", "Intel", ... by the PCI vendor
    D3D9_ADAPTER_CHECK_DEVICE_ID = 2,          ///< DWORD: PCI device
    D3D9_ADAPTER_CHECK_SUBSYS_ID = 3,          ///< DWORD: PCI subsystem
    D3D9_ADAPTER_CHECK_REVISION = 4,           ///< DWORD: PCI revision
    D3D9_ADAPTER_CHECK_DEVICE_IDENTIFIER = 5,  ///< GUID of driver and chip
    D3D9_ADAPTER_CHECK_WHQL_LEVEL = 6,         ///< DWORD: certification of the driver
    D3D9_ADAPTER_CHECK_CAPS = 7,               ///< DWORD: D3DCAPS9::Caps of the hardware device
    D3D9_ADAPTER_CHECK_CAPS2 = 8,              ///< DWORD: D3DCAPS9::Caps2
    D3D9_ADAPTER_CHECK_CAPS3 = 9,              ///< DWORD: D3DCAPS9::Caps3
    D3D9_ADAPTER_CHECK_PRESENTATION_INTERVALS = 10,  ///< DWORD: D3DCAPS9::PresentationIntervals
    D3D9_ADAPTER_CHECK_DISPLAY_WIDTH = 11,           ///< UINT: of the current display mode, in pixels
    D3D9_ADAPTER_CHECK_DISPLAY_HEIGHT = 12,          ///< UINT: in pixels
    D3D9_ADAPTER_CHECK_DISPLAY_REFRESH_RATE = 13,    ///< UINT: in hertz
    D3D9_ADAPTER_CHECK_DISPLAY_FORMAT = 14,          ///< DWORD: D3DFORMAT of the current display mode
};

/// The type of a rule's operand.
enum D3d9AdapterParamType : int {
    D3D9_ADAPTER_PARAM_STRING = 0,  ///< at most 127 bytes of text
    D3D9_ADAPTER_PARAM_INT32 = 1,
    D3D9_ADAPTER_PARAM_DWORD = 2,
    D3D9_ADAPTER_PARAM_UINT = 3,
    D3D9_ADAPTER_PARAM_INT64 = 4,
    D3D9_ADAPTER_PARAM_FLOAT = 5,
    D3D9_ADAPTER_PARAM_DOUBLE = 6,
    D3D9_ADAPTER_PARAM_GUID = 7,
};

/// The operator of a rule: the fact on its left, the rule's operand on its right.
enum D3d9AdapterParamCompare : int {
    D3D9_ADAPTER_COMPARE_EQUAL = 0,
    D3D9_ADAPTER_COMPARE_NOT_EQUAL = 1,
    D3D9_ADAPTER_COMPARE_GREATER = 2,  ///< this and the next three: all types but GUID
    D3D9_ADAPTER_COMPARE_GREATER_EQUAL = 3,
    D3D9_ADAPTER_COMPARE_LESS_EQUAL = 4,
    D3D9_ADAPTER_COMPARE_LESS = 5,
    D3D9_ADAPTER_COMPARE_AND_ANY = 6,  ///< a bit of the operand is set in the fact; int32, DWORD, UINT, int64
    D3D9_ADAPTER_COMPARE_AND_NONE = 7,  ///< no bit of the operand is set in the fact; the same types
};

/// One rule about a display adapter: a fact, an operator and a typed operand. The item stores and compares;
/// D3d9AdapterCheckSet reads the facts. No call fails: a command or operator that does not exist is stored,
/// and the comparison is then false.
///
/// Threads: any number may read and compare an item that none is setting.
class VELM_UTIL_API D3d9AdapterCheckItem {
public:
    /// A rule that the driver version, as text, equals "". D3d9AdapterCheckSet refuses it for its type.
    D3d9AdapterCheckItem();
    /// @{
    /// Copies the whole rule.
    D3d9AdapterCheckItem(const D3d9AdapterCheckItem& other);
    D3d9AdapterCheckItem& operator=(const D3d9AdapterCheckItem& other);
    /// @}

    /// @{
    /// Replaces the whole rule.
    /// @param command  the fact
    /// @param compare  the operator
    /// @param value  the operand; a text is NUL-terminated, the caller's; its first 127 bytes are kept, and
    ///               null counts as ""
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

    /// Whether the operand is of this type.
    bool CheckType(D3d9AdapterParamType type);

    /// @{
    /// The operand.
    /// @return the zero of the asked type when the operand is of another. A text is the item's own, valid
    ///         until the item is set or destroyed, and never null
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
    /// Whether `actual` satisfies the rule. Whole texts are compared byte by byte, bytes as unsigned; numbers
    /// exactly, and with a NaN only not-equal holds.
    /// @return false also when the operand is of another type, when the operator does not exist or does not
    ///         suit the type, and for null
    bool CheckAsString(const char* actual);
    bool CheckAsInt32(int actual);
    bool CheckAsDWORD(DWORD actual);
    bool CheckAsUINT(unsigned int actual);
    bool CheckAsInt64(long long actual);
    bool CheckAsFloat(float actual);
    bool CheckAsDouble(double actual);
    bool CheckAsGUID(GUID actual);
    /// @}

    /// The operand as text of at most 255 characters. DWORD and UINT are written as signed 32-bit numbers.
    /// Throws std::bad_alloc when memory runs out.
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
