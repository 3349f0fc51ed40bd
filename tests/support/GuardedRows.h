/// @file
/// Memory between inaccessible pages: an access outside ends the test program.
#pragma once

#include <cstddef>
#include <new>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace velm::test {

constexpr std::size_t kPageSize = 4096;  // on every x86-64 system

/// Which end of the rows lies against an inaccessible page; the other end is then unaligned.
enum class Guard { kBefore, kAfter };

/// Rows of bytes, a stride apart, in pages of their own. With a stride of at least two pages that is a
/// multiple of a page, every row is guarded; otherwise the first row before it, or the last row after it. All
/// bytes start as 0.
class GuardedRows {
public:
    GuardedRows(std::size_t rows, std::size_t rowBytes, std::size_t stride, Guard guard) : m_stride(stride) {
        const std::size_t span = rows != 0 ? (rows - 1) * stride + rowBytes : 0;
        const std::size_t pages = (span + kPageSize - 1) / kPageSize * kPageSize;
        m_size = pages + 2 * kPageSize;
        Reserve();
        m_first = m_base + kPageSize + (guard == Guard::kAfter ? pages - span : 0);
        for (std::size_t row = 0; row < rows && rowBytes != 0; ++row) {
            const std::size_t before = static_cast<std::size_t>(Row(row) - m_base) % kPageSize;
            Open(Row(row) - before, rowBytes + before);
        }
    }
    GuardedRows(const GuardedRows&) = delete;
    GuardedRows& operator=(const GuardedRows&) = delete;

    unsigned char* Row(std::size_t row) const { return m_first + row * m_stride; }

#if defined(_WIN32)
    ~GuardedRows() {
        VirtualFree(m_base, 0, MEM_RELEASE);
    }

private:
    void Reserve() {
        m_base = static_cast<unsigned char*>(VirtualAlloc(nullptr, m_size, MEM_RESERVE, PAGE_NOACCESS));
    }
    static void Open(unsigned char* page, std::size_t size) {
        if (VirtualAlloc(page, size, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
            throw std::bad_alloc();
        }
    }
#else
    ~GuardedRows() {
        munmap(m_base, m_size);
    }

private:
    void Reserve() {
        constexpr int kFlags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
        m_base = static_cast<unsigned char*>(mmap(nullptr, m_size, PROT_NONE, kFlags, -1, 0));
    }
    static void Open(unsigned char* page, std::size_t size) {
        if (mprotect(page, size, PROT_READ | PROT_WRITE) != 0) {
            throw std::bad_alloc();
        }
    }
#endif

    std::size_t m_stride;
    std::size_t m_size = 0;
    unsigned char* m_base = nullptr;
    unsigned char* m_first = nullptr;
};

}  // namespace velm::test
