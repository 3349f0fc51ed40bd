#include "Operation.h"
#include "TemporaryFile.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/ErrorRegistry.h"
#include "velm/core/FileReader.h"
#include "velm/core/PathHelper.h"
#include "velm/core/Semaphore.h"
#include "velm/core/Thread.h"

namespace velm::test {
namespace {

constexpr long long kCoreNoMemory = VELM_ERROR_CORE_NOT_ENOUGH_MEMORY;
constexpr long long kCoreInvalid = VELM_ERROR_CORE_INVALID_PARAM;
constexpr long long kCoreUnknown = VELM_ERROR_CORE_UNKNOWN;

long long OpenFile(Attempt& attempt) {
    const TemporaryFile file("a-file-with-a-long-name.bin", "abc");
    FileReader reader;
    const long long code = attempt([&] { return reader.Open(file.Name()); });
    unsigned char byte = 0;
    EXPECT_EQ(reader.ReadU8(&byte), code == 0 ? 0U : VELM_ERROR_CORE_NOT_INITIALIZED);
    EXPECT_EQ(reader.Open(file.Name()), 0U);
    return code;
}

// One byte through the buffer, and a block past it.
long long ReadFileThrough(Attempt& attempt) {
    const TemporaryFile file("read.bin", std::string(300'000, 'x'));
    FileReader reader;
    reader.Open(file.Name());
    std::string buffer(200'000, '\0');
    unsigned long long size = 1;
    const long long code = attempt([&] {
        unsigned char byte = 0;
        const ErrorCode result = reader.ReadU8(&byte);
        return result.IsFailed() ? result : reader.Read(&size, buffer.data(), buffer.size());
    });
    EXPECT_TRUE(code == 0 ? size == buffer.size() : size < buffer.size());
    EXPECT_EQ(reader.Read(&size, buffer.data(), 50'000), 0U);
    return code;
}

long long StartAndJoin(Attempt& attempt) {
    Thread thread;
    ThreadConfig config;
    config.SetName("a thread with a rather long name");
    const auto three = [](void*) { return 3; };
    EXPECT_EQ(thread.Initialize(config, three, nullptr), 0U);
    unsigned long long exitCode = 0;
    const long long code = attempt([&] {
        const ErrorCode result = thread.Start(nullptr);
        return result.IsFailed() ? result : thread.Join(&exitCode);
    });
    EXPECT_EQ(exitCode, code == 0 ? 3U : 0U);
    if (code != 0 && thread.Join(nullptr).IsFailed()) {  // never started: it still can be
        EXPECT_EQ(thread.Start(nullptr), 0U);
        EXPECT_EQ(thread.Join(nullptr), 0U);
    }
    return code;
}

long long RegisterCode(Attempt& attempt) {
    static unsigned int code = 0xC0000000;
    ++code;
    attempt([] { return RegisterErrorCode(code, kText.c_str(), kText.c_str()), 0; });
    return Number(FindErrorCode(code));
}

}  // namespace

Operations CoreOperations() {
    const auto toWide = [](auto& out) { return PathHelper::GetWstringFromString(932, kText, out); };
    return {
        {.what = "PathHelper",
         .run = Converts(kWide, toWide),
         .noMemory = {kCoreNoMemory, kCoreInvalid},
         .failures = {{"MultiByteToWideChar", kCoreInvalid}}},
        {.what = "FileReader::Open",
         .run = OpenFile,
         .noMemory = {kCoreNoMemory, kCoreUnknown},
         .failures = {{"MultiByteToWideChar", kCoreInvalid},
                      {"CreateFileW", VELM_ERROR_CORE_NOT_EXIST, ERROR_FILE_NOT_FOUND},
                      {"CreateFileW", VELM_ERROR_CORE_NOT_EXIST, ERROR_PATH_NOT_FOUND},
                      {"CreateFileW", VELM_ERROR_CORE_NOT_EXIST, ERROR_INVALID_NAME},
                      {"CreateFileW", VELM_ERROR_CORE_ACCESS_DENIED, ERROR_ACCESS_DENIED},
                      {"CreateFileW", VELM_ERROR_CORE_ACCESS_DENIED, ERROR_SHARING_VIOLATION},
                      {"CreateFileW", kCoreUnknown, ERROR_GEN_FAILURE}}},
        {.what = "FileReader::Read",
         .run = ReadFileThrough,
         .failures = {{"ReadFile", VELM_ERROR_CORE_READ_FAILED}}},
        {.what = "Thread::Start",
         .run = StartAndJoin,
         .noMemory = {kCoreUnknown},
         .failures = {{"_beginthreadex", kCoreUnknown},
                      {"WaitForSingleObject", kCoreUnknown},
                      {"CloseHandle", 0},
                      {"WaitOnAddress", 0},
                      // Without its name a thread runs all the same.
                      {"GetModuleHandleW", 0},
                      {"GetProcAddress", 0},
                      {"MultiByteToWideChar", 0},
                      {"SetThreadDescription", 0}}},
        {.what = "Semaphore",
         .run = Does([] { return Semaphore(1, 1).Wait(); }),
         .noMemory = {kCoreNoMemory}},
        {.what = "RegisterErrorCode", .run = RegisterCode, .outcome = 1, .noMemory = {0}, .keeps = true},
    };
}

}  // namespace velm::test
