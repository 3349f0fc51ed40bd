/// @file
/// Text: code pages and UTF-16. A wchar_t element holds one UTF-16 unit.
#pragma once

#include "windef.h"

extern "C" {

#define CP_ACP 0U
#define CP_OEMCP 1U
#define CP_UTF8 65001U

/// The conversions support neither flags nor a default character. The code pages are those of iconv.
/// Invalid input becomes U+FFFD; a character that the code page lacks becomes "?".
int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR in, int inSize, LPWSTR out, int outUnits);
int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR in, int inUnits, LPSTR out, int outSize,
                        LPCSTR defaultChar, LPBOOL usedDefault);
UINT GetACP();
UINT GetOEMCP();

}  // extern "C"
