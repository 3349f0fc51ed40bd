/// @file
/// Every exported header of the library.
#pragma once

#include "velm/AudioFrame.h"
#include "velm/AudioFrameStream.h"
#include "velm/AudioStream.h"
#include "velm/EnvConfigReader.h"
#include "velm/IniConfigReader.h"
#include "velm/JsonConfigReader.h"
#include "velm/KeyStringToByteData.h"
#include "velm/UrlParser.h"
#include "velm/UtilErrorCode.h"
#include "velm/WaveFileReadHelper.h"
#include "velm/WindowsUtil.h"
#include "velm/CrossDotRotate.h"
#include "velm/UtilErrorCode.h"
#include "velm/WaveFileReadHelper.h"
#include "velm/YuvToArgb.h"
