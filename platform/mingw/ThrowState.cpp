/// @file
/// Lets a library throw without allocating, and without thread notifications.
///
/// MinGW's runtime keeps a thread's exception state in emulated thread-local storage and guards its emergency
/// pool with a mutex of its thread library. Both allocate on first use and end the process if that fails, so
/// std::bad_alloc could not be thrown exactly when it is needed. Both also need a notification for every
/// thread that exits. This file replaces the functions that link them in.
#include <windows.h>
#include <cxxabi.h>
#include <pthread.h>
#include <winternl.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>

namespace __cxxabiv1 {

/// The layout of the Itanium C++ ABI.
struct __cxa_eh_globals {
    void* caughtExceptions;
    unsigned int uncaughtExceptions;
};

}  // namespace __cxxabiv1

namespace {

constexpr int kFirst = 101;
constexpr DWORD kSlotsInTeb = 64;
constexpr DWORD kSlots = kSlotsInTeb + 1024;

// Windows keeps a thread's TLS slots in its TEB. The offsets are not documented, but cannot change
// without breaking programs: other compilers compile them in.
static_assert(offsetof(TEB, TlsSlots) == 0x1480 && offsetof(TEB, TlsExpansionSlots) == 0x1780);
static_assert(sizeof(__cxxabiv1::__cxa_eh_globals) == 2 * sizeof(void*));

/// The first of two adjacent slots. The system zeroes them in every thread.
DWORD g_slot = TLS_OUT_OF_INDEXES;

__attribute__((constructor(kFirst))) void AllocateSlots() {
    DWORD single[kSlots];
    std::size_t count = 0;
    DWORD last = TlsAlloc();
    for (DWORD next = last; next != TLS_OUT_OF_INDEXES && g_slot == TLS_OUT_OF_INDEXES;) {
        next = TlsAlloc();
        if (next == last + 1 && next != kSlotsInTeb) {
            g_slot = last;
        } else {
            single[count++] = last;
            last = next;
        }
    }
    while (count != 0) {
        TlsFree(single[--count]);
    }
}

__attribute__((destructor(kFirst))) void FreeSlots() {
    if (g_slot != TLS_OUT_OF_INDEXES) {
        TlsFree(g_slot);
        TlsFree(g_slot + 1);
    }
}

// Not NtCurrentTeb, whose access to address 0 makes GCC warn.
TEB* ThisThread() {
    TEB* self;
    __asm__("movq %%gs:0x30, %0" : "=r"(self));
    return self;
}

/// Slots from 64 on are in a block that is allocated when a thread first sets one of them.
void** FindSlots(DWORD slot) {
    TEB* const thread = ThisThread();
    if (slot < kSlotsInTeb) {
        return thread->TlsSlots + slot;
    }
    if (slot == TLS_OUT_OF_INDEXES || (thread->TlsExpansionSlots == nullptr && !TlsSetValue(slot, nullptr))) {
        std::abort();
    }
    return static_cast<void**>(thread->TlsExpansionSlots) + (slot - kSlotsInTeb);
}

PSRWLOCK LockOf(pthread_mutex_t* mutex) {
    static_assert(sizeof(pthread_mutex_t) == sizeof(SRWLOCK));
    pthread_mutex_t initial = PTHREAD_MUTEX_INITIALIZER;
    std::atomic_ref(*mutex).compare_exchange_strong(initial, 0);  // to SRWLOCK_INIT
    return reinterpret_cast<PSRWLOCK>(mutex);
}

}  // namespace

namespace __cxxabiv1 {

extern "C" {

__cxa_eh_globals* __cxa_get_globals() noexcept {
    return reinterpret_cast<__cxa_eh_globals*>(FindSlots(g_slot));
}

__cxa_eh_globals* __cxa_get_globals_fast() noexcept {
    return __cxa_get_globals();
}
}

}  // namespace __cxxabiv1

extern "C" {

int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t*) {
    *mutex = PTHREAD_MUTEX_INITIALIZER;
    return 0;
}

int pthread_mutex_destroy(pthread_mutex_t*) {
    return 0;
}

int pthread_mutex_lock(pthread_mutex_t* mutex) {
    AcquireSRWLockExclusive(LockOf(mutex));
    return 0;
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) {
    ReleaseSRWLockExclusive(LockOf(mutex));
    return 0;
}

// Replaces the entry that makes the linker add a TLS directory, with which DisableThreadLibraryCalls fails.
extern const PIMAGE_TLS_CALLBACK __dyn_tls_init_callback;
const PIMAGE_TLS_CALLBACK __dyn_tls_init_callback = nullptr;
}
