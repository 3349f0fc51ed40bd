/// @file
/// On Linux a program can replace the allocator of its libraries, too.
#include <cstdlib>
#include <new>

#include "Memory.h"
#include "velm/posix/Control.h"

using velm::test::MayAllocate;

#ifdef VELM_SANITIZED
#define VELM_TEST_MALLOC std::malloc  // the sanitizer has replaced it already
#else
#define VELM_TEST_MALLOC __libc_malloc
// The C library's own functions, for itself and for the layer below the libraries.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* malloc(std::size_t size) {
    return MayAllocate() ? __libc_malloc(size) : nullptr;
}
void* calloc(std::size_t count, std::size_t size) {
    return MayAllocate() ? __libc_calloc(count, size) : nullptr;
}
void* realloc(void* block, std::size_t size) {
    return MayAllocate() ? __libc_realloc(block, size) : nullptr;
}
}
#endif

// If these were inlined, the compiler would report mismatched pairs of malloc and free.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return MayAllocate() ? velm::test::CountBlock(VELM_TEST_MALLOC(size)) : nullptr;
}
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* const block = operator new(size, std::nothrow)) {
        return block;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    velm::test::g_memory.blocks -= block != nullptr;
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}
namespace velm::test {

void ReplaceAllocator() {}

long long CountOpen() {
    return posix::OpenHandles() + posix::OpenDeviceContexts();
}

}  // namespace velm::test
