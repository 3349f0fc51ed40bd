/// @file
/// HRESULT codes; failures are negative.
#pragma once

#include "windef.h"

#define S_OK (static_cast<HRESULT>(0))
#define E_NOINTERFACE (static_cast<HRESULT>(0x80004002))

#define SUCCEEDED(result) (static_cast<HRESULT>(result) >= 0)
#define FAILED(result) (static_cast<HRESULT>(result) < 0)
