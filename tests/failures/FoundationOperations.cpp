#include <velm/VelmUtil.h>

#include "Operation.h"
#include "TemporaryFile.h"
#include "velm/core/CoreErrorCode.h"

namespace velm::test {
namespace {

using W = WindowsUtil;

std::string Below(const std::string& end) {
    std::string full;
    W::GetFullPathForExecDirFile(full, end);
    return full;
}

long long OpenStdio(Attempt& attempt) {
    const TemporaryFile file("stdio.bin", "abc");
    FileStdio stream;
    const long long outcome = attempt([&] { return stream.Open(file.Name(), "rb"); });
    EXPECT_EQ(stream.Get() != nullptr, outcome == 1);
    EXPECT_NE(stream.Open(file.Name(), "rb"), nullptr);
    return outcome;
}

long long LoadPlugin(Attempt& attempt) {
    const std::string plugin = Below("sample_plugin" VELM_MODULE_SUFFIX);
    LoadClassPointerFromDll loader;
    void* object = &loader;
    const long long outcome = attempt([&] { return loader.Initialize(plugin.c_str(), &object); });
    EXPECT_EQ(object != nullptr, outcome == 0);
    EXPECT_EQ(loader.Initialize(plugin.c_str(), &object), 0);
    return outcome;
}

long long MeasureScreens(Attempt& attempt) {
    posix::SetDisplays({{L"one", DISPLAY_DEVICE_ATTACHED_TO_DESKTOP, 30, 40}});
    int width = 1;
    int height = 1;
    return attempt([&] { return W::GetMaxScreenSize(&width, &height, 0), 100 * width + height; });
}

}  // namespace

Operations FoundationOperations() {
    constexpr long long kNoMemory = VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    constexpr long long kInvalid = VELM_ERROR_UTIL_INVALID_PARAM;
    constexpr long long kCoreNoMemory = VELM_ERROR_CORE_NOT_ENOUGH_MEMORY;
    constexpr long long kCoreInvalid = VELM_ERROR_CORE_INVALID_PARAM;
    static const std::string plugin = Below("sample_plugin" VELM_MODULE_SUFFIX);
    return {
        {.what = "GetUtf8StringFromOemcpString",
         .run = Converts(kText, [](auto& out) { return W::GetUtf8StringFromOemcpString(kText, out); }),
         .noMemory = {kCoreNoMemory, kNoMemory, kCoreInvalid},
         .failures = {{"MultiByteToWideChar", kCoreInvalid}, {"WideCharToMultiByte", kInvalid}}},
        {.what = "GetFullPathForResourcesDirFile",
         .run = Converts(Below("resources\\" + kText),
                         [](auto& out) { return W::GetFullPathForResourcesDirFile(out, kText); }),
         .noMemory = {kNoMemory, kInvalid},
         .failures = {{"GetModuleFileNameW", kInvalid}, {"WideCharToMultiByte", kInvalid}}},
        {.what = "CallLoadLibrary",
         .run = Does([] { return W::CallLoadLibrary(plugin.c_str()) != nullptr; }),
         .outcome = 1,
         .noMemory = {0},
         .failures = {{"MultiByteToWideChar", 0}, {"LoadLibraryW", 0}}},
        {.what = "GetMaxScreenSize",
         .run = MeasureScreens,
         .outcome = 3040,
         .noMemory = {0},
         .failures = {{"EnumDisplayDevicesW", 0, ERROR_GEN_FAILURE, 0},
                      {"EnumDisplayDevicesW", 3040, ERROR_GEN_FAILURE, 1},
                      {"CreateDCW", 0},
                      {"DeleteDC", 3040},
                      {"GetDeviceCaps", 40, ERROR_GEN_FAILURE, 0},
                      {"GetDeviceCaps", 3000, ERROR_GEN_FAILURE, 1}}},
        {.what = "FileStdio", .run = OpenStdio, .outcome = 1, .noMemory = {0}, .failures = {{"fopen_s", 0}}},
        {.what = "LoadClassPointerFromDll::Initialize",
         .run = LoadPlugin,
         .noMemory = {1, 3},
         .failures = {{"MultiByteToWideChar", 1}, {"LoadLibraryW", 1}, {"GetProcAddress", 2}}},
    };
}

}  // namespace velm::test
