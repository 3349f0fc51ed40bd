#include "Families.h"

namespace velm::bench {

std::span<const Family> GetFamilies() {
    static constexpr Family kFamilies[] = {
        {"audio-ring", MeasureAudioRing},
        {"frame-ring", MeasureFrameRing},
        {"wave", MeasureWave},
        {"pictures", MeasurePictures},
        {"urls", MeasureUrls},
        {"links", MeasureLinks},
        {"audio-frame", MeasureAudioFrame},
        {"adapter-rules", MeasureAdapterRules},
        {"json", MeasureJson},
    };
    return kFamilies;
}

}  // namespace velm::bench
