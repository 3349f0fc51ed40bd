#include "Interruption.h"

#include <signal.h>

#include <atomic>

namespace velmdiag {
namespace {

std::atomic<bool> g_interrupted{false};  // lock-free, as a signal handler needs

void NoteInterruption(int) {
    g_interrupted = true;
}

/// Handles a signal, unless the program was started with it ignored.
auto HandleSignal(int number) {
    const auto previous = ::signal(number, NoteInterruption);
    if (previous == SIG_IGN) {
        ::signal(number, SIG_IGN);
    }
    return previous;
}

}  // namespace

Interruption::Interruption() : m_interrupt(HandleSignal(SIGINT)), m_terminate(HandleSignal(SIGTERM)) {}

Interruption::~Interruption() {
    ::signal(SIGINT, m_interrupt);
    ::signal(SIGTERM, m_terminate);
}

bool Interruption::Requested() {
    return g_interrupted;
}

}  // namespace velmdiag
