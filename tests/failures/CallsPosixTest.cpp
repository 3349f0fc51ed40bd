/// @file
/// Makes each Windows call of every operation fail, one at a time.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>

#include <velm/VelmUtil.h>

#include "Operation.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/posix/Control.h"

namespace velm::test {
namespace {

struct Failure {
    std::string what;   ///< the operation
    std::string calls;  ///< names, separated by spaces
    long long outcome;
    DWORD lastError = ERROR_GEN_FAILURE;
};

// A thread also runs without a name; whether it waits depends on the scheduler.
constexpr char kHarmless[] =
    "CloseHandle GetModuleHandleW GetProcAddress MultiByteToWideChar SetThreadDescription WaitOnAddress";

/// Every call that each operation makes.
const Failure kFailures[] = {
    {"D3d9AdapterRules", "MultiByteToWideChar", VELM_ERROR_CORE_INVALID_PARAM},
    {"D3d9AdapterRules", "CreateFileW", VELM_ERROR_CORE_UNKNOWN},
    {"D3d9AdapterRules", "CloseHandle", 0},
    {"D3d9AdapterRules", "ReadFile", VELM_ERROR_CORE_READ_FAILED},
    {"EnvConfigReader", "MultiByteToWideChar _wdupenv_s WideCharToMultiByte", kOld},
    {"IniConfigReader", "MultiByteToWideChar WideCharToMultiByte", kOld},
    {"IniConfigReader", "GetPrivateProfileStringW", kEmpty},
    {"PathHelper", "MultiByteToWideChar", VELM_ERROR_CORE_INVALID_PARAM},
    {"FileReader", "MultiByteToWideChar", VELM_ERROR_CORE_INVALID_PARAM},
    {"FileReader", "CreateFileW", VELM_ERROR_CORE_NOT_EXIST, ERROR_FILE_NOT_FOUND},
    {"FileReader", "CreateFileW", VELM_ERROR_CORE_NOT_EXIST, ERROR_PATH_NOT_FOUND},
    {"FileReader", "CreateFileW", VELM_ERROR_CORE_NOT_EXIST, ERROR_INVALID_NAME},
    {"FileReader", "CreateFileW", VELM_ERROR_CORE_ACCESS_DENIED, ERROR_ACCESS_DENIED},
    {"FileReader", "CreateFileW", VELM_ERROR_CORE_ACCESS_DENIED, ERROR_SHARING_VIOLATION},
    {"FileReader", "CreateFileW", VELM_ERROR_CORE_UNKNOWN},
    {"FileReader", "CloseHandle", 0},
    {"FileReader", "ReadFile", VELM_ERROR_CORE_READ_FAILED},
    {"Thread", "_beginthreadex WaitForSingleObject", VELM_ERROR_CORE_UNKNOWN},
    {"Thread", kHarmless, 0},
    {"GetUtf8StringFromOemcpString", "MultiByteToWideChar", VELM_ERROR_CORE_INVALID_PARAM},
    {"GetUtf8StringFromOemcpString", "WideCharToMultiByte", VELM_ERROR_UTIL_INVALID_PARAM},
    {"GetFullPath", "GetModuleFileNameW WideCharToMultiByte", VELM_ERROR_UTIL_INVALID_PARAM},
    {"FileStdio", "fopen_s", 0},
    {"LoadClassPointerFromDll", "MultiByteToWideChar LoadLibraryW", 1},
    {"LoadClassPointerFromDll", "GetProcAddress", 2},
    {"ThreadCaller", "_beginthreadex", 1},
    {"ThreadCaller", "WaitForSingleObject", -1},
    {"ThreadCaller", kHarmless, 65535},
    {"SchedulingThread", "AvSetMmThreadCharacteristicsW AvSetMmThreadPriority", 0},
    {"CallSetWindowText", "MultiByteToWideChar SetWindowTextW", 0},
    {"GetMaxScreenSize", "EnumDisplayDevicesW CreateDCW GetDeviceCaps DeleteDC", 0},
    {"Watchdog", "SetTimer", VELM_ERROR_UTIL_UNKNOWN},
    {"MemoryInfo", "OpenProcess", 0xFFFFFFFF},
    {"MemoryInfo", "GetProcessMemoryInfo CloseHandle", 0},
};

/// Runs an operation in which a call fails, after `skip` others of its name.
/// @param calls  out: the calls made
long long RunWith(const Operation& operation, const std::string& call, DWORD lastError, unsigned int skip,
                  std::vector<std::string>& calls) {
    const auto begin = [&] {
        posix::FailCall(call.c_str(), lastError, skip);
        posix::StartRecording();
    };
    const auto end = [&] {
        calls = posix::RecordedCalls();
        posix::Reset();
    };
    return RunOne(operation, {begin, end});
}

/// Makes the call with that number fail in each way that the table lists.
int FailOne(const Operation& operation, const std::string& call, unsigned int number) {
    int cases = 0;
    std::vector<std::string> ignored;
    for (const Failure& failure : kFailures) {
        const bool listed = (' ' + failure.calls + ' ').find(' ' + call + ' ') != std::string::npos;
        if (failure.what == operation.what && listed) {
            const long long outcome = RunWith(operation, call, failure.lastError, number, ignored);
            EXPECT_EQ(outcome, failure.outcome) << call << " number " << number;
            ++cases;
        }
    }
    EXPECT_NE(cases, 0) << call << " number " << number << " is not in the table";
    return cases;
}

TEST(Failures, FailedCallsGiveTheDocumentedOutcome) {
    int cases = 0;
    for (const Operation& operation : AllOperations()) {
        SCOPED_TRACE(operation.what);
        std::vector<std::string> calls;
        EXPECT_EQ(RunWith(operation, "", 0, 0, calls), operation.outcome);
        std::map<std::string, unsigned int> times;
        for (const std::string& call : calls) {
            cases += FailOne(operation, call, times[call]++);
        }
    }
    std::printf("%d failed calls in %zu operations\n", cases, AllOperations().size());
}

}  // namespace
}  // namespace velm::test
