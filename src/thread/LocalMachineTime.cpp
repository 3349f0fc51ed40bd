#include "velm/LocalMachineTime.h"

#include "velm/core/Tick.h"

namespace velm {

unsigned long long GetLocalMachineTime() {
    const unsigned long long count = Tick::Get().GetCount();
    const unsigned long long frequency = Tick::GetFrequency();
    if (frequency == 0) {
        return 0;
    }
    // Whole seconds and the remainder are converted separately, so that no product overflows.
    return count / frequency * 1000 + count % frequency * 1000 / frequency;
}

}  // namespace velm
