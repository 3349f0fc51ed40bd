#pragma once

#include <span>
#include <string>

#include "velm/core/ErrorCode.h"

namespace velmdiag {

/// The explanation of an error code, for users.
struct ErrorText {
    unsigned int code;
    const char* meaning;  ///< completes a sentence that begins "FILE: "
    const char* advice;   ///< what to try
};

/// Every code of both libraries.
std::span<const ErrorText> GetErrorTexts();

/// Returns null for an unknown code.
const ErrorText* FindErrorText(unsigned int code);

/// Such as "0x8149AC0A".
std::string HexOf(unsigned int code);

/// The registered name of a code, such as "VELM_ERROR_UTIL_DATA_BROKEN"; its number if it has none.
std::string NameOf(velm::ErrorCode code);

/// The meaning of a code with its name in parentheses, for the end of a sentence.
std::string Describe(velm::ErrorCode code);

/// If the result is a failure, throws Failure with the file's name and the meaning of the result.
void CheckFile(const std::string& name, velm::ErrorCode result, int exitStatus = 1);

}  // namespace velmdiag
