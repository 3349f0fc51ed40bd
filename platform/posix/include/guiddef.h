/// @file
/// The 16-byte GUID.
#pragma once

#include "windef.h"

struct GUID {
    ULONG Data1;
    WORD Data2;
    WORD Data3;
    BYTE Data4[8];
};

using IID = GUID;

#define REFIID const IID&
