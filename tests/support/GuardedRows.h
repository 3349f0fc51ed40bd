/// @file
/// Memory whose surroundings cannot be touched: an access outside ends the test program.
#pragma once

#include <cstddef>
#include <new>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace velm::test {

constexpr std::size_t kPageSize = 4096;  // of every x86-64 system

/// Address space that cannot be accessed until parts of it are opened.
class Reservation {
public:
#if defined(_WIN32)
    explicit Reservation(std::size_t size)
        : m_base(VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS)), m_size(size) {}
    ~Reservation() {
        VirtualFree(m_base, 0, MEM_RELEASE);
    }
#else
    explicit Reservation(std::size_t size)
        : m_base(mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)),
          m_size(size) {}
    ~Reservation() {
        munmap(m_base, m_size);
    }
#endif
    Reservation(const Reservation&) = delete;
    Reservation& operator=(const Reservation&) = delete;

    unsigned char* Base() const {
        return static_cast<unsigned char*>(m_base);
    }

    /// Makes the pages that hold some bytes readable and writable; their content stays, zeros at first.
    void Open(std::size_t offset, std::size_t size) {
        unsigned char* const begin = Base() + offset / kPageSize * kPageSize;
        const auto length = static_cast<std::size_t>(Base() + offset + size - begin);
#if defined(_WIN32)
        const bool opened = VirtualAlloc(begin, length, MEM_COMMIT, PAGE_READWRITE) != nullptr;
#else
        const bool opened = mprotect(begin, length, PROT_READ | PROT_WRITE) == 0;
#endif
        if (!opened) {
            throw std::bad_alloc();
        }
    }

private:
    void* m_base;
    [[maybe_unused]] std::size_t m_size;  // Windows frees by the address alone
};

/// Which end of its bytes lies against a page that cannot be touched; the rows then have no alignment.
enum class Guard { kBefore, kAfter };

/// Rows of bytes, a stride apart, in pages of their own. With a stride of at least two pages that is a
/// multiple of a page, every row is guarded; otherwise the first row before it, or the last row after it. All
/// bytes begin as 0.
class GuardedRows {
public:
    GuardedRows(std::size_t rows, std::size_t rowBytes, std::size_t stride, Guard guard)
        : GuardedRows(rows != 0 ? (rows - 1) * stride + rowBytes : 0, stride, guard) {
        for (std::size_t row = 0; row < rows && rowBytes != 0; ++row) {
            m_reservation.Open(m_offset + row * stride, rowBytes);
        }
    }

    unsigned char* Row(std::size_t row) const { return m_reservation.Base() + m_offset + row * m_stride; }
    std::size_t Stride() const { return m_stride; }

private:
    GuardedRows(std::size_t span, std::size_t stride, Guard guard)
        : m_stride(stride),
          m_reservation(RoundUp(span) + 2 * kPageSize),
          m_offset(kPageSize + (guard == Guard::kAfter ? RoundUp(span) - span : 0)) {}

    static std::size_t RoundUp(std::size_t size) { return (size + kPageSize - 1) / kPageSize * kPageSize; }

    std::size_t m_stride;
    Reservation m_reservation;
    std::size_t m_offset;
};

}  // namespace velm::test
