#pragma once

namespace velm::test {

/// What the test process holds of the system.
struct ProcessResources {
    long long handles = 0;  ///< handles, or file descriptors and the Linux layer's handles
    long long threads = 0;
    long long memory = 0;    ///< bytes in use on the heap; 0 where a sanitizer has replaced the heap
    long long objects = 0;   ///< of the graphics device interface
    long long reserved = 0;  ///< bytes that the process has to itself; 0 on Linux
};

ProcessResources GetProcessResources();

}  // namespace velm::test
