/// @file
/// Every exported header of the library.
#pragma once

#include "velm/AudioFrame.h"
#include "velm/AudioFrameStream.h"
#include "velm/AudioStream.h"
#include "velm/CrossDotRotate.h"
#include "velm/UtilErrorCode.h"
#include "velm/WaveFileReadHelper.h"
#include "velm/YuvToArgb.h"
