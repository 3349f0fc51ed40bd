#pragma once

/// Does nothing, in a shared library of its own: the minimum cost of a call into one.
extern "C" __attribute__((visibility("default"))) unsigned int EmptyCall(unsigned char* data,
                                                                         unsigned int size);
