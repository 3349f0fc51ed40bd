#include "velm/LocalMachineTime.h"

#include "velm/core/Tick.h"

namespace velm {

unsigned long long GetLocalMachineTime() {
    const unsigned long long count = Tick::Get().GetCount();
    const unsigned long long frequency = Tick::GetFrequency();
    if (frequency == 0) {
        return 0;
    }
    // Whole seconds apart from the rest, so that no reading is too large to be multiplied.
    return count / frequency * 1000 + count % frequency * 1000 / frequency;
}

}  // namespace velm
