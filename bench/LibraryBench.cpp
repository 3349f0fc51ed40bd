// The size of the two libraries, and the cost of loading them into a new process.
#include <windows.h>

#include <cstdio>
#include <filesystem>
#include <initializer_list>
#include <string>

#include "Families.h"

namespace velm::bench {
namespace {

namespace fs = std::filesystem;

/// The folder that has the stripped libraries and the program that loads them.
fs::path Folder() {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return fs::path(path).parent_path() / L"bench";
}

/// Seconds that a new process takes to load the libraries; 0 if it cannot.
double Load(std::initializer_list<const wchar_t*> libraries) {
    const fs::path folder = Folder();
    std::wstring command = L"\"" + (folder / L"load_library.exe").wstring() + L"\"";
    for (const wchar_t* const library : libraries) {
        command += L" \"" + (folder / library).wstring() + L"\"";
    }
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                        &process)) {
        return 0;
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD ticks = 0;
    GetExitCodeProcess(process.hProcess, &ticks);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<double>(ticks) * 1e-7;
}

void MeasureLoading(Suite& suite) {
    std::vector<double> ours;
    std::vector<double> empty;
    for (int round = 0; round < suite.Rounds(); ++round) {
        empty.push_back(Load({L"empty_library.dll", L"empty_library_2.dll"}));
        ours.push_back(Load({L"VelmUtil.dll"}));
        if (empty.back() == 0 || ours.back() == 0) {
            std::fprintf(stderr, "velm_bench: a library could not be loaded\n");
            suite.Fail();
            return;
        }
    }
    suite.Record("Libraries", "loading both into a new process", MedianOf(ours),
                 LimitOf({.name = "two empty DLLs with the same runtime", .run = nullptr}, 0.6),
                 MedianOf(empty));
}

}  // namespace

void MeasureLibraries(Suite& suite) {
    const auto bytes = fs::file_size(Folder() / L"VelmCore.dll") + fs::file_size(Folder() / L"VelmUtil.dll");
    suite.RecordFigure("Libraries", "size of both, stripped", "", static_cast<double>(bytes) / 1000, 700,
                       "KB");
    MeasureLoading(suite);
}

}  // namespace velm::bench
