#include <windows.h>

#include <filesystem>
#include <memory>
#include <system_error>
#include <type_traits>

#include "Command.h"
#include "Help.h"
#include "Path.h"
#include "Report.h"
#include "velm/LoadClassPointerFromDll.h"
#include "velm/platform/SystemInfo.h"
#include "velm/WindowsUtil.h"

namespace velmdiag {
namespace {

struct PluginOptions {
    std::string file;
    bool json = false;
};

struct ModuleFreer {
    void operator()(HMODULE module) const { FreeLibrary(module); }
};
using UniqueModule = std::unique_ptr<std::remove_pointer_t<HMODULE>, ModuleFreer>;

/// The path of a loaded library as the system reports it; empty if it is too long.
std::wstring PathOfModule(HMODULE module) {
    wchar_t path[MAX_PATH];
    const DWORD units = GetModuleFileNameW(module, path, MAX_PATH);
    return units < MAX_PATH ? std::wstring(path, units) : std::wstring();
}

/// Why the file was not loaded. Call it right after the call that failed.
std::string LoadFailure(const std::string& file) {
    const DWORD code = GetLastError();
    const std::string text = velm::platform::LoadErrorText(code);
    std::error_code ignored;
    const bool isThere = std::filesystem::is_regular_file(PathOf(file), ignored);
    return "cannot be loaded: " + (text.empty() ? "the system gives no reason" : text) + " (error " +
           std::to_string(code) + ')' +
           (code == ERROR_MOD_NOT_FOUND && isThere
                ? "; the file exists, so it is not a library, or a library that it needs is missing"
                : "");
}

int RunPlugin(const PluginOptions& options) {
    if (options.file.empty()) {
        throw Failure{"the file name is empty"};
    }
    const auto fail = [&](const std::string& step) { throw Failure{options.file + ": " + step}; };
    velm::LoadClassPointerFromDll plugin;
    void* object = nullptr;
    switch (plugin.Initialize(options.file.c_str(), &object)) {
        case 0:
            break;
        case 1:
            fail(LoadFailure(options.file));
            break;
        case 2:
            fail("the object cannot be obtained: the library exports no AllocateClass");
            break;
        default:
            fail("the object cannot be obtained: AllocateClass returned null");
    }
    UniqueModule module(velm::WindowsUtil::CallLoadLibrary(options.file.c_str()));
    if (GetProcAddress(module.get(), "ReleaseClass") == nullptr) {
        fail("the object cannot be released: the library exports no ReleaseClass");
    }
    const std::wstring path = PathOfModule(module.get());
    module.reset();
    plugin.Terminate();
    if (!path.empty() && GetModuleHandleW(path.c_str()) != nullptr) {
        fail("cannot be unloaded: the library is still loaded");
    }
    Report report;
    report.Add("file", options.file);
    for (const char* const step : {"loaded", "obtained", "released", "unloaded"}) {
        report.Add(step, true);
    }
    report.Print(options.json);
    return 0;
}

}  // namespace

void AddPluginCommand(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<PluginOptions>();
    CLI::App* const command = app.add_subcommand("plugin", "Loads a plug-in library and unloads it");
    Explain(command,
            "Loads a plug-in library, obtains its object, releases it, unloads the library, and says "
            "which step failed.",
            "velmdiag plugin sample_plugin.dll");
    command->add_option("FILE", options->file, "the library")->type_name(kFileType)->required();
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunPlugin(*options); });
}

}  // namespace velmdiag
