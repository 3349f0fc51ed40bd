/// @file
/// On Windows each library calls the allocator through its own import table, which is overwritten here. So is
/// that of the test program, because it frees blocks of the libraries; its own allocations do not fail.
#include <windows.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <utility>

#include "Memory.h"

namespace velm::test {
namespace {

template <typename Function>
Function* Original(const char* name, Function*) {
    const HMODULE runtime = GetModuleHandleW(L"msvcrt.dll");
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(runtime, name)));
}

const auto g_malloc = Original("malloc", &malloc);
const auto g_calloc = Original("calloc", &calloc);
const auto g_realloc = Original("realloc", &realloc);
const auto g_free = Original("free", &free);

/// The allocator of the libraries, or of the program.
template <bool canFail>
struct Allocator {
    static bool May() { return !canFail || MayAllocate(); }
    static void* Malloc(std::size_t size) { return May() ? CountBlock(g_malloc(size)) : nullptr; }
    static void* Calloc(std::size_t count, std::size_t size) {
        return May() ? CountBlock(g_calloc(count, size)) : nullptr;
    }
    static void* Realloc(void* block, std::size_t size) {
        void* const grown = May() ? g_realloc(block, size) : nullptr;
        return block == nullptr ? CountBlock(grown) : grown;
    }
    static void Free(void* block) {
        g_memory.blocks -= block != nullptr;
        g_free(block);
    }
};

template <bool canFail>
void ReplaceIn(const wchar_t* moduleName) {
    using Own = Allocator<canFail>;
    const auto address = [](auto* function) { return reinterpret_cast<ULONGLONG>(function); };
    const std::pair<ULONGLONG, ULONGLONG> replacements[] = {{address(g_malloc), address(&Own::Malloc)},
                                                            {address(g_calloc), address(&Own::Calloc)},
                                                            {address(g_realloc), address(&Own::Realloc)},
                                                            {address(g_free), address(&Own::Free)}};
    auto* const module = reinterpret_cast<char*>(GetModuleHandleW(moduleName));
    const auto* const dos = reinterpret_cast<IMAGE_DOS_HEADER*>(module);
    const auto* const headers = reinterpret_cast<IMAGE_NT_HEADERS*>(module + dos->e_lfanew);
    const auto& table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IAT];
    DWORD protection = 0;
    ASSERT_TRUE(VirtualProtect(module + table.VirtualAddress, table.Size, PAGE_READWRITE, &protection));
    const std::span entries(reinterpret_cast<ULONGLONG*>(module + table.VirtualAddress), table.Size / 8);
    for (const auto& [original, replacement] : replacements) {
        EXPECT_NE(std::ranges::count(entries, original), 0);
        std::ranges::replace(entries, original, replacement);
    }
}

}  // namespace

void ReplaceAllocator() {
    try {
        throw 0;  // the program's runtime allocates for its first exception
    } catch (int) {
    }
    ReplaceIn<true>(L"VelmCore.dll");
    ReplaceIn<true>(L"VelmUtil.dll");
    ReplaceIn<false>(nullptr);
}

long long CountOpen() {
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    return handles;
}

}  // namespace velm::test
