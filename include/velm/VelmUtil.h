/// @file
/// Every exported header of the library.
#pragma once

#include "velm/AudioFrame.h"
#include "velm/AudioFrameStream.h"
#include "velm/AudioStream.h"
#include "velm/D3d9AdapterCheckItem.h"
#include "velm/D3d9AdapterCheckSet.h"
#include "velm/D3d9AdapterContext.h"
#include "velm/D3D9ResourceBase.h"
#include "velm/D3D9ResourceManager.h"
#include "velm/D3D9Surface.h"
#include "velm/UtilErrorCode.h"
#include "velm/WaveFileReadHelper.h"
