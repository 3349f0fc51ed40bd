/// @file
/// Every exported header of the library.
#pragma once

#include "velm/AbortMessage.h"
#include "velm/AudioFrame.h"
#include "velm/AudioFrameStream.h"
#include "velm/AudioStream.h"
#include "velm/AutoResetSyncEventWrapper.h"
#include "velm/EnvConfigReader.h"
#include "velm/FileStdio.h"
#include "velm/IniConfigReader.h"
#include "velm/JsonConfigReader.h"
#include "velm/KeyStringToByteData.h"
#include "velm/LoadClassPointerFromDll.h"
#include "velm/LocalMachineTime.h"
#include "velm/MemoryInfo.h"
#include "velm/Scheduling.h"
#include "velm/ThreadCaller.h"
#include "velm/UtilErrorCode.h"
#include "velm/Watchdog.h"
#include "velm/WaveFileReadHelper.h"
#include "velm/WindowsUtil.h"
