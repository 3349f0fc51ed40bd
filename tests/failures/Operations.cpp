#include <gtest/gtest.h>
#include <velm/VelmUtil.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "FakeDevice9.h"
#include "FakeDirect3D9.h"
#include "MessageLoop.h"
#include "Operation.h"
#include "Riff.h"
#include "TemporaryFile.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/ErrorRegistry.h"
#include "velm/core/FileReader.h"
#include "velm/core/Mutex.h"
#include "velm/core/PathHelper.h"
#include "velm/core/ProcessEnd.h"
#include "velm/core/Semaphore.h"
#include "velm/core/Thread.h"
#include "velm/core/Tick.h"

namespace velm {
namespace {

// Texts that do not fit into a string object itself.
const std::string kText = "a text that is longer than a string object";
const std::wstring kWide(kText.begin(), kText.end());
const std::string kUrl =
    "https://a.long.host.of.some.domain/and/a/long/path?name-of-a-parameter=value-of-it#end";

// The outcomes of what writes an output: as it was, emptied, or the expected.
enum Written : long long { kOld, kEmpty, kNew };

template <typename Text>
Written WhatIsIn(const Text& out, const Text& old, const Text& expected) {
    EXPECT_TRUE(out == old || out == expected || out.empty());
    return out == expected ? kNew : out.empty() ? kEmpty : kOld;
}

struct Table {
    std::vector<Operation> operations;

