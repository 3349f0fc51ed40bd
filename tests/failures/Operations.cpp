#include <velm/VelmUtil.h>

#include "FakeDirect3D9.h"
#include "MessageLoop.h"
#include "Operation.h"
#include "TemporaryFile.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/ErrorRegistry.h"
#include "velm/core/FileReader.h"
#include "velm/core/PathHelper.h"
#include "velm/core/Semaphore.h"
#include "velm/core/Thread.h"

#ifndef _WIN32
#include "velm/posix/Control.h"
#endif

namespace velm::test {
namespace {

using W = WindowsUtil;

constexpr long long kNoMemory = VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
constexpr long long kInvalid = VELM_ERROR_UTIL_INVALID_PARAM;
constexpr long long kUnknown = VELM_ERROR_UTIL_UNKNOWN;
constexpr long long kNotReady = VELM_ERROR_UTIL_NOT_INITIALIZED;
constexpr long long kCoreNoMemory = VELM_ERROR_CORE_NOT_ENOUGH_MEMORY;
constexpr long long kCoreInvalid = VELM_ERROR_CORE_INVALID_PARAM;
constexpr long long kCoreUnknown = VELM_ERROR_CORE_UNKNOWN;

// Texts too long for a string's internal buffer.
const std::string kText = "a text that is longer than a string object";
const std::wstring kWide(kText.begin(), kText.end());

const std::string kFile = "./a-file-with-a-long-name.ini";
const std::string kKey = "a section or a key with a long name";
const TemporaryFile g_file(kFile, '[' + kKey + "]\n" + kKey + '=' + kText + '\n');

/// An operation that returns a code and a text, and leaves the text unchanged on failure.
template <typename Text, typename Body>
auto Converts(const Text& expected, Body body) {
    return [=](const Attempt& attempt) {
        const Text old(3, 'o');
        Text out = old;
        const long long code = attempt([&] { return body(out); });
        EXPECT_EQ(out, code == 0 ? expected : old);
        EXPECT_EQ(body(out), 0U) << "a retry";
        return code;
    };
}

template <typename Body>
auto Writes(Body body) {
    return [=](const Attempt& attempt) -> long long {
        std::string out = "old";
        const bool threw = attempt([&] { return body(out), 0; }) == kThrew;
        EXPECT_TRUE(out == "old" || out == kText || out.empty());
        return threw ? kThrew : out == kText ? kNew : out.empty() ? kEmpty : kOld;
    };
}

/// An operation without preparation.
template <typename Body>
auto Does(Body body) {
    return [=](const Attempt& attempt) { return attempt(body); };
}

ErrorCode CopyFrame() {
    unsigned char data[100] = {};
    return AudioFrame().InitilizeWriter(E_FrameType_Raw0, 1, 100, data);
}

long long MakeFrameRing(const Attempt& attempt) {
    AudioFrameStream stream(4, 2, 1, 16);
    const long long code = attempt([&] { return stream.Initialize(); });
    EXPECT_EQ(stream.PushBackClearFrame(), 0U);
    return code;
}

long long CheckRules(const Attempt& attempt) {
    FakeDirect3D9 d3d;
    D3d9AdapterCheckSet set;
    const std::tr1::shared_ptr<D3d9AdapterCheckItem> rule(new D3d9AdapterCheckItem);
    rule->SetAsString(D3D9_ADAPTER_CHECK_VENDOR_NAME, D3D9_ADAPTER_COMPARE_NOT_EQUAL, kText.c_str());
    set.AddItem(rule);
    bool passed = true;
    const long long code = attempt([&] { return set.Check(&passed, &d3d, 0); });
    EXPECT_EQ(passed, code == 0);
    return code;
}

long long ReadRules(const Attempt& attempt) {
    static const TemporaryFile file(
        "failures-rules.json",
        R"({"rules": [{"fact": "vendor-name", "is": "!=", "value": ")" + kText + "\"}]}");
    const D3d9AdapterContext context;
    D3d9AdapterCheckSet set;
    D3d9AdapterRules rules;
    std::string fact = "a fact";
    const long long code = attempt([&] {
        ErrorCode result = rules.ReadFile(file.Name());
        result = result.IsFailed() ? result : rules.AddTo(&set);
        if (result.IsFailed()) {
            return result;
        }
        return D3d9AdapterRules::GetFactText(fact, &context, D3D9_ADAPTER_CHECK_DEVICE_IDENTIFIER);
    });
    EXPECT_EQ(fact.size(), code == 0 ? 38U : 6U);
    return code;
}

struct Resource : D3D9ResourceBase {
    void Enlist() { Register(); }
    void OnLostImpl() override { ++lost; }
    void OnRecoverLostImpl(IDirect3DDevice9*, const D3DPRESENT_PARAMETERS&) override {}

