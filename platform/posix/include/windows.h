/// @file
/// The Windows interfaces that the libraries call, for Linux. One header per topic, with Windows' names; the
/// implementations are in ../src, one file per topic.
#pragma once

#include "corecrt_wstdlib.h"
#include "guiddef.h"
#include "sec_api/stdio_s.h"
#include "winbase.h"
#include "windef.h"
#include "winerror.h"
#include "wingdi.h"
#include "winnls.h"
#include "winuser.h"
