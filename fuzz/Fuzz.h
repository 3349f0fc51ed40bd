#pragma once

#include <cstdio>
#include <cstdlib>

/// What a fuzz target demands: ends the process, with the place, when it does not hold.
#define VELM_FUZZ_DEMAND(condition)                                              \
    do {                                                                         \
        if (!(condition)) {                                                      \
            std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                        \
        }                                                                        \
    } while (false)
