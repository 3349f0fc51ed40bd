/// @file
/// The base of all reference-counted interfaces.
#pragma once

#include "guiddef.h"
#include "winerror.h"

class IUnknown {
public:
    virtual HRESULT WINAPI QueryInterface(REFIID id, void** object) = 0;
    virtual ULONG WINAPI AddRef() = 0;
    virtual ULONG WINAPI Release() = 0;
};
