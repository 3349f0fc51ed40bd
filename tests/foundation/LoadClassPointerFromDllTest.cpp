#include "velm/LoadClassPointerFromDll.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <string>

#include "velm/WindowsUtil.h"

namespace velm {
namespace {

std::string PluginPath(const std::string& name) {
    std::string path;
    WindowsUtil::GetFullPathForExecDirFile(path, name + VELM_MODULE_SUFFIX);
    return path;
}

/// Keeps a plug-in loaded and reads its counts.
class Counters {
public:
    explicit Counters(const std::string& path) : m_module(WindowsUtil::CallLoadLibrary(path.c_str())) {}
    ~Counters() { FreeLibrary(m_module); }
    Counters(const Counters&) = delete;
    Counters& operator=(const Counters&) = delete;

    bool AreLoaded() const { return m_module != nullptr; }
    int Allocated() const { return Call("GetAllocatedCount"); }
    int Released() const { return Call("GetReleasedCount"); }

private:
    int Call(const char* name) const {
        return reinterpret_cast<int (*)()>(reinterpret_cast<void*>(GetProcAddress(m_module, name)))();
    }

    HMODULE m_module;
};

TEST(LoadClassPointerFromDll, GivesTheStatusOfEachStep) {
    struct Case {
        std::string path;
        int status;
    };
    const Case kCases[] = {
        {PluginPath("sample_plugin"), 0},
        {PluginPath("sample_plugin_without_release"), 0},
        {PluginPath("no_such_plugin"), 1},
        {"", 1},
        {PluginPath("sample_plugin_without_allocate"), 2},
        {PluginPath("sample_plugin_without_object"), 3},
    };
    LoadClassPointerFromDll reused;
    for (const Case& test : kCases) {
        SCOPED_TRACE(test.path);
        for (LoadClassPointerFromDll* plugin : {&reused, new LoadClassPointerFromDll}) {
            int marker = 0;
            void* object = &marker;
            EXPECT_EQ(plugin->Initialize(test.path.c_str(), &object), test.status);
            EXPECT_EQ(object == nullptr, test.status != 0);
            EXPECT_NE(object, &marker);
            if (plugin != &reused) {
                EXPECT_EQ(plugin->Terminate(), 0);
                EXPECT_EQ(plugin->Terminate(), 0);
                delete plugin;
            }
        }
    }
    void* object = nullptr;
    EXPECT_EQ(reused.Initialize(nullptr, &object), 1);
    EXPECT_EQ(reused.Initialize(PluginPath("sample_plugin").c_str(), nullptr), 1);
}

TEST(LoadClassPointerFromDll, ReleasesEachObjectOnceWhoeverGoesFirst) {
    const std::string path = PluginPath("sample_plugin");
    const Counters counters(path);
    ASSERT_TRUE(counters.AreLoaded());
    void* object = nullptr;
    {
        LoadClassPointerFromDll source;
        ASSERT_EQ(source.Initialize(path.c_str(), &object), 0);
        {
            LoadClassPointerFromDll copy(source);
            copy = source;
            copy.Terminate();
        }
        EXPECT_EQ(counters.Released(), 0) << "the copy released its source's object";
        LoadClassPointerFromDll outlives(source);
        LoadClassPointerFromDll& same = source;
        source = same;
        EXPECT_EQ(counters.Released(), 0);
        source.Terminate();
        EXPECT_EQ(counters.Released(), 1);
    }
    EXPECT_EQ(counters.Released(), 1);

    LoadClassPointerFromDll again;
    ASSERT_EQ(again.Initialize(path.c_str(), &object), 0);
    ASSERT_EQ(again.Initialize(path.c_str(), &object), 0);
    EXPECT_EQ(counters.Released(), 2) << "a second Initialize lost the first object";
    again = LoadClassPointerFromDll();
    EXPECT_EQ(counters.Allocated(), 3);
    EXPECT_EQ(counters.Released(), 3);
}

}  // namespace
}  // namespace velm