    int lost = 0;
};

long long ManageResource(const Attempt& attempt) {
    Resource resource;
    const long long code = attempt([&] {
        const ErrorCode result = D3D9ResourceManager::Initialize();
        resource.Enlist();
        return result;
    });
    D3D9ResourceManager::OnLost();
    D3D9ResourceManager::Finalize();
    return code != 0 ? code : resource.lost;
}

void ReadEnvironment(std::string& out) {
    static const std::string kName = "VELM_TEST_OF_FAILURES";
    EnvConfigReader().GetIfOk(kName, out);
}

void ReadIniText(std::string& out) {
    IniConfigReader().GetIfOk(kFile, kKey, kKey, "", out);
}

bool ReadJsonFile() {
    static const std::string text = "{\"" + std::string(kText) + "\": [1.5]}\n";
    static const TemporaryFile file("failures.json", std::string(200'000, ' ').append(text));
    JsonConfigReader reader;
    picojson::value json;
    std::string error;
    return reader.ReadFile(file.Name()) == 0 && reader.getJsonValue(json, error);
}

ErrorCode ParseUrl() {
    UrlParser parser;
    const ErrorCode result = parser.Parse("https://some.host.of.a.domain/and/a/path?a-parameter=value#end");
    return UrlParser(parser).ParamMap().size() == 1 ? result : ErrorCode(1);
}

ErrorCode ReadLink() {
    std::string url = "https";
    std::string parts[2];
    return UrlSchemeUtil::read("velm://connect/play.velm.example/game?title=Racer&ticket=a1.b2", url,
                               parts[0], parts[1]);
}

// One byte by way of the buffer, then a block that bypasses it.
ErrorCode ReadFileThrough() {
    static const TemporaryFile file("failures.bin", std::string(300'000, 'x'));
    static std::string buffer(200'000, '\0');
    FileReader reader;
    unsigned char byte = 0;
    unsigned long long size = 0;
    ErrorCode result = reader.Open(file.Name());
    result = result.IsFailed() ? result : reader.ReadU8(&byte);
    return result.IsFailed() ? result : reader.Read(&size, buffer.data(), buffer.size());
}

long long RegisterCode(const Attempt& attempt) {
    static unsigned int code = 0xC0000000;
    ++code;
    attempt([] { return RegisterErrorCode(code, kText.c_str(), kText.c_str()), 0; });
    return FindErrorCode(code) != nullptr;
}

long long LoadPlugin(const Attempt& attempt) {
    std::string plugin;
    W::GetFullPathForExecDirFile(plugin, "sample_plugin" VELM_MODULE_SUFFIX);
    LoadClassPointerFromDll loader;
    void* object = nullptr;
    return attempt([&] { return loader.Initialize(plugin.c_str(), &object); });
}

long long StartAndJoin(const Attempt& attempt) {
    Thread thread;
    ThreadConfig config;
    config.SetName(kText.c_str());
    thread.Initialize(
        config, [](void*) { return 3; }, nullptr);
    const auto run = [&] {
        const ErrorCode result = thread.Start(nullptr);
        return result.IsFailed() ? result : thread.Join(nullptr);
    };
    const long long code = attempt(run);
    EXPECT_TRUE(code == 0 || thread.Join(nullptr) == 0U || run() == 0U)
        << "could be neither joined nor restarted";
    return code;
}

long long StartCaller(const Attempt& attempt) {
    ThreadCaller caller;
    return attempt([&] {
        caller.Start([](void*) { return 0; }, nullptr, kText.c_str());
        const int started = caller.GetState();
        caller.Stop();
        return started == 0 ? caller.GetState() : started;
    });
}

long long RaiseThread(const Attempt& attempt) {
    SchedulingThread thread;
    return attempt([&] { return thread.StartThreadPriorityHigh(); });
}

/// Windows leave messages behind, which take memory until they are read.
void EmptyMessageQueue() {
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) {
    }
}

long long StartWatchdog(const Attempt& attempt) {
    const UniqueWindow window = MakeWindow();
    WatchdogChecker checker;
    const long long code = attempt([&] { return Watchdog::GetInstance()->Start(window.get(), &checker); });
    Watchdog::GetInstance()->Stop();
    EmptyMessageQueue();
    return code;
}

long long CallWindow(const Attempt& attempt) {
    const UniqueWindow window = MakeWindow();
    const long long done = attempt([&] { return W::CallSetWindowText(window.get(), kText.c_str()); });
    EmptyMessageQueue();
    return done;
}

long long MeasureScreen(const Attempt& attempt) {
#ifndef _WIN32
    posix::SetDisplays({{L"DISPLAY", DISPLAY_DEVICE_ATTACHED_TO_DESKTOP, 640, 480}});
#endif
    int width = 0;
    int height = 0;
    return attempt([&] { return W::GetMaxScreenSize(&width, &height, 0); });
}

ErrorCode ReportMemory() {
    MemoryInfo info;
    const ErrorCode result = info.Initialize("");
    info.Check("");
    return result;
}

std::vector<Operation> MakeOperations() {
    SetEnvironmentVariableW(L"VELM_TEST_OF_FAILURES", kWide.c_str());
    const auto toWide = [](auto& out) { return PathHelper::GetWstringFromString(932, kText, out); };
    const auto toUtf8 = [](auto& out) { return W::GetUtf8StringFromOemcpString(kText, out); };
    const auto toPath = [](auto& out) { return W::GetFullPathForResourcesDirFile(out, kText); };
    std::string path;
    W::GetFullPathForExecDirFile(path, "resources\\" + kText);
    return {
        {"AudioFrame", Does(CopyFrame), 0, {kNoMemory}},
        {"AudioStream", Does([] { return AudioStream(9, 2, 16).Initialize(); }), 0, {kNotReady}},
        {"AudioFrameStream", MakeFrameRing, 0, {kNoMemory}, false, 50},
        {"D3d9AdapterCheckSet", CheckRules, 0, {kNoMemory}},
        {"D3d9AdapterRules", ReadRules, 0, {kNoMemory, kCoreNoMemory, kCoreUnknown}},
        {"D3D9ResourceManager", ManageResource, 1, {kNoMemory, 0}},
        {"EnvConfigReader", Writes(ReadEnvironment), kNew, {kOld}},
        {"IniConfigReader", Writes(ReadIniText), kNew, {kThrew, kOld, kEmpty}},
        {"JsonConfigReader", Does(ReadJsonFile), 1, {0, kThrew}},
        {"UrlParser", Does(ParseUrl), 0, {kThrew}},
        {"UrlSchemeUtil", Does(ReadLink), 0, {kThrew}},
        {"PathHelper", Converts(kWide, toWide), 0, {kCoreNoMemory, kCoreInvalid}},
        {"FileReader", Does(ReadFileThrough), 0, {kCoreNoMemory, kCoreUnknown}},
        {"Thread", StartAndJoin, 0, {kCoreUnknown}},
        {"Semaphore", Does([] { return Semaphore(1, 1).Wait(); }), 0, {kCoreNoMemory}},
        {"RegisterErrorCode", RegisterCode, 1, {0}, true},
        {"GetUtf8StringFromOemcpString",
         Converts(kText, toUtf8),
         0,
         {kCoreNoMemory, kNoMemory, kCoreInvalid}},
        {"GetFullPath", Converts(path, toPath), 0, {kNoMemory, kInvalid}},
        {"FileStdio", Does([] { return FileStdio().Open(g_file.Name(), "rb") != nullptr; }), 1, {0}},
        {"LoadClassPointerFromDll", LoadPlugin, 0, {1, 3}},
        {"ThreadCaller", StartCaller, 65535, {1, 2, 3}},
        {"SchedulingThread", RaiseThread, 1, {0}},
        {"Watchdog", StartWatchdog, 0, {kUnknown}},
        {"CallSetWindowText", CallWindow, 1, {0}},
        {"GetMaxScreenSize", MeasureScreen},
        {"MemoryInfo", Does(ReportMemory), 0, {0xFFFFFFFF}},
    };
}

}  // namespace

const std::vector<Operation>& AllOperations() {
    static const std::vector<Operation> all = MakeOperations();
    return all;
}

}  // namespace velm::test
