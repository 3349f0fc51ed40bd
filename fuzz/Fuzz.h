#pragma once

#include <cstdio>
#include <cstdlib>

/// Aborts with file, line and condition if the condition does not hold.
#define VELM_FUZZ_DEMAND(condition)                                              \
    do {                                                                         \
        if (!(condition)) {                                                      \
            std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                        \
        }                                                                        \
    } while (false)
