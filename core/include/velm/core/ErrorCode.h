#pragma once

namespace velm {

/// The result of an operation that can fail: a 32-bit code. 0 is success; bit 31 marks a failure.
/// FindErrorCode (ErrorRegistry.h) returns a code's name.
class ErrorCode {
public:
    /// @param code  stored unchanged
    constexpr ErrorCode(unsigned int code = 0) noexcept : m_code(code) {}

    /// The code.
    constexpr unsigned int GetCode() const noexcept { return m_code; }

    /// Whether bit 31 is set.
    constexpr bool IsFailed() const noexcept { return (m_code & 0x80000000U) != 0; }

    /// @{
    /// Compares the codes.
    friend constexpr bool operator==(ErrorCode a, ErrorCode b) noexcept { return a.m_code == b.m_code; }
    friend constexpr bool operator!=(ErrorCode a, ErrorCode b) noexcept { return a.m_code != b.m_code; }
    friend constexpr bool operator==(ErrorCode a, unsigned int b) noexcept { return a.m_code == b; }
    friend constexpr bool operator!=(ErrorCode a, unsigned int b) noexcept { return a.m_code != b; }
    friend constexpr bool operator==(unsigned int a, ErrorCode b) noexcept { return a == b.m_code; }
    friend constexpr bool operator!=(unsigned int a, ErrorCode b) noexcept { return a != b.m_code; }
    /// @}

private:
    unsigned int m_code;
};

}  // namespace velm
