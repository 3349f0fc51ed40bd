/// @file
/// What a client does over and over must leave nothing behind.
#include <windows.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "FakeDirect3D9.h"
#include "MessageLoop.h"
#include "ProcessResources.h"
#include "Riff.h"
#include "TemporaryFile.h"
#include "velm/core/FileReader.h"
#include "velm/core/Thread.h"
#include "velm/VelmUtil.h"

namespace velm {
namespace {

struct Cycle {
    const char* name;
    std::function<void()> run;
    int each = 1;  // of so many cycles, for what takes long
};

/// VELM_CYCLES sets another number.
int CycleCount() {
    const char* const given = std::getenv("VELM_CYCLES");
    return given != nullptr ? std::atoi(given) : 1000;
}

/// What the process holds after a number of cycles. The system may still be winding up the last thread.
ProcessResources ResourcesAfter(const Cycle& cycle, int count, long long threads) {
    for (int i = 0; i < count; ++i) {
        cycle.run();
    }
    for (int i = 0; i < 100 && GetProcessResources().threads > threads; ++i) {
        Thread::Sleep(10);
    }
    return GetProcessResources();
}

void CyclePlugin(const std::string& path) {
    LoadClassPointerFromDll plugin;
    void* object = nullptr;
    EXPECT_EQ(plugin.Initialize(path.c_str(), &object), 0);
    EXPECT_EQ(plugin.Terminate(), 0);
}

void CycleProcessServices(HWND window) {
    static WatchdogChecker checker;
    ThreadCaller().Start([](void*) { return 0; }, nullptr, "cycle");
    EXPECT_EQ(Watchdog::GetInstance()->Start(window, &checker), 0U);
    EXPECT_EQ(Watchdog::GetInstance()->Stop(), 0U);
    MemoryInfo::GetInstance()->Initialize("cycle");
    MemoryInfo::GetInstance()->Check("cycle");
    MemoryInfo::GetInstance()->Finalize();
    SchedulingThread().StartThreadPriorityHigh();
}

void CycleCalls(HWND window) {
    char text[100];
    wchar_t value[10];
    WindowsUtil::CallSetWindowText(window, "text");
    WindowsUtil::CallGetClassName(window, text, 100);
    WindowsUtil::CallMessageBox(window, "not converted:", nullptr, 0);
    WindowsUtil::CallGetPrivateProfileString("s", "k", "d", value, 10, "./no.ini");
    int width = 0;
    int height = 0;
    WindowsUtil::GetMaxScreenSize(&width, &height, 0);
    MSG message;  // for every new title the system leaves one, which takes memory until it is read
    PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);
}

void CycleFrames() {
    AudioFrameStream stream(480, 2, 2, 16);
    EXPECT_EQ(stream.Initialize(), 0U);
    EXPECT_EQ(stream.PushAllClearFrame(), 0U);
}

void CycleReaders() {
    FileReader reader;
    EXPECT_EQ(reader.Open("cycles.wav"), 0U);
    WaveFileReadHelper wave;
    EXPECT_EQ(wave.Initialize(&reader), 0U);
    std::string text;
    EnvConfigReader().GetIfOk("PATH", text);
    IniConfigReader().GetIfOk("./cycles.wav", "s", "k", "d", text);
    EXPECT_EQ(text, "d");
    JsonConfigReader json;
    picojson::value value;
    json.Read("{\"name\": [1, 2, \"text\"]}");
    text.clear();
    EXPECT_TRUE(json.getJsonValue(value, text));
    UrlParser parser;
    EXPECT_EQ(parser.Parse("https://host.example/path?name=value&other=value#end"), 0U);
}

struct Resource : D3D9ResourceBase {
    Resource() { Register(); }
    void OnLostImpl() override {}
    void OnRecoverLostImpl(IDirect3DDevice9*, const D3DPRESENT_PARAMETERS&) override {}
};

void CycleGraphics() {
    FakeDirect3D9 d3d;
    D3d9AdapterCheckSet set;
    set.AddItem(std::tr1::shared_ptr<D3d9AdapterCheckItem>(new D3d9AdapterCheckItem));
    bool passed = false;
    EXPECT_TRUE(set.Check(&passed, &d3d, 0).IsFailed());
    EXPECT_EQ(D3D9ResourceManager::Initialize(), 0U);
    {
        const Resource resource;
        D3D9ResourceManager::OnLost();
        D3D9ResourceManager::OnRecoverLost(nullptr, D3DPRESENT_PARAMETERS{});
    }
    EXPECT_EQ(D3D9ResourceManager::Finalize(), 0U);
}

TEST(Cycles, ThousandsLeaveNothingBehind) {
    const test::TemporaryFile wave(
        "cycles.wav",
        test::Riff(test::Chunk("fmt ", test::PcmFormat(1, 8000, 16)) + test::Chunk("data", "1234")));
    const UniqueWindow window = MakeWindow();
    std::string plugin;
    WindowsUtil::GetFullPathForExecDirFile(plugin, "sample_plugin" VELM_MODULE_SUFFIX);
    const Cycle cycles[] = {
        {"plug-in", [&] { CyclePlugin(plugin); }},
        {"process services", [&] { CycleProcessServices(window.get()); }},
        {"calls", [&] { CycleCalls(window.get()); }, 10},
        {"frame ring", [] { CycleFrames(); }, 50},
        {"readers", [] { CycleReaders(); }},
        {"graphics", [] { CycleGraphics(); }},
    };
    for (const Cycle& cycle : cycles) {
        SCOPED_TRACE(cycle.name);
        const int cycleCount = CycleCount() / cycle.each;
        const long long threads = GetProcessResources().threads;
        const ProcessResources before = ResourcesAfter(cycle, cycleCount / 10 + 1, threads);
        const ProcessResources after = ResourcesAfter(cycle, cycleCount, before.threads);
        EXPECT_EQ(after.handles, before.handles);
        EXPECT_EQ(after.threads, before.threads);
        EXPECT_EQ(after.objects, before.objects);
        // The heaps of the system move a little by themselves, and grow by pages; a leak of 40 bytes in each
        // of many cycles is found.
        EXPECT_LT(after.memory, before.memory + 40LL * cycleCount + 1000);
        EXPECT_LT(after.reserved, before.reserved + 40LL * cycleCount + (1 << 20));
        std::printf(
            "%-18s %6d cycles: handles %+lld, threads %+lld, objects %+lld, heap %+lld, private %+lld\n",
            cycle.name, cycleCount, after.handles - before.handles, after.threads - before.threads,
            after.objects - before.objects, after.memory - before.memory, after.reserved - before.reserved);
    }
}

}  // namespace
}  // namespace velm
