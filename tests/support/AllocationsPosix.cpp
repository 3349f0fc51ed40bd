#include "Allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local unsigned int t_allocations = 0;
thread_local unsigned int t_left = ~0U;

void* Allocate(std::size_t size) {
    ++t_allocations;
    if (t_left == 0) {
        return nullptr;
    }
    --t_left;
    return std::malloc(size);
}

}  // namespace

namespace velm::test {

unsigned int Allocations() {
    return t_allocations;
}

Shortage::Shortage(unsigned int left) {
    t_left = left;
}

Shortage::~Shortage() {
    t_left = ~0U;
}

}  // namespace velm::test

// Linux lets a program replace these for the libraries that it uses, too. Inlined, the pairs of malloc and
// free would look mismatched to the compiler.
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
