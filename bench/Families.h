#pragma once

#include <span>

#include "Suite.h"

namespace velm::bench {

struct Family {
    const char* name;
    void (*run)(Suite& suite);
};

/// The families that can be measured on this platform.
std::span<const Family> GetFamilies();

void MeasureAdapterRules(Suite& suite);
void MeasureAudioFrame(Suite& suite);
void MeasureAudioRing(Suite& suite);
void MeasureFrameRing(Suite& suite);
void MeasureJson(Suite& suite);
void MeasureLibraries(Suite& suite);
void MeasureLinks(Suite& suite);
void MeasurePictures(Suite& suite);
void MeasureText(Suite& suite);
void MeasureUrls(Suite& suite);
void MeasureWave(Suite& suite);

}  // namespace velm::bench
