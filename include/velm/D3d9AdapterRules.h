#pragma once

#include <memory>
#include <string>

#include "velm/D3d9AdapterCheckSet.h"

namespace velm {

/// Reads rules about display adapters from JSON text (RFC 8259), so that they can change without the program:
///
///     {"rules": [{"fact": "vendor-name", "is": "==", "value": "NVIDIA"},
///                {"fact": "display-width", "is": ">=", "value": 1280}]}
///
/// `fact` is a name that GetFactName returns; `is` is "==", "!=", ">", ">=", "<=", "<", "has-any" or
/// "has-none", where the fact's type has that operator. `value` depends on the fact's type:
/// - string: a string of at most 127 bytes, without NUL;
/// - DWORD and UINT: a whole number from 0 to 4294967295, or its hexadecimal digits in a string: "0x10DE";
/// - int64: four numbers up to 65535 in a string, "1.2.3.4"; a whole number up to 2^53 in size; or "0x...";
/// - GUID: a string like "{01234567-89AB-CDEF-0123-456789ABCDEF}".
///
/// Members come in any order; a missing, unknown or repeated one is an error. So every rule that was read can
/// be checked. The text is untrusted: reading takes linear time, does not recurse, and stops at 1 MiB.
///
/// No function throws.
/// Threads: any number may use the const functions while none reads.
class VELM_UTIL_API D3d9AdapterRules {
public:
    D3d9AdapterRules();
    ~D3d9AdapterRules();
    D3d9AdapterRules(const D3d9AdapterRules&) = delete;
    D3d9AdapterRules& operator=(const D3d9AdapterRules&) = delete;

    /// Replaces the rules by those of a text. After a failure there are none.
    /// @param text  UTF-8, with or without a byte-order mark; need not end with NUL; owned by the caller
    /// @param size  in bytes; at most 1 MiB
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for a null `text`; VELM_ERROR_UTIL_DATA_BROKEN when the text
    ///         is not one of rules, and GetErrorMessage says why; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    ErrorCode Read(const char* text, unsigned long long size);

    /// Replaces the rules by those of a file. After a failure there are none.
    /// @param utf8Path  NUL-terminated
    /// @return as Read; FileReader's codes when the file cannot be opened or read
    ErrorCode ReadFile(const char* utf8Path);

    /// @{
    /// Where the text of the last reading was found broken, counting from 1; columns in characters.
    /// @return 0 when it was not, and for a text that is too large
    unsigned int GetErrorLine() const;
    unsigned int GetErrorColumn() const;
    /// @}

    /// What was wrong there, in English and in one line.
    /// @return never null; "" when the text was not broken. Valid until the next reading
    const char* GetErrorMessage() const;

    /// Appends the rules to a set, in the order of the text. The set shares their ownership.
    /// @param set  owned by the caller
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for null; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY, and then the set
    ///         is unchanged
    ErrorCode AddTo(D3d9AdapterCheckSet* set) const;

    /// Returns the number of rules.
    unsigned int GetCount() const;

    /// Returns a rule, to be compared with the one that D3d9AdapterCheckSet reports as failed.
    /// @param index  in the order of the text, from 0
    /// @return null for an index that is too large
    Tr1SharedPtr<D3d9AdapterCheckItem> GetItem(unsigned int index) const;

    /// Returns a rule in one line, its value as in the text: vendor-name == "NVIDIA"
    /// @return null for an index that is too large. Valid until the next reading
    const char* GetText(unsigned int index) const;

    /// Returns the name of a fact in rules, such as "display-width".
    /// @return null for an unknown command; the commands are 0, 1, 2 and so on without a gap
    /// Threads: any.
    static const char* GetFactName(D3d9AdapterCheckCommand command);

    /// Formats what is known of an adapter as a rule's value takes it: strings and GUIDs without quotes,
    /// int64 as 1.2.3.4, DWORD as 0x16, UINT as a decimal number.
    /// @param text  out: the fact; unchanged on failure
    /// @param context  the facts; owned by the caller
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for an unknown command or a null context;
    ///         VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    /// Threads: any.
    static ErrorCode GetFactText(std::string& text, const D3d9AdapterContext* context,
                                 D3d9AdapterCheckCommand command);

private:
    struct Impl;

    std::unique_ptr<Impl> m_pImpl;  ///< null until memory for it was found
};

}  // namespace velm
