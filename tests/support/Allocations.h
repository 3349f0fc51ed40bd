#pragma once

namespace velm::test {

/// How often this thread has allocated with operator new, in the program and in the libraries that it uses.
unsigned int Allocations();

}  // namespace velm::test
