#include "graphics/yuv/CpuFeatures.h"

#if defined(_MSC_VER)
#include <intrin.h>
#else
#include <cpuid.h>
#endif

#include <atomic>
#include <initializer_list>

namespace velm::yuv {
namespace {

constexpr unsigned int kLeaf1EcxOsxsave = 1U << 27;

constexpr unsigned int MaskOf(std::initializer_list<int> bits) {
    unsigned int mask = 0;
    for (const int bit : bits) {
        mask |= 1U << bit;
    }
    return mask;
}

/// What a level requires beyond the levels before it. That is more than the kernels use themselves:
/// /arch:AVX2 also lets Visual C++ emit FMA, BMI1 and BMI2, and /arch:AVX512 the extensions CD, DQ and VL.
struct Requirement {
    CpuLevel level;
    unsigned int leaf1Ecx;
    unsigned int leaf7Ebx;
    unsigned int leaf7Ecx;
    unsigned long long xcr0;
};

constexpr Requirement kRequirements[] = {
    // OSXSAVE, AVX, FMA; AVX2, BMI1, BMI2; SSE and the upper halves of the 256-bit registers
    {CpuLevel::kAvx2, MaskOf({27, 28, 12}), MaskOf({5, 3, 8}), 0, 0x06},
    // AVX-512 F, BW, CD, DQ, VL; and mask registers, upper halves, registers 16 to 31
    {CpuLevel::kAvx512Bw, 0, MaskOf({16, 30, 28, 17, 31}), 0, 0xE6},
    {CpuLevel::kAvx512Vbmi, 0, 0, MaskOf({1}), 0},
};

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
    const CpuidResult leaf0 = Cpuid(0);
    report.highestLeaf = leaf0.eax;
    report.leaf0Ebx = leaf0.ebx;
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
    CpuLevel level = CpuLevel::kBaseline;
    for (const Requirement& next : kRequirements) {
        if (report.highestLeaf < 7 || !HasAll(report.leaf1Ecx, next.leaf1Ecx) ||
            !HasAll(report.leaf7Ebx, next.leaf7Ebx) || !HasAll(report.leaf7Ecx, next.leaf7Ecx) ||
            !HasAll(report.xcr0, next.xcr0)) {
            break;
        }
        level = next.level;
    }
    return level;
}

// All AMD families that have VBMI do so. Intel's processors need three operations. Other vendors' processors
// were not measured, and are assumed to be no faster.
bool HasFastTwoTablePermutes(const CpuReport& report) {
    constexpr unsigned int kAuthenticAmd = 0x68747541;  // "Auth"
    return report.leaf0Ebx == kAuthenticAmd;
}

// Concurrent first calls each detect the level and store the same result. A function-local static would need
// a guard, for which MinGW's runtime allocates memory without checking for failure.
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
