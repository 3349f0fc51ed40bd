/// @file
/// Every exported header of the library.
#pragma once

#include "velm/AudioFrame.h"
#include "velm/AudioFrameStream.h"
#include "velm/AudioStream.h"
#include "velm/UrlParser.h"
#include "velm/UrlSchemeUtil.h"
#include "velm/UtilErrorCode.h"
#include "velm/WaveFileReadHelper.h"
