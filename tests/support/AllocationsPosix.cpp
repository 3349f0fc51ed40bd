#include "Allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local unsigned int t_allocations = 0;

void* Allocate(std::size_t size) {
    ++t_allocations;
    return std::malloc(size);
}

}  // namespace

namespace velm::test {

unsigned int Allocations() {
    return t_allocations;
}

}  // namespace velm::test

// On Linux a program may replace these for the libraries that it uses, too. If they were inlined, the
// compiler would warn of mismatched pairs of malloc and delete.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* const memory = Allocate(size)) {
        return memory;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
