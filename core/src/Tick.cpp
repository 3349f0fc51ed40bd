#include "velm/core/Tick.h"

#include <windows.h>

namespace velm {

Tick Tick::Get() {
    LARGE_INTEGER count{};
    return Tick(QueryPerformanceCounter(&count) ? static_cast<unsigned long long>(count.QuadPart) : 0);
}

unsigned long long Tick::GetFrequency() {
    LARGE_INTEGER frequency{};
    return QueryPerformanceFrequency(&frequency) ? static_cast<unsigned long long>(frequency.QuadPart) : 0;
}

Tick::~Tick() = default;

}  // namespace velm
