#include "velm/D3d9AdapterCheckItem.h"

#include <cstdio>
#include <cstring>

namespace velm {
namespace {

template <typename T>
bool HoldsOrdered(D3d9AdapterParamCompare compare, T actual, T value) {
    switch (compare) {
        case D3D9_ADAPTER_COMPARE_EQUAL:
            return actual == value;
        case D3D9_ADAPTER_COMPARE_NOT_EQUAL:
            return actual != value;
        case D3D9_ADAPTER_COMPARE_GREATER:
            return actual > value;
        case D3D9_ADAPTER_COMPARE_GREATER_EQUAL:
            return actual >= value;
        case D3D9_ADAPTER_COMPARE_LESS_EQUAL:
            return actual <= value;
        case D3D9_ADAPTER_COMPARE_LESS:
            return actual < value;
        default:
            return false;
    }
}

template <typename T>
bool HoldsInteger(D3d9AdapterParamCompare compare, T actual, T value) {
    switch (compare) {
        case D3D9_ADAPTER_COMPARE_AND_ANY:
            return (actual & value) != 0;
        case D3D9_ADAPTER_COMPARE_AND_NONE:
            return (actual & value) == 0;
        default:
            return HoldsOrdered(compare, actual, value);
    }
}

}  // namespace

D3d9AdapterCheckItem::D3d9AdapterCheckItem()
    : m_eCommand(D3D9_ADAPTER_CHECK_DRIVER_VERSION),
      m_eType(D3D9_ADAPTER_PARAM_STRING),
      m_eCompare(D3D9_ADAPTER_COMPARE_EQUAL),
      m_value() {}

D3d9AdapterCheckItem::D3d9AdapterCheckItem(const D3d9AdapterCheckItem& other) = default;
D3d9AdapterCheckItem& D3d9AdapterCheckItem::operator=(const D3d9AdapterCheckItem& other) = default;

void D3d9AdapterCheckItem::SetAsString(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare,
                                       const char* value) {
    Set(command, D3D9_ADAPTER_PARAM_STRING, compare);
    std::size_t size = 0;
    while (value != nullptr && size < sizeof m_value.text - 1 && value[size] != '\0') {
        ++size;
    }
    if (size != 0) {
        std::memmove(m_value.text, value, size);  // the value may be the item's own text
    }
    m_value.text[size] = '\0';
}

void D3d9AdapterCheckItem::SetAsInt32(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare,
                                      int value) {
    Set(command, D3D9_ADAPTER_PARAM_INT32, compare).int32 = value;
}

void D3d9AdapterCheckItem::SetAsDWORD(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare,
                                      DWORD value) {
    Set(command, D3D9_ADAPTER_PARAM_DWORD, compare).dword = value;
}

void D3d9AdapterCheckItem::SetAsUINT(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare,
                                     unsigned int value) {
    Set(command, D3D9_ADAPTER_PARAM_UINT, compare).uint = value;
}

void D3d9AdapterCheckItem::SetAsInt64(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare,
                                      long long value) {
    Set(command, D3D9_ADAPTER_PARAM_INT64, compare).int64 = value;
}

void D3d9AdapterCheckItem::SetAsFloat(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare,
                                      float value) {
    Set(command, D3D9_ADAPTER_PARAM_FLOAT, compare).float32 = value;
}

void D3d9AdapterCheckItem::SetAsDouble(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare,
                                       double value) {
    Set(command, D3D9_ADAPTER_PARAM_DOUBLE, compare).float64 = value;
}

void D3d9AdapterCheckItem::SetAsGUID(D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare,
                                     GUID value) {
    Set(command, D3D9_ADAPTER_PARAM_GUID, compare).guid = value;
}

D3d9AdapterCheckItem::Value& D3d9AdapterCheckItem::Set(D3d9AdapterCheckCommand command,
                                                       D3d9AdapterParamType type,
                                                       D3d9AdapterParamCompare compare) {
    m_eCommand = command;
    m_eType = type;
    m_eCompare = compare;
    return m_value;
}

D3d9AdapterCheckCommand D3d9AdapterCheckItem::GetCommand() {
    return m_eCommand;
}

D3d9AdapterParamType D3d9AdapterCheckItem::GetType() {
    return m_eType;
}

D3d9AdapterParamCompare D3d9AdapterCheckItem::GetCompare() {
    return m_eCompare;
}

bool D3d9AdapterCheckItem::CheckType(D3d9AdapterParamType type) {
    return m_eType == type;
}

const char* D3d9AdapterCheckItem::AsString() {
    return CheckType(D3D9_ADAPTER_PARAM_STRING) ? m_value.text : "";
}

int D3d9AdapterCheckItem::AsInt32() {
    return CheckType(D3D9_ADAPTER_PARAM_INT32) ? m_value.int32 : 0;
}

DWORD D3d9AdapterCheckItem::AsDWORD() {
    return CheckType(D3D9_ADAPTER_PARAM_DWORD) ? m_value.dword : 0;
}

unsigned int D3d9AdapterCheckItem::AsUINT() {
    return CheckType(D3D9_ADAPTER_PARAM_UINT) ? m_value.uint : 0;
}

long long D3d9AdapterCheckItem::AsInt64() {
    return CheckType(D3D9_ADAPTER_PARAM_INT64) ? m_value.int64 : 0;
}

float D3d9AdapterCheckItem::AsFloat() {
    return CheckType(D3D9_ADAPTER_PARAM_FLOAT) ? m_value.float32 : 0.0f;
}

double D3d9AdapterCheckItem::AsDouble() {
    return CheckType(D3D9_ADAPTER_PARAM_DOUBLE) ? m_value.float64 : 0.0;
}

GUID D3d9AdapterCheckItem::AsGUID() {
    return CheckType(D3D9_ADAPTER_PARAM_GUID) ? m_value.guid : GUID{};
}

bool D3d9AdapterCheckItem::CheckAsString(const char* actual) {
    return CheckType(D3D9_ADAPTER_PARAM_STRING) && actual != nullptr &&
           HoldsOrdered(m_eCompare, std::strcmp(actual, m_value.text), 0);
}

bool D3d9AdapterCheckItem::CheckAsInt32(int actual) {
    return CheckType(D3D9_ADAPTER_PARAM_INT32) && HoldsInteger(m_eCompare, actual, m_value.int32);
}

bool D3d9AdapterCheckItem::CheckAsDWORD(DWORD actual) {
    return CheckType(D3D9_ADAPTER_PARAM_DWORD) && HoldsInteger(m_eCompare, actual, m_value.dword);
}

bool D3d9AdapterCheckItem::CheckAsUINT(unsigned int actual) {
    return CheckType(D3D9_ADAPTER_PARAM_UINT) && HoldsInteger(m_eCompare, actual, m_value.uint);
}

bool D3d9AdapterCheckItem::CheckAsInt64(long long actual) {
    return CheckType(D3D9_ADAPTER_PARAM_INT64) && HoldsInteger(m_eCompare, actual, m_value.int64);
}

bool D3d9AdapterCheckItem::CheckAsFloat(float actual) {
    return CheckType(D3D9_ADAPTER_PARAM_FLOAT) && HoldsOrdered(m_eCompare, actual, m_value.float32);
}

bool D3d9AdapterCheckItem::CheckAsDouble(double actual) {
    return CheckType(D3D9_ADAPTER_PARAM_DOUBLE) && HoldsOrdered(m_eCompare, actual, m_value.float64);
}

bool D3d9AdapterCheckItem::CheckAsGUID(GUID actual) {
    if (!CheckType(D3D9_ADAPTER_PARAM_GUID)) {
        return false;
    }
    const bool equal = std::memcmp(&actual, &m_value.guid, sizeof actual) == 0;
    return (m_eCompare == D3D9_ADAPTER_COMPARE_EQUAL && equal) ||
           (m_eCompare == D3D9_ADAPTER_COMPARE_NOT_EQUAL && !equal);
}

std::string D3d9AdapterCheckItem::ValueToString() {
    char text[256] = "";
    const GUID& guid = m_value.guid;
    switch (m_eType) {
        case D3D9_ADAPTER_PARAM_STRING:
            std::snprintf(text, sizeof text, "%s", m_value.text);
            break;
        case D3D9_ADAPTER_PARAM_INT32:
            std::snprintf(text, sizeof text, "%d", m_value.int32);
            break;
        case D3D9_ADAPTER_PARAM_DWORD:
            std::snprintf(text, sizeof text, "%d", static_cast<int>(m_value.dword));
            break;
        case D3D9_ADAPTER_PARAM_UINT:
            std::snprintf(text, sizeof text, "%d", static_cast<int>(m_value.uint));
            break;
        case D3D9_ADAPTER_PARAM_INT64:
            std::snprintf(text, sizeof text, "%lld", m_value.int64);
            break;
        case D3D9_ADAPTER_PARAM_FLOAT:
            std::snprintf(text, sizeof text, "%f", static_cast<double>(m_value.float32));
            break;
        case D3D9_ADAPTER_PARAM_DOUBLE:
            std::snprintf(text, sizeof text, "%f", m_value.float64);
            break;
        case D3D9_ADAPTER_PARAM_GUID:
            std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                          static_cast<unsigned int>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0],
                          guid.Data4[1], guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5],
                          guid.Data4[6], guid.Data4[7]);
            break;
    }
    return text;
}

void D3d9AdapterCheckItem::Dump() {}

}  // namespace velm
