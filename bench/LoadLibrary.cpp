// Loads libraries into this new process: load_library PATH ... The exit code is the time taken in units of
// 100 ns, or 0 if one cannot be loaded.
#include <windows.h>

int wmain(int argc, wchar_t** argv) {
    LARGE_INTEGER before;
    LARGE_INTEGER after;
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&before);
    bool loaded = argc > 1;
    for (int i = 1; i < argc; ++i) {
        loaded = loaded && LoadLibraryW(argv[i]) != nullptr;
    }
    QueryPerformanceCounter(&after);
    const long long ticks = (after.QuadPart - before.QuadPart) * 10'000'000 / frequency.QuadPart;
    return loaded ? static_cast<int>(ticks) : 0;
}
