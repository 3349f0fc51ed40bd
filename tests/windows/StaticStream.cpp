#include "velm/AudioFrameStream.h"

namespace {

velm::AudioFrameStream g_stream(4, 2, 1, 16);

}  // namespace

extern "C" __declspec(dllexport) void Block() {
    g_stream.Initialize();
    g_stream.DropFrontFrame();
}
