/// @file
/// Thread creation by the C runtime.
#pragma once

#include "windef.h"

extern "C" {

UINT_PTR _beginthreadex(void* security, unsigned int stackSize, unsigned int(WINAPI* function)(void*),
                        void* argument, unsigned int flags, unsigned int* threadId);

}  // extern "C"
