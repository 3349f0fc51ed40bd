#include "graphics/yuv/CpuFeatures.h"

#if defined(_MSC_VER)
#include <intrin.h>
#else
#include <cpuid.h>
#endif

#include <atomic>

namespace velm::yuv {
namespace {

constexpr unsigned int kLeaf1EcxOsxsave = 1U << 27;
constexpr unsigned int kLeaf1EcxAvx = 1U << 28;
constexpr unsigned int kLeaf7EbxAvx2 = 1U << 5;
constexpr unsigned int kLeaf7EbxAvx512F = 1U << 16;
constexpr unsigned int kLeaf7EbxAvx512Bw = 1U << 30;
constexpr unsigned int kLeaf7EcxAvx512Vbmi = 1U << 1;
constexpr unsigned long long kYmmState = 0x06;  // SSE and the upper halves of the 256-bit registers
constexpr unsigned long long kZmmState = 0xE6;  // and mask registers, upper halves, registers 16 to 31

struct CpuidResult {
    unsigned int eax = 0;
    unsigned int ebx = 0;
    unsigned int ecx = 0;
    unsigned int edx = 0;
};

#if defined(_MSC_VER)
CpuidResult Cpuid(unsigned int leaf) {
    int registers[4];
    __cpuidex(registers, static_cast<int>(leaf), 0);
    return {static_cast<unsigned int>(registers[0]), static_cast<unsigned int>(registers[1]),
            static_cast<unsigned int>(registers[2]), static_cast<unsigned int>(registers[3])};
}

unsigned long long ReadXcr0() {
    return _xgetbv(0);
}
#else
CpuidResult Cpuid(unsigned int leaf) {
    CpuidResult result;
    __cpuid_count(leaf, 0, result.eax, result.ebx, result.ecx, result.edx);
    return result;
}

unsigned long long ReadXcr0() {
    unsigned int low = 0;
    unsigned int high = 0;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return static_cast<unsigned long long>(high) << 32 | low;
}
#endif

template <class Bits>
bool HasAll(Bits value, Bits bits) {
    return (value & bits) == bits;
}

}  // namespace

CpuReport ReadCpuReport() {
    CpuReport report;
    report.highestLeaf = Cpuid(0).eax;
    report.leaf1Ecx = Cpuid(1).ecx;
    if (report.highestLeaf >= 7) {
        const CpuidResult leaf7 = Cpuid(7);
        report.leaf7Ebx = leaf7.ebx;
        report.leaf7Ecx = leaf7.ecx;
    }
    if (HasAll(report.leaf1Ecx, kLeaf1EcxOsxsave)) {
        report.xcr0 = ReadXcr0();
    }
    return report;
}

CpuLevel LevelOf(const CpuReport& report) {
    if (report.highestLeaf < 7 || !HasAll(report.leaf1Ecx, kLeaf1EcxOsxsave | kLeaf1EcxAvx) ||
        !HasAll(report.leaf7Ebx, kLeaf7EbxAvx2) || !HasAll(report.xcr0, kYmmState)) {
        return CpuLevel::kBaseline;
    }
    if (!HasAll(report.leaf7Ebx, kLeaf7EbxAvx512F | kLeaf7EbxAvx512Bw) || !HasAll(report.xcr0, kZmmState)) {
        return CpuLevel::kAvx2;
    }
    return HasAll(report.leaf7Ecx, kLeaf7EcxAvx512Vbmi) ? CpuLevel::kAvx512Vbmi : CpuLevel::kAvx512Bw;
}

// Threads that come at the same time each ask, and all store the same answer. A function's static would make
// them wait behind a guard instead, which takes memory in MinGW's runtime and does not look whether it got
// any.
CpuLevel GetCpuLevel() {
    static constinit std::atomic<int> known{-1};
    int level = known.load(std::memory_order_relaxed);
    if (level < 0) {
        level = static_cast<int>(LevelOf(ReadCpuReport()));
        known.store(level, std::memory_order_relaxed);
    }
    return static_cast<CpuLevel>(level);
}

}  // namespace velm::yuv
