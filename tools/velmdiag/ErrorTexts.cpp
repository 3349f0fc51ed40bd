#include "ErrorTexts.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

#include "Command.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/ErrorRegistry.h"
#include "velm/UtilErrorCode.h"

namespace velmdiag {
namespace {

constexpr ErrorText kErrorTexts[] = {
    {velm::VELM_ERROR_UTIL_UNKNOWN, "failed for an unknown reason",
     "Check that the input has the form that the call expects, and see the system's log."},
    {velm::VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY, "memory ran out",
     "Close other programs, or use smaller input; velmdiag system shows what the process uses."},
    {velm::VELM_ERROR_UTIL_INVALID_PARAM, "an argument is missing or does not have the expected form",
     "Check the argument against the documentation of the call; a link or URL must have all of its parts."},
    {velm::VELM_ERROR_UTIL_ILLEGAL_CALL, "the object's state does not allow the call",
     "Check the order of the calls: initialise first, and do not start twice."},
    {velm::VELM_ERROR_UTIL_NOT_INITIALIZED, "the object was not initialised, or could not be",
     "Call Initialize first and check its result; sizes of zero give an object without storage."},
    {velm::VELM_ERROR_UTIL_ALREADY_EXIST, "an entry with that name already exists",
     "No operation returns this code; it may come from a program that uses the libraries."},
    {velm::VELM_ERROR_UTIL_NOT_EXIST, "the requested item does not exist",
     "Check the name; velmdiag system and velmdiag adapter show what the system has."},
    {velm::VELM_ERROR_UTIL_DATA_LENGTH, "a string or a buffer is shorter than required",
     "Check the length: a key has 64 digits, and a buffer must hold the whole path."},
    {velm::VELM_ERROR_UTIL_D3D9_FAILED, "a Direct3D 9 call failed",
     "Update the display driver; velmdiag device shows which call fails and the system's own code."},
    {velm::VELM_ERROR_UTIL_DATA_BROKEN, "the data is damaged: its sizes or markers contradict each other",
     "Fetch or record the file again; velmdiag audio --info lists the chunks of a WAVE file."},
    {velm::VELM_ERROR_CORE_UNKNOWN, "the system failed for a reason without a code of its own",
     "Check that the path is that of a file and that its drive works."},
    {velm::VELM_ERROR_CORE_NOT_ENOUGH_MEMORY, "memory ran out",
     "Close other programs, or use smaller input; velmdiag system shows what the process uses."},
    {velm::VELM_ERROR_CORE_INVALID_PARAM, "an argument is missing or unusable, such as an empty file name",
     "Check that the name is not empty and is valid UTF-8."},
    {velm::VELM_ERROR_CORE_ILLEGAL_CALL, "the object's state does not allow the call",
     "Check the order of the calls: a thread is started once and joined once."},
    {velm::VELM_ERROR_CORE_NOT_INITIALIZED, "the object was not initialised, or no file is open",
     "Check the result of the call that initialises or opens it."},
    {velm::VELM_ERROR_CORE_NOT_EXIST, "there is no such file",
     "Check the spelling and the folder; a name without a folder refers to the current folder."},
    {velm::VELM_ERROR_CORE_ACCESS_DENIED, "is a folder, or access is denied",
     "Check that it is a file, that you may read it, and that no other program has locked it."},
    {velm::VELM_ERROR_CORE_DATA_LENGTH, "the buffer is too small", "Pass a larger buffer."},
    {velm::VELM_ERROR_CORE_END_OF_DATA, "the file ends too early",
     "The file was truncated or is still being written: fetch it again and compare its size."},
    {velm::VELM_ERROR_CORE_READ_FAILED, "the system failed to read it",
     "Check the drive or the network share that it is on; copy it to a local drive and try again."},
    {velm::VELM_ERROR_CORE_LIMIT_EXCEEDED, "a semaphore is at its maximum",
     "Do not post more often than threads wait, or give the semaphore a larger maximum."},
    {velm::VELM_ERROR_CORE_THREAD_EXCEPTION, "the function of a thread threw an exception",
     "Catch exceptions within the thread's function, where their types are known."},
    {velm::VELM_ERROR_CORE_NOTHING_TO_READ, "its header gives blocks of zero bytes",
     "Check the number of channels and the sample rate, which velmdiag audio --info shows."},
};

}  // namespace

std::span<const ErrorText> GetErrorTexts() {
    return kErrorTexts;
}

const ErrorText* FindErrorText(unsigned int code) {
    const auto* const found = std::ranges::find(kErrorTexts, code, &ErrorText::code);
    return found != std::end(kErrorTexts) ? found : nullptr;
}

std::string HexOf(unsigned int code) {
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << std::setw(8) << std::setfill('0') << code;
    return text.str();
}

std::string NameOf(velm::ErrorCode code) {
    const velm::ErrorCodeInfo* const info = velm::FindErrorCode(code.GetCode());
    return info != nullptr ? info->name : HexOf(code.GetCode());
}

std::string Describe(velm::ErrorCode code) {
    const ErrorText* const text = FindErrorText(code.GetCode());
    return std::string(text != nullptr ? text->meaning : "failed") + " (" + NameOf(code) + ')';
}

void CheckFile(const std::string& name, velm::ErrorCode result, int exitStatus) {
    if (result.IsFailed() && name.empty()) {
        throw Failure{"the file name is empty (" + NameOf(result) + ')', exitStatus};
    }
    if (result.IsFailed()) {
        throw Failure{name + ": " + Describe(result), exitStatus};
    }
}

}  // namespace velmdiag
