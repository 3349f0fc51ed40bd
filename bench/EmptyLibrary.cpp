// A DLL with the same runtime that does nothing: the minimum cost of loading one.
#include <windows.h>

#include <string>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID) {
    return TRUE;
}

extern "C" __declspec(dllexport) std::size_t EmptyLibrarySize(const char* text) {
    return std::string(text).size();
}
