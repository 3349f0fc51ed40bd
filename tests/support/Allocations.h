#pragma once

namespace velm::test {

/// How often this thread has allocated with operator new, in the program and in the libraries that it uses.
unsigned int Allocations();

/// While it lives, only the first `left` allocations of this thread succeed.
struct Shortage {
    explicit Shortage(unsigned int left);
    ~Shortage();
};

}  // namespace velm::test
