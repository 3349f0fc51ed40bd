#pragma once

namespace velm::yuv {

/// Instruction set extensions beyond the x86-64 baseline that kernels need; each level implies those before
/// it.
enum class CpuLevel { kBaseline, kAvx2, kAvx512Bw, kAvx512Vbmi };

/// What the CPUID and XGETBV instructions return.
struct CpuReport {
    unsigned int highestLeaf = 0;
    unsigned int leaf1Ecx = 0;
    unsigned int leaf7Ebx = 0;
    unsigned int leaf7Ecx = 0;
    unsigned long long xcr0 = 0;  // register states that the system saves; 0 if there is no XGETBV
    unsigned int leaf0Ebx = 0;    // the first four characters of the vendor string
};

/// Executes CPUID and XGETBV. Slow in a virtual machine, where each CPUID is trapped.
CpuReport ReadCpuReport();

/// Returns the highest level that the processor supports and whose registers the system saves.
CpuLevel LevelOf(const CpuReport& report);

/// Whether the vendor's processors permute the bytes of two registers in one operation.
bool HasFastTwoTablePermutes(const CpuReport& report);

/// Returns the level of this processor, determined once.
/// Threads: any.
CpuLevel GetCpuLevel();

}  // namespace velm::yuv
