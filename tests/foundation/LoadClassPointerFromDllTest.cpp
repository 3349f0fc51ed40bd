#include "velm/LoadClassPointerFromDll.h"

#include <windows.h>
#include <gtest/gtest.h>

#include "velm/WindowsUtil.h"

namespace velm::load_class_pointer_from_dll_test {

std::string PluginPath(const std::string& name) {
    std::string path;
    WindowsUtil::GetFullPathForExecDirFile(path, name + VELM_MODULE_SUFFIX);
    return path;
}

TEST(LoadClassPointerFromDll, ReportsTheStepThatFails) {
    LoadClassPointerFromDll plugin;
    int marker = 0;
    void* object = &marker;
    for (const auto& [name, status] : {std::pair{"sample_plugin_without_release", 0},
                                       {"sample_plugin", 0},
                                       {"no_such_plugin", 1},
                                       {"sample_plugin_without_allocate", 2},
                                       {"sample_plugin_without_object", 3}}) {
        object = &marker;
        EXPECT_EQ(plugin.Initialize(PluginPath(name).c_str(), &object), status) << name;
        EXPECT_EQ(object == nullptr, status != 0) << name;
        EXPECT_NE(object, &marker);
    }
    EXPECT_EQ(plugin.Initialize(PluginPath("sample_plugin").c_str(), nullptr), 1);
}

TEST(LoadClassPointerFromDll, ReleasesEachObjectOnce) {
    const std::string path = PluginPath("sample_plugin");
    const HMODULE module = WindowsUtil::CallLoadLibrary(path.c_str());
    ASSERT_NE(module, nullptr);
    const auto released = [module] {
        void* const function = reinterpret_cast<void*>(GetProcAddress(module, "GetReleasedCount"));
        return reinterpret_cast<int (*)()>(function)();
    };
    void* object = nullptr;
    const int before = released();
    {
        LoadClassPointerFromDll source;
        ASSERT_EQ(source.Initialize(path.c_str(), &object), 0);
        {
            LoadClassPointerFromDll copy(source);
            copy = source;
            copy.Terminate();
        }
        LoadClassPointerFromDll& same = source;
        source = same;
        EXPECT_EQ(released(), before) << "the copy released its source's object";
        ASSERT_EQ(source.Initialize(path.c_str(), &object), 0);
        EXPECT_EQ(released(), before + 1) << "a second Initialize lost the first object";
        const LoadClassPointerFromDll copy(source);
        source = copy;
        EXPECT_EQ(released(), before + 2) << "an assignment lost the object";
        ASSERT_EQ(source.Initialize(path.c_str(), &object), 0);
    }
    EXPECT_EQ(released(), before + 3);
    FreeLibrary(module);
}

}  // namespace velm::load_class_pointer_from_dll_test
