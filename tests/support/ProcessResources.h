#pragma once

namespace velm::test {

/// System resources that the process holds.
struct ProcessResources {
    long long handles = 0;  ///< handles, or file descriptors and the Linux layer's handles
    long long threads = 0;
    long long memory = 0;    ///< bytes in use on the heap; 0 where a sanitizer has replaced the heap
    long long objects = 0;   ///< device contexts; 0 on Windows
    long long reserved = 0;  ///< private bytes; 0 on Linux
};

ProcessResources GetProcessResources();

}  // namespace velm::test
