#include "Families.h"

namespace velm::bench {

std::span<const Family> GetFamilies() {
    static constexpr Family kFamilies[] = {
        {"frame-ring", MeasureFrameRing},
        {"text", MeasureText},
        {"libraries", MeasureLibraries},
    };
    return kFamilies;
}

}  // namespace velm::bench