    void Add(const char* names, long long outcome, std::vector<long long> noMemory,
             std::vector<Failure> failures, std::function<long long(Attempt&)> run) {
        operations.push_back({names, std::move(run), outcome, std::move(noMemory), std::move(failures)});
    }
};

/// An operation that gives a text and a code: when it fails, the text stays.
template <typename Text, typename Body>
auto Converts(const Text& expected, Body body) {
    return [=](Attempt& attempt) {
        const Text old(3, 'o');
        Text out = old;
        const long long code = attempt([&] { return body(out); });
        EXPECT_EQ(out, code == 0 ? expected : old);
        EXPECT_EQ(body(out), 0U) << "a second time";
        return code;
    };
}

/// An operation that gives a text at most.
template <typename Body>
auto Writes(Body body) {
    return [=](Attempt& attempt) -> long long {
        std::string out = "old";
        const bool threw = attempt([&] { return body(out), 0; }) == kThrew;
        const Written written = WhatIsIn<std::string>(out, "old", kText);
        return threw ? kThrew : written;
    };
}

void AddCore(Table& table) {
    constexpr long long kNoMemory = VELM_ERROR_CORE_NOT_ENOUGH_MEMORY;
    constexpr long long kInvalid = VELM_ERROR_CORE_INVALID_PARAM;
    constexpr long long kUnknown = VELM_ERROR_CORE_UNKNOWN;
    const auto wait = [](auto& object, auto release) {
        return [&object, release](Attempt& attempt) {
            std::thread releaser([&] {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                release(object);
            });
            const long long code = attempt([&] { return object.Wait(); });
            releaser.join();
            return code;
        };
    };
    static Semaphore semaphore(0, 1);
    static SyncEvent event(false, false);
    const auto open = [](Attempt& attempt) {
        const test::TemporaryFile file("a-file-with-a-long-name.bin", "abc");
        FileReader reader;
        const long long code = attempt([&] { return reader.Open(file.Name()); });
        unsigned char byte = 0;
        EXPECT_EQ(reader.ReadU8(&byte), code == 0 ? 0U : VELM_ERROR_CORE_NOT_INITIALIZED);
        EXPECT_EQ(reader.Open(file.Name()), 0U);
        return code;
    };
    table.Add("velm::PathHelper::*", 0, {kNoMemory}, {{"MultiByteToWideChar", kInvalid}},
              Converts(kWide, [](auto& out) { return PathHelper::GetWstringFromUtf8String(kText, out); }));
    table.Add("velm::PathHelper::*", 0, {kNoMemory}, {{"MultiByteToWideChar", kInvalid}},
              Converts(kWide, [](auto& out) { return PathHelper::GetWstringFromOemcpString(kText, out); }));
    table.Add("velm::PathHelper::*", 0, {kNoMemory, kInvalid}, {{"MultiByteToWideChar", kInvalid}},
              Converts(kWide, [](auto& out) { return PathHelper::GetWstringFromString(932, kText, out); }));
    table.Add("velm::FileReader::* velm::FileReader::HandleCloser::*", 0, {kNoMemory, kUnknown},
              {{"MultiByteToWideChar", kInvalid},
               {"CreateFileW", VELM_ERROR_CORE_NOT_EXIST, ERROR_FILE_NOT_FOUND},
               {"CreateFileW", VELM_ERROR_CORE_NOT_EXIST, ERROR_PATH_NOT_FOUND},
               {"CreateFileW", VELM_ERROR_CORE_NOT_EXIST, ERROR_INVALID_NAME},
               {"CreateFileW", VELM_ERROR_CORE_ACCESS_DENIED, ERROR_ACCESS_DENIED},
               {"CreateFileW", VELM_ERROR_CORE_ACCESS_DENIED, ERROR_SHARING_VIOLATION},
               {"CreateFileW", kUnknown, ERROR_GEN_FAILURE}},
              open);
    table.Add("velm::FileReader::* velm::IReader::*", 0, {}, {{"ReadFile", VELM_ERROR_CORE_READ_FAILED}},
              [](Attempt& attempt) {
                  const test::TemporaryFile file("read.bin", std::string(300'000, 'x'));
                  FileReader reader;
                  reader.Open(file.Name());
                  std::string buffer(200'000, '\0');
                  unsigned long long size = 1;
                  const long long code = attempt([&] {
                      unsigned char byte = 0;  // one by one through the buffer, and a block past it
                      const ErrorCode result = reader.ReadU8(&byte);
                      return result.IsFailed() ? result : reader.Read(&size, buffer.data(), buffer.size());
                  });
                  EXPECT_TRUE(code == 0 ? size == buffer.size() : size < buffer.size());
                  EXPECT_EQ(reader.Read(&size, buffer.data(), 50'000), 0U);
                  return code;
              });
    table.Add("velm::FileReader::*", 0, {}, {{"CloseHandle", 0}}, [](Attempt& attempt) {
        const test::TemporaryFile file("closed.bin", "abc");
        FileReader reader;
        reader.Open(file.Name());
        return attempt([&] { return reader.Close(), 0; });
    });
    table.Add("velm::Thread::*", 0, {kNoMemory}, {}, [](Attempt& attempt) {
        Thread thread;
        ThreadConfig config;
        const long long code = attempt([&] {
            return thread.Initialize(
                config, [](void*) { return 3; }, nullptr);
        });
        EXPECT_EQ(thread.Start(nullptr), code == 0 ? 0U : VELM_ERROR_CORE_ILLEGAL_CALL);
        return code;
    });
    table.Add("velm::Thread::* velm::Thread::Impl::*", 0, {kUnknown},
              {{"_beginthreadex", kUnknown},
               {"WaitForSingleObject", kUnknown},
               {"CloseHandle", 0},
               {"WaitOnAddress", 0},
               // Without its name a thread runs all the same.
               {"GetModuleHandleW", 0},
               {"GetProcAddress", 0},
               {"MultiByteToWideChar", 0},
               {"SetThreadDescription", 0}},
              [](Attempt& attempt) {
                  Thread thread;
                  ThreadConfig config;
                  config.SetName("a thread with a rather long name");
                  thread.Initialize(
                      config, [](void*) { return 3; }, nullptr);
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
              });
    table.Add("velm::ThreadConfig::*", 1 << 20, {kThrew}, {}, [](Attempt& attempt) {
        ThreadConfig config;
        config.SetStackSize(1 << 20);
        const long long outcome =
            attempt([&] { return config.SetName(kText.c_str()), config.GetStackSize(); });
        EXPECT_EQ(config.GetName(), outcome == kThrew ? "" : kText);
        return outcome;
    });
    table.Add("velm::Semaphore::*", 0, {kNoMemory}, {},
              [](Attempt& attempt) { return attempt([] { return Semaphore(1, 1).Wait(); }); });
    table.Add("velm::Semaphore::*", 0, {}, {{"WaitOnAddress", 0}},
              wait(semaphore, [](Semaphore& s) { s.Post(1); }));
    table.Add("velm::SyncEvent::*", 0, {}, {{"WaitOnAddress", 0}},
              wait(event, [](SyncEvent& e) { e.Set(); }));
    table.Add("velm::IsProcessEnding", 0, {}, {},
              [](Attempt& attempt) { return attempt([] { return IsProcessEnding(); }); });
    table.Add("velm::Tick::*", 123, {}, {{"QueryPerformanceCounter", 0}}, [](Attempt& attempt) {
        posix::SetPerformanceCounter(123, 1000);
        return attempt([] { return Tick::Get().GetCount(); });
    });
    table.Add("velm::Tick::*", 1000, {}, {{"QueryPerformanceFrequency", 0}}, [](Attempt& attempt) {
        posix::SetPerformanceCounter(123, 1000);
        return attempt([] { return Tick::GetFrequency(); });
    });
    table.Add("velm::RegisterErrorCode velm::FindErrorCode", 1, {0}, {}, [](Attempt& attempt) {
        static unsigned int code = 0xC0000000;
        ++code;
        attempt([] { return RegisterErrorCode(code, kText.c_str(), kText.c_str()), 0; });
        return Number(FindErrorCode(code));
    });
    table.operations.back().keeps = true;
    table.Add("velm::GetRegisteredErrorCodes", 1, {kThrew}, {},
              [](Attempt& attempt) { return attempt([] { return GetRegisteredErrorCodes().size() > 9; }); });
}

void AddFoundation(Table& table) {
    constexpr long long kNoMemory = VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    constexpr long long kInvalid = VELM_ERROR_UTIL_INVALID_PARAM;
    constexpr long long kCoreNoMemory = VELM_ERROR_CORE_NOT_ENOUGH_MEMORY;
    constexpr long long kCoreInvalid = VELM_ERROR_CORE_INVALID_PARAM;
    const char* const kAll = "velm::WindowsUtil::*";
    const std::vector<Failure> toWide = {{"MultiByteToWideChar", kCoreInvalid}};
    const std::vector<Failure> fromWide = {{"WideCharToMultiByte", kInvalid}};
    const std::vector<Failure> both = {{"MultiByteToWideChar", kCoreInvalid},
                                       {"WideCharToMultiByte", kInvalid}};
    const std::vector<Failure> path = {{"GetModuleFileNameW", kInvalid}, {"WideCharToMultiByte", kInvalid}};
    using W = WindowsUtil;
    static wchar_t value[40];
    static char name[40];
    static char longName[800];
    static const UniqueWindow window = MakeWindow(L"a class of windows with a name");
    static std::string plugin;
    W::GetFullPathForExecDirFile(plugin, "sample_plugin" VELM_MODULE_SUFFIX);
    const auto below = [](const std::string& end) {
        std::string full;
        W::GetFullPathForExecDirFile(full, end);
        return full;
    };
    // A wrapper that takes texts: none is shown when one of them cannot be converted.
    const auto shows = [](auto body) { return [=](Attempt& attempt) { return attempt(body); }; };
    table.Add(kAll, 0, {kCoreNoMemory}, toWide,
              Converts(kWide, [](auto& out) { return W::GetWstringFromUtf8String(kText, out); }));
    table.Add(kAll, 0, {kCoreNoMemory, kCoreInvalid}, toWide,
              Converts(kWide, [](auto& out) { return W::GetWstringFromOemcpString(kText, out); }));
    table.Add(kAll, 0, {kNoMemory}, fromWide,
              Converts(kText, [](auto& out) { return W::GetUtf8StringFromWstring(kWide, out); }));
    table.Add(kAll, 0, {kNoMemory, kInvalid}, fromWide,
              Converts(kText, [](auto& out) { return W::GetOemcpStringFromWstring(kWide, out); }));
    table.Add(kAll, 0, {kNoMemory, kInvalid}, fromWide,
              Converts(kText, [](auto& out) { return W::GetUtf8StringFromTstring(kWide, out); }));
    table.Add(kAll, 0, {kNoMemory}, {},
              Converts(kWide, [](auto& out) { return W::GetWStringFromTstring(kWide, out); }));
    table.Add(kAll, 0, {kCoreNoMemory, kNoMemory, kInvalid}, both,
              Converts(kText, [](auto& out) { return W::GetOemcpStringFromUtf8String(kText, out); }));
    table.Add(kAll, 0, {kCoreNoMemory, kNoMemory, kCoreInvalid}, both,
              Converts(kText, [](auto& out) { return W::GetUtf8StringFromOemcpString(kText, out); }));
    table.Add(kAll, 0, {kNoMemory, kInvalid}, path,
              Converts(below(kText), [](auto& out) { return W::GetFullPathForExecDirFile(out, kText); }));
    table.Add(kAll, 0, {kNoMemory, kInvalid}, path,
              Converts(below("resources\\"), [](auto& out) { return W::GetFullPathForResourcesDir(out); }));
    table.Add(kAll, 0, {kNoMemory, kInvalid}, path, Converts(below("resources\\" + kText), [](auto& out) {
                  return W::GetFullPathForResourcesDirFile(out, kText);
              }));
    table.Add(kAll, 0, {kNoMemory, kInvalid}, path, [](Attempt& attempt) {
        char buffer[500] = "old";
        const long long code =
            attempt([&] { return W::GetFullPathForExecDirFile(buffer, sizeof buffer, kText.c_str()); });
        EXPECT_EQ(std::string(buffer) == "old", code != 0);
        return code;
    });
    table.Add(kAll, 1, {0}, {{"GetModuleFileNameW", 0}, {"WideCharToMultiByte", 0}},
              shows([] { return W::CallGetModuleFileName(nullptr, longName, sizeof longName) > 0; }));
    table.Add(
        kAll, 3040, {0},
        {{"EnumDisplayDevicesW", 0, ERROR_GEN_FAILURE, 0},
         {"EnumDisplayDevicesW", 3040, ERROR_GEN_FAILURE, 1},
         {"CreateDCW", 0},
         {"DeleteDC", 3040},
         {"GetDeviceCaps", 40, ERROR_GEN_FAILURE, 0},
         {"GetDeviceCaps", 3000, ERROR_GEN_FAILURE, 1}},
        [](Attempt& attempt) {
            posix::SetDisplays({{L"one", DISPLAY_DEVICE_ATTACHED_TO_DESKTOP, 30, 40}});
            int width = 1;
            int height = 1;
            return attempt([&] { return W::GetMaxScreenSize(&width, &height, 0), 100 * width + height; });
        });
    table.Add(kAll, 1, {0}, {{"MultiByteToWideChar", 0}, {"LoadLibraryW", 0}},
              shows([] { return W::CallLoadLibrary(plugin.c_str()) != nullptr; }));
    table.Add(kAll, 1, {0}, {{"MultiByteToWideChar", 0}, {"LoadImageW", 0}},
              shows([] { return W::CallLoadImage(nullptr, kText.c_str(), 1, 2, 3, 4); }));
    table.Add(kAll, 0, {}, {{"MultiByteToWideChar", 0}, {"OutputDebugStringW", 0}},
              shows([] { return W::CallOutputDebugString(kText.c_str()), 0; }));
    table.Add(kAll, IDOK, {0}, {{"MultiByteToWideChar", 0}, {"MessageBoxW", 0}},
              shows([] { return W::CallMessageBox(nullptr, kText.c_str(), kText.c_str(), 0); }));
    table.Add(kAll, 30, {0}, {{"GetClassNameW", 0}, {"WideCharToMultiByte", 0}},
              shows([] { return W::CallGetClassName(window.get(), name, 40); }));
    table.Add(kAll, 39, {0}, {{"MultiByteToWideChar", 0}, {"GetPrivateProfileStringW", 0}}, shows([] {
                  return W::CallGetPrivateProfileString("section", "key", kText.c_str(), value, 40,
                                                        "./no.ini");
              }));
    table.Add(kAll, 5, {}, {{"MultiByteToWideChar", 5}, {"GetPrivateProfileIntW", 5}},
              shows([] { return W::CallGetPrivateProfileInt("section", "key", 5, "./no.ini"); }));
    table.Add(kAll, 4294967291, {0}, {{"MultiByteToWideChar", 0}, {"GetPrivateProfileIntW", 4294967291}},
              shows([] { return W::CallGetPrivateProfileInt("section", "key", -5, "./no.ini"); }));
    table.Add(kAll, 1, {0}, {{"MultiByteToWideChar", 0}, {"TextOutW", 0}},
              shows([] { return W::CallTextOut(nullptr, 0, 0, kText.c_str(), 4); }));
    table.Add(kAll, 1, {0}, {{"MultiByteToWideChar", 0}, {"SetWindowTextW", 0}},
              shows([] { return W::CallSetWindowText(window.get(), kText.c_str()); }));
    table.Add("velm::FileStdio::*", 1, {0}, {{"fopen_s", 0}}, [](Attempt& attempt) {
        const test::TemporaryFile file("stdio.bin", "abc");
        FileStdio stream;
        const long long outcome = attempt([&] { return stream.Open(file.Name(), "rb"); });
        EXPECT_EQ(stream.Get() != nullptr, outcome == 1);
        EXPECT_NE(stream.Open(file.Name(), "rb"), nullptr);
        return outcome;
    });
    table.Add("velm::LoadClassPointerFromDll::*", 0, {1, 3},
              {{"MultiByteToWideChar", 1}, {"LoadLibraryW", 1}, {"GetProcAddress", 2}}, [](Attempt& attempt) {
                  LoadClassPointerFromDll loader;
                  void* object = &loader;
                  const long long outcome =
                      attempt([&] { return loader.Initialize(plugin.c_str(), &object); });
                  EXPECT_EQ(object != nullptr, outcome == 0);
                  EXPECT_EQ(loader.Initialize(plugin.c_str(), &object), 0);
                  return outcome;
              });
    table.Add("velm::LoadClassPointerFromDll::*", 0, {}, {{"GetProcAddress", 0}, {"FreeLibrary", 0}},
              [](Attempt& attempt) {
                  LoadClassPointerFromDll loader;
                  void* object = nullptr;
                  std::string noRelease;
                  W::GetFullPathForExecDirFile(noRelease, "sample_plugin_without_release" VELM_MODULE_SUFFIX);
                  loader.Initialize(noRelease.c_str(), &object);
                  return attempt([&] { return loader.Terminate(); });
              });
}

void AddThread(Table& table) {
    table.Add("velm::ThreadCaller::*", 0, {1, 2, 3},
              {{"_beginthreadex", 1},
               {"GetModuleHandleW", 0},
               {"GetProcAddress", 0},
               {"MultiByteToWideChar", 0},
               {"SetThreadDescription", 0},
               {"WaitOnAddress", 0}},
              [](Attempt& attempt) {
                  static std::atomic<int> running;
                  running = 0;
                  const auto run = [](void*) { return ++running; };
                  const auto waitFor = [](int count) {
                      while (running < count) {
                          Thread::Sleep(1);
                      }
                  };
                  ThreadCaller caller;
                  caller.Start(run, nullptr, "earlier");
                  waitFor(1);
                  int started = -2;
                  attempt([&] {
                      caller.Start(run, nullptr, kText.c_str());
                      started = caller.GetState();
                      return waitFor(started == 0 ? 2 : 1), 0;
                  });
                  caller.Stop();
                  EXPECT_EQ(caller.GetState(), started == 0 ? 65535 : started);
                  return started;
              });
    table.Add("velm::ThreadCaller::*", 65535, {}, {{"WaitForSingleObject", -1}, {"CloseHandle", 65535}},
              [](Attempt& attempt) {
                  ThreadCaller caller;
                  SyncEvent runs(true, false);
                  caller.Start([](void* event) { return static_cast<SyncEvent*>(event)->Set(), 0; }, &runs,
                               "");
                  runs.Wait();
                  return attempt([&] { return caller.Stop(), caller.GetState(); });
              });
    table.Add("velm::ThreadCaller::*", 0, {kThrew}, {}, [](Attempt& attempt) {
        ThreadCaller caller;
        ThreadCaller copy;
        SyncEvent runs(true, false);
        caller.Start([](void* event) { return static_cast<SyncEvent*>(event)->Set(), 0; }, &runs,
                     kText.c_str());
        runs.Wait();
        return attempt([&] { return (copy = caller).GetState(); });
    });
    table.Add("SchedulingProcess::*", 1, {}, {{"SetPriorityClass", 0}},
              [](Attempt& attempt) { return attempt([] { return SchedulingProcess::SetPriorityHigh(); }); });
    table.Add("SchedulingThread::*", 1, {0},
              {{"AvSetMmThreadCharacteristicsW", 0}, {"AvSetMmThreadPriority", 0}}, [](Attempt& attempt) {
                  SchedulingThread thread;
                  SetLastError(0);
                  const long long outcome = attempt([&] { return thread.StartThreadPriorityHigh(); });
                  EXPECT_EQ(outcome == 1, GetLastError() == 0);
                  EXPECT_EQ(thread.EndThreadPriority(), outcome == 1);
                  return outcome;
              });
    table.Add("SchedulingThread::*", 1, {}, {{"AvRevertMmThreadCharacteristics", 0}}, [](Attempt& attempt) {
        SchedulingThread thread;
        thread.StartThreadPriorityHigh();
        const long long outcome = attempt([&] { return thread.EndThreadPriority(); });
        EXPECT_EQ(thread.EndThreadPriority(), outcome == 0) << "what is not reverted is kept";
        return outcome;
    });
    table.Add("velm::Watchdog::* velm::WatchdogChecker::*", 0, {VELM_ERROR_UTIL_UNKNOWN},
              {{"SetTimer", VELM_ERROR_UTIL_UNKNOWN}}, [](Attempt& attempt) {
                  const UniqueWindow window = MakeWindow();
                  WatchdogChecker checker;
                  Watchdog::GetInstance()->SetElapse(10);
                  const long long code =
                      attempt([&] { return Watchdog::GetInstance()->Start(window.get(), &checker); });
                  EXPECT_EQ(RunLoop(window.get(), 30).ticks > 0, code == 0);
                  Watchdog::GetInstance()->Stop();
                  return code;
              });
    table.Add("velm::Watchdog::*", 0, {}, {{"KillTimer", 0}}, [](Attempt& attempt) {
        const UniqueWindow window = MakeWindow();
        struct : WatchdogChecker {
            bool IsActive() override { return false; }
        } stalled;
        Watchdog::GetInstance()->SetElapse(10);
        Watchdog::GetInstance()->Start(window.get(), &stalled);
        const long long code = attempt([&] { return Watchdog::GetInstance()->Stop(); });
        EXPECT_FALSE(RunLoop(window.get(), 30).quit) << "ticks that still come do nothing";
        return code;
    });
    table.Add("velm::Watchdog::*", 16, {0}, {{"PostQuitMessage", 16}}, [](Attempt& attempt) {
        struct : WatchdogChecker {
            bool IsActive() override { return false; }
        } stalled;
        const UniqueWindow window = MakeWindow();
        Watchdog::GetInstance()->Start(window.get(), &stalled);
        const long long exitCode = attempt([] {  // a quit message that is not taken is posted again
            MSG message{};
            for (int i = 0; i < 9 && GetMessageW(&message, nullptr, 0, 0) > 0; ++i) {
                DispatchMessageW(&message);
            }
            return message.message == WM_QUIT ? static_cast<int>(message.wParam) : 0;
        });
        Watchdog::GetInstance()->Stop();
        return exitCode;
    });
    table.Add("velm::MemoryInfo::*", 0, {0xFFFFFFFF},
              {{"OpenProcess", 0xFFFFFFFF}, {"GetProcessMemoryInfo", 0}, {"CloseHandle", 0}},
              [](Attempt& attempt) {
                  MemoryInfo info;
                  return attempt([&] {
                      const ErrorCode result = info.Initialize("");
                      info.Check("");
                      info.Finalize();
                      return result;
                  });
              });
    table.Add("velm::GetLocalMachineTime", 5000, {},
              {{"QueryPerformanceCounter", 0}, {"QueryPerformanceFrequency", 0}}, [](Attempt& attempt) {
                  posix::SetPerformanceCounter(5000, 1000);
                  return attempt([] { return GetLocalMachineTime(); });
              });
}

void AddAudioAndConfig(Table& table) {
    constexpr long long kNoMemory = VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    static const std::string kIni = "./failures.ini";
    static const std::string kSection = "a section with a long name";
    static const std::string kKey = "a key with a long name";
    const auto ini = [](auto body) {
        return [=](Attempt& attempt) {
            const test::TemporaryFile file(kIni, '[' + kSection + "]\n" + kKey + '=' + kText + '\n');
            return Writes(body)(attempt);
        };
    };
    table.Add("velm::AudioFrame::*", 0, {kNoMemory}, {}, [](Attempt& attempt) {
        AudioFrame frame;
        unsigned char data[100] = {};
        frame.InitilizeWriter(E_FrameType_Raw0, 1, 2, data);
        const long long code = attempt([&] { return frame.InitilizeWriter(E_FrameType_Raw0, 1, 100, data); });
        EXPECT_EQ(frame.GetFrameBuffer() != nullptr, code == 0);
        EXPECT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 1, 2, data), 0U);
        return code;
    });
    table.Add("velm::AudioStream::*", 0, {VELM_ERROR_UTIL_NOT_INITIALIZED}, {}, [](Attempt& attempt) {
        return attempt([] {
            AudioStream stream(100, 2, 16);
            stream.PushBackClearSamples(3);
            return stream.Initialize();
        });
    });
    table.Add("velm::AudioFrameStream::*", 0, {kNoMemory}, {}, [](Attempt& attempt) {
        AudioFrameStream stream(4, 2, 1, 16);
        const long long code = attempt([&] { return stream.Initialize(); });
        EXPECT_EQ(stream.PushBackClearFrame(), 0U);
        EXPECT_EQ(stream.DropAllFrame(), 0U);
        EXPECT_EQ(stream.Initialize(), 0U);
        return code;
    });
    table.Add("velm::WaveFileReadHelper::*", 0, {}, {{"ReadFile", VELM_ERROR_CORE_READ_FAILED}},
              [](Attempt& attempt) {
                  const test::TemporaryFile file(
                      "a.wav", test::Riff(test::Chunk("fmt ", test::PcmFormat(1, 8000, 16)) +
                                          test::Chunk("data", std::string(70'000, 'x'))));
                  FileReader reader;
                  reader.Open(file.Name());
                  std::vector<unsigned char> block(70'000);
                  return attempt([&] {
                      WaveFileReadHelper wave;
                      unsigned long long size = 0;
                      const ErrorCode result = wave.Initialize(&reader);
                      return result.IsFailed() ? result
                                               : wave.GetWaveData(block.data(), &size, block.size(), 8500);
                  });
              });
    table.Add("velm::EnvConfigReader::*", kNew, {kOld},
              {{"MultiByteToWideChar", kOld}, {"_wdupenv_s", kOld}, {"WideCharToMultiByte", kOld}},
              [](Attempt& attempt) {
                  static const std::string kName = "VELM_TEST_OF_FAILURES";
                  setenv(kName.c_str(), kText.c_str(), 1);
                  return Writes([](std::string& out) { EnvConfigReader().GetIfOk(kName, out); })(attempt);
              });
    table.Add(
        "velm::IniConfigReader::*", kNew, {kThrew, kOld, kEmpty},
        {{"MultiByteToWideChar", kOld}, {"GetPrivateProfileStringW", kEmpty}, {"WideCharToMultiByte", kOld}},
        ini([](std::string& out) { IniConfigReader().GetIfOk(kIni, kSection, kKey, std::string(), out); }));
    table.Add("velm::IniConfigReader::*", 12, {5, 7},
              {{"MultiByteToWideChar", 5}, {"GetPrivateProfileIntW", 7}}, [](Attempt& attempt) {
                  const test::TemporaryFile file(kIni, '[' + kSection + "]\n" + kKey + "=12\n");
                  int number = 5;
                  attempt([&] { return IniConfigReader().GetIfOk(kIni, kSection, kKey, 7, number), 0; });
                  return static_cast<long long>(number);
              });
    table.Add("velm::JsonConfigReader::*", 0, {1}, {}, [](Attempt& attempt) {
        static const std::string kFile = "a-json-file-with-a-long-name.json";
        const test::TemporaryFile file(kFile, std::string(200'000, ' ') + "[1]\n");
        JsonConfigReader reader;
        const long long outcome = attempt([&] { return reader.ReadFile(kFile); });
        picojson::value json;
        std::string error;
        EXPECT_EQ(reader.getJsonValue(json, error), outcome == 0);
        return outcome;
    });
    table.Add("velm::JsonConfigReader::*", 1, {kThrew}, {}, [](Attempt& attempt) {
        static const std::string kJson = "{\"a name that takes memory\": [\"a value that takes memory\", 1]}";
        JsonConfigReader reader;
        picojson::value json;
        std::string error;
        const long long outcome =
            attempt([&] { return reader.Read(kJson) == 0 && reader.getJsonValue(json, error); });
        EXPECT_EQ(reader.Read(kJson), 0);
        EXPECT_TRUE(reader.getJsonValue(json, error));
        return outcome;
    });
    table.Add("velm::UrlParser::*", 0, {kThrew}, {}, [](Attempt& attempt) {
        UrlParser parser;
        const long long code = attempt([&] { return parser.Parse(kUrl.c_str()); });
        EXPECT_EQ(parser.Parse(kUrl.c_str()), 0U);
        EXPECT_STREQ(parser.Param("name-of-a-parameter"), "value-of-it");
        return code;
    });
    table.Add("velm::UrlParser::*", 1, {kThrew}, {}, [](Attempt& attempt) {
        UrlParser parser;
        parser.Parse(kUrl.c_str());
        UrlParser copy;
        return attempt([&] {
            copy = parser;
            return copy.ParamMap().size() + static_cast<unsigned char>(copy.Param(kText.c_str())[0]);
        });
    });
    table.Add("velm::UrlSchemeUtil::*", 0, {kThrew}, {}, [](Attempt& attempt) {
        static const std::string kLink = "velm://connect/play.velm.example/game?title=Racer&ticket=a1.b2";
        std::string url = "https";
        std::string title;
        std::string ticket;
        const long long code = attempt([&] { return UrlSchemeUtil::read(kLink, url, title, ticket); });
        EXPECT_TRUE(code == 0 ? url == "https://play.velm.example/game" : code == kThrew);
        return code;
    });
    table.Add("velm::UrlSchemeUtil::*", 1, {kThrew}, {}, [](Attempt& attempt) {
        static const std::string kPattern = "9EEADi^^W]Y^Z^X";  // https://(.*/+/)
        return attempt([] { return UrlSchemeUtil::checkDomain(kUrl, kPattern).IsFailed(); });
    });
}

// What neither allocates nor calls.
void AddTheRest(Table& table) {
    table.Add(
        "velm::Mutex::* velm::AutoResetSyncEventWrapper::* velm::KeyStringToByteData::* "
        "velm::CrossDotRotate::* velm::Yuv420ToArgb8888_BT601 velm::Yuv420ToArgb8888_BT709 "
        "velm::AbortMessage",
        1, {}, {}, [](Attempt& attempt) {
            return attempt([] {
                char directory[20];
                PathHelper::GetFileDir(directory, sizeof directory, "D:\\app\\a.exe");
                Mutex mutex;
                mutex.Initialize();
                mutex.Lock();
                mutex.Unlock();
                AutoResetSyncEventWrapper event;
                event.Trigger();
                event.Wait();
                unsigned char bytes[32];
                KeyStringToByteData::Translate(64, kUrl.c_str(), 32, bytes);
                unsigned int pixels[16];
                Yuv420ToArgb8888_BT601(bytes, bytes, bytes, 4, 2, 4, 4, pixels, 16);
                Yuv420ToArgb8888_BT709(bytes, bytes, bytes, 4, 2, 4, 4, pixels, 16);
                AbortMessage("%s", kText.c_str());
                CrossDotRotate::_Vector3D x{1, 0, 0}, y{0, 1, 0}, zero{0, 0, 0};
                CrossDotRotate rotation;
                const int set = rotation.SetRotatoVector(&x, &y, &zero, 1);
                rotation.Rotato(&x);
                return set;
            });
        });
}

void AddGraphics(Table& table) {
    constexpr long long kNoMemory = VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    constexpr D3DSURFACE_DESC kTarget{D3DFMT_D24S8,
                                      D3DRTYPE_SURFACE,
                                      D3DUSAGE_RENDERTARGET,
                                      D3DPOOL_DEFAULT,
                                      D3DMULTISAMPLE_NONE,
                                      0,
                                      16,
                                      16};
    const auto item = [] {
        const std::tr1::shared_ptr<D3d9AdapterCheckItem> rule(new D3d9AdapterCheckItem);
        rule->SetAsString(D3D9_ADAPTER_CHECK_VENDOR_NAME, D3D9_ADAPTER_COMPARE_NOT_EQUAL, kText.c_str());
        return rule;
    };
    table.Add("velm::D3d9AdapterCheckItem::*", 1, {kThrew}, {}, [=](Attempt& attempt) {
        const auto rule = item();
        return attempt(
            [&] { return rule->ValueToString().size() == kText.size() && rule->CheckAsString("x"); });
    });
    table.Add("velm::D3d9AdapterCheckSet::*", 1, {kThrew}, {}, [=](Attempt& attempt) {
        D3d9AdapterCheckSet set;
        const auto rule = item();
        return attempt([&] {
            set.AddItem(rule);
            return D3d9AdapterCheckSet(set), 1;
        });
    });
    table.Add("velm::D3d9AdapterCheckSet::* velm::D3d9AdapterContext::*", 0, {kNoMemory}, {},
              [=](Attempt& attempt) {
                  FakeDirect3D9 d3d;
                  D3d9AdapterCheckSet set;
                  set.AddItem(item());
                  bool passed = true;
                  const long long code = attempt([&] { return set.Check(&passed, &d3d, 0); });
                  EXPECT_EQ(passed, code == 0);
                  return code;
              });
    table.Add(
        "velm::D3D9ResourceManager::* velm::D3D9ResourceBase::*", 0, {kNoMemory}, {}, [=](Attempt& attempt) {
            const long long code = attempt([] { return D3D9ResourceManager::Initialize(); });
            FakeDevice9 device;
            D3D9Surface surface;
            surface.Bind(device.Create(kTarget));
            D3D9ResourceManager::OnLost();
            EXPECT_EQ(surface.GetSurface() == nullptr, code == 0) << "a manager after a failure, or none";
            D3D9ResourceManager::Finalize();
            return code;
        });
    table.Add("velm::D3D9Surface::*", 1, {0}, {}, [=](Attempt& attempt) {
        FakeDevice9 device;
        D3D9ResourceManager::Initialize();
        long long lost = 0;
        {
            D3D9Surface surface;
            IDirect3DSurface9* const bound = device.Create(kTarget);
            attempt([&] { return surface.Bind(bound), 0; });
            D3D9ResourceManager::OnLost();
            lost = surface.GetSurface() == nullptr;
            surface.Bind(device.Create(kTarget));  // registers when it is not
            D3D9ResourceManager::OnLost();
            EXPECT_EQ(surface.GetSurface(), nullptr);
        }
        D3D9ResourceManager::Finalize();
        return lost;
    });
}

}  // namespace

const std::vector<Operation>& Operations() {
    static const Table table = [] {
        Table all;
        AddCore(all);
        AddFoundation(all);
        AddThread(all);
        AddAudioAndConfig(all);
        AddGraphics(all);
        AddTheRest(all);
        return all;
    }();
    return table.operations;
}

}  // namespace velm
