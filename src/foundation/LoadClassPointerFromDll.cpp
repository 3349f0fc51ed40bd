#include "velm/LoadClassPointerFromDll.h"

#include <windows.h>

#include "velm/WindowsUtil.h"

namespace velm {
namespace {

enum Status : int { kDone = 0, kNotLoaded = 1, kNoAllocateClass = 2, kNoObject = 3 };

using ClassFunction = void (*)(void** object);

ClassFunction Find(HMODULE module, const char* name) {
    return reinterpret_cast<ClassFunction>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

}  // namespace

LoadClassPointerFromDll::LoadClassPointerFromDll() {
    Create();
}

LoadClassPointerFromDll::LoadClassPointerFromDll(const LoadClassPointerFromDll&) {
    Create();
}

LoadClassPointerFromDll& LoadClassPointerFromDll::operator=(const LoadClassPointerFromDll& other) {
    if (this != &other) {
        Terminate();
    }
    return *this;
}

LoadClassPointerFromDll::~LoadClassPointerFromDll() {
    Destory();
}

void LoadClassPointerFromDll::Create() {
    mInitialized = 0;
    mModule = nullptr;
    mClass = nullptr;
}

void LoadClassPointerFromDll::Destory() {
    Terminate();
}

int LoadClassPointerFromDll::Initialize(const char* dllPath, void** classPointer) {
    Terminate();
    if (classPointer == nullptr) {
        return kNotLoaded;
    }
    *classPointer = nullptr;
    mModule = WindowsUtil::CallLoadLibrary(dllPath);
    if (mModule == nullptr) {
        return kNotLoaded;
    }
    const ClassFunction allocate = Find(mModule, "AllocateClass");
    if (allocate == nullptr) {
        return kNoAllocateClass;
    }
    allocate(&mClass);
    if (mClass == nullptr) {
        return kNoObject;
    }
    *classPointer = mClass;
    mInitialized = 1;
    return kDone;
}

int LoadClassPointerFromDll::Terminate() {
    if (mModule != nullptr) {
        const ClassFunction release = Find(mModule, "ReleaseClass");
        if (release != nullptr && mClass != nullptr) {
            release(&mClass);
        }
        FreeLibrary(mModule);
    }
    Create();
    return kDone;
}

}  // namespace velm
