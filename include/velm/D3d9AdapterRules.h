#pragma once

#include <memory>
#include <string>

#include "velm/D3d9AdapterCheckSet.h"

namespace velm {

/// Reads rules about display adapters from JSON text (RFC 8259), so that they can change without a new build
/// of the program:
///
///     {"rules": [{"fact": "vendor-name", "is": "==", "value": "NVIDIA"},
///                {"fact": "display-width", "is": ">=", "value": 1280}]}
///
/// `fact` is a name that GetFactName returns; `is` is "==", "!=", ">", ">=", "<=", "<", "has-any" or
/// "has-none"; not every type has every operator. `value` depends on the fact's type:
/// - string: a string of at most 127 bytes, without NUL;
/// - DWORD and UINT: a whole number from 0 to 4294967295, or its hexadecimal digits in a string: "0x10DE";
/// - int64: four numbers up to 65535 in a string, "1.2.3.4"; a whole number up to 2^53 in size; or "0x...";
/// - GUID: a string like "{01234567-89AB-CDEF-0123-456789ABCDEF}".
///
/// Members may be in any order; a missing, unknown or repeated member is an error. Every rule read without an
/// error can be checked. The text may be untrusted: it is limited to 1 MiB and read in linear time, without
/// recursion.
///
/// No function throws.
/// Threads: const functions may run concurrently, but not during Read or ReadFile.
class VELM_UTIL_API D3d9AdapterRules {
public:
    D3d9AdapterRules();
    ~D3d9AdapterRules();
    D3d9AdapterRules(const D3d9AdapterRules&) = delete;
    D3d9AdapterRules& operator=(const D3d9AdapterRules&) = delete;

    /// Replaces the rules with those in a text; on failure, with none.
    /// @param text  UTF-8, with or without a byte-order mark; need not end with NUL; owned by the caller
    /// @param size  in bytes; at most 1 MiB
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for a null `text`; VELM_ERROR_UTIL_DATA_BROKEN if the text is
    ///         invalid (GetErrorMessage says why); VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    ErrorCode Read(const char* text, unsigned long long size);

    /// Replaces the rules with those in a file; on failure, with none.
    /// @param utf8Path  NUL-terminated
    /// @return the same as Read, or FileReader's code if the file cannot be opened or read
    ErrorCode ReadFile(const char* utf8Path);

    /// @{
    /// Position of the error in the text last read, counting from 1; columns are in characters.
    /// @return 0 if there was no error, or the text was too large
    unsigned int GetErrorLine() const;
    unsigned int GetErrorColumn() const;
    /// @}

    /// Describes that error in one line of English.
    /// @return never null; "" if the text was valid. Valid until the next Read or ReadFile
    const char* GetErrorMessage() const;

    /// Appends the rules to a set, in the order of the text. The set shares ownership of them.
    /// @param set  owned by the caller; unchanged on failure
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for null; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    ErrorCode AddTo(D3d9AdapterCheckSet* set) const;

    /// Returns the number of rules.
    unsigned int GetCount() const;

    /// Returns a rule, to compare with the failed rule that D3d9AdapterCheckSet reports.
    /// @param index  in the order of the text, from 0
    /// @return null if the index is out of range
    Tr1SharedPtr<D3d9AdapterCheckItem> GetItem(unsigned int index) const;

    /// Returns a rule as one line, with its value as written in the text: vendor-name == "NVIDIA"
    /// @return null if the index is out of range. Valid until the next Read or ReadFile
    const char* GetText(unsigned int index) const;

    /// Returns the name that a fact has in rules, such as "display-width".
    /// @return null for an unknown command. Commands are numbered from 0 without gaps
    /// Threads: any.
    static const char* GetFactName(D3d9AdapterCheckCommand command);

    /// Formats a fact about an adapter the way a rule's value is written: strings and GUIDs without quotes,
    /// int64 as 1.2.3.4, DWORD as 0x16, UINT in decimal.
    /// @param text  out: the fact; unchanged on failure
    /// @param context  the adapter's facts; owned by the caller
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for an unknown command or a null context;
    ///         VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    /// Threads: any.
    static ErrorCode GetFactText(std::string& text, const D3d9AdapterContext* context,
                                 D3d9AdapterCheckCommand command);

private:
    struct Impl;

    std::unique_ptr<Impl> m_pImpl;  ///< null if there are neither rules nor an error
};

}  // namespace velm
