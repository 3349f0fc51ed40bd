#pragma once

#include "velm/core/Export.h"

namespace velm {

/// A reading of the system's monotonic high-resolution counter.
class VELM_CORE_API Tick {
public:
    /// Returns the current reading; 0 when the system has no counter.
    /// Threads: any.
    static Tick Get();

    /// Returns the counter units per second; 0 when the system has no counter.
    /// Threads: any.
    static unsigned long long GetFrequency();

    ~Tick();

    /// The reading, in counter units since the counter's origin.
    unsigned long long GetCount() const { return m_count; }

private:
    explicit Tick(unsigned long long count) : m_count(count) {}

    unsigned long long m_count;
};

}  // namespace velm
