#include <gtest/gtest.h>

#include "TemporaryFile.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/FileReader.h"
#include "velm/core/PathHelper.h"
#include "velm/core/Thread.h"
#include "velm/core/Tick.h"
#include "velm/posix/Control.h"

namespace velm {
namespace {

class CorePosix : public testing::Test {
protected:
    ~CorePosix() override { posix::Reset(); }
};

TEST_F(CorePosix, OpenTellsTheSystemsRefusalsApart) {
    const struct {
        DWORD lastError;
        unsigned int code;
    } cases[] = {
        {ERROR_FILE_NOT_FOUND, VELM_ERROR_CORE_NOT_EXIST},
        {ERROR_PATH_NOT_FOUND, VELM_ERROR_CORE_NOT_EXIST},
        {ERROR_INVALID_NAME, VELM_ERROR_CORE_NOT_EXIST},
        {ERROR_ACCESS_DENIED, VELM_ERROR_CORE_ACCESS_DENIED},
        {ERROR_SHARING_VIOLATION, VELM_ERROR_CORE_ACCESS_DENIED},
        {ERROR_GEN_FAILURE, VELM_ERROR_CORE_UNKNOWN},
    };
    const test::TemporaryFile file("refused.bin", "abc");
    for (const auto& c : cases) {
        posix::FailCall("CreateFileW", c.lastError);
        FileReader reader;
        EXPECT_EQ(reader.Open(file.Name()), c.code) << c.lastError;
        EXPECT_EQ(reader.Open(file.Name()), 0U);
    }
    posix::FailCall("MultiByteToWideChar", ERROR_NO_UNICODE_TRANSLATION);
    EXPECT_EQ(FileReader().Open(file.Name()), VELM_ERROR_CORE_INVALID_PARAM);
}

TEST_F(CorePosix, AFailedReadIsNotTheEndOfTheFile) {
    const test::TemporaryFile file("failing.bin", std::string(200'000, 'x'));
    std::string buffer(200'000, '\0');
    for (const std::size_t size : {std::size_t{1}, buffer.size()}) {
        FileReader reader;
        ASSERT_EQ(reader.Open(file.Name()), 0U);
        posix::FailCall("ReadFile", ERROR_GEN_FAILURE);
        unsigned long long readSize = 1;
        EXPECT_EQ(reader.Read(&readSize, buffer.data(), size), VELM_ERROR_CORE_READ_FAILED);
        EXPECT_EQ(readSize, 0U);
        EXPECT_EQ(reader.Read(&readSize, buffer.data(), size), 0U);
    }
}

TEST_F(CorePosix, AThreadThatTheSystemRefusesCanBeStartedLater) {
    Thread thread;
    ASSERT_EQ(thread.Initialize(
                  ThreadConfig(), [](void*) { return 0; }, nullptr),
              0U);
    posix::FailCall("_beginthreadex", ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(thread.Start(nullptr), VELM_ERROR_CORE_UNKNOWN);
    EXPECT_EQ(thread.Join(nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
    ASSERT_EQ(thread.Start(nullptr), 0U);
    posix::FailCall("WaitForSingleObject", ERROR_INVALID_HANDLE);
    EXPECT_EQ(thread.Join(nullptr), VELM_ERROR_CORE_UNKNOWN);
    EXPECT_EQ(thread.Join(nullptr), 0U);
}

TEST_F(CorePosix, AThreadRunsAlsoWhereItCannotBeNamed) {
    ThreadConfig config;
    config.SetName("nameless");
    for (const char* const call : {"GetModuleHandleW", "GetProcAddress", "SetThreadDescription"}) {
        posix::FailCall(call, ERROR_PROC_NOT_FOUND);
        Thread thread;
        ASSERT_EQ(thread.Initialize(
                      config, [](void*) { return 3; }, nullptr),
                  0U);
        ASSERT_EQ(thread.Start(nullptr), 0U);
        unsigned long long exitCode = 0;
        EXPECT_EQ(thread.Join(&exitCode), 0U) << call;
        EXPECT_EQ(exitCode, 3U);
    }
}

TEST_F(CorePosix, TickIsZeroWithoutACounter) {
    posix::SetPerformanceCounter(123, 1000);
    EXPECT_EQ(Tick::Get().GetCount(), 123U);
    EXPECT_EQ(Tick::GetFrequency(), 1000U);
    posix::FailCall("QueryPerformanceCounter", ERROR_GEN_FAILURE);
    posix::FailCall("QueryPerformanceFrequency", ERROR_GEN_FAILURE);
    EXPECT_EQ(Tick::Get().GetCount(), 0U);
    EXPECT_EQ(Tick::GetFrequency(), 0U);
}

TEST_F(CorePosix, AConversionThatFailsLeavesTheText) {
    std::wstring out = L"before";
    for (const unsigned int succeeding : {0U, 1U}) {
        posix::FailCall("MultiByteToWideChar", ERROR_INVALID_PARAMETER, succeeding);
        EXPECT_EQ(PathHelper::GetWstringFromUtf8String("after", out), VELM_ERROR_CORE_INVALID_PARAM);
        EXPECT_EQ(out, L"before");
    }
}

}  // namespace
}  // namespace velm
