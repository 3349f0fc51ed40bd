#pragma once

namespace velm::yuv {

/// Extensions of the instruction set that kernels need beyond what every 64-bit processor has; each implies
/// those before it.
enum class CpuLevel { kBaseline, kAvx2, kAvx512Bw, kAvx512Vbmi };

/// What the processor and the system say, as the CPUID and XGETBV instructions return it.
struct CpuReport {
    unsigned int highestLeaf = 0;
    unsigned int leaf1Ecx = 0;
    unsigned int leaf7Ebx = 0;
    unsigned int leaf7Ecx = 0;
    unsigned long long xcr0 = 0;  // the register states that the system saves; 0 when it cannot be asked
};

/// Asks the processor. Slow in a virtual machine, where each CPUID is trapped.
CpuReport ReadCpuReport();

/// The best level that the processor has and the system saves the registers of.
CpuLevel LevelOf(const CpuReport& report);

/// The level of this processor, asked for once.
/// Threads: any number at once.
CpuLevel GetCpuLevel();

}  // namespace velm::yuv
