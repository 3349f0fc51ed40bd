#include "Interruption.h"

#include <csignal>

namespace velmdiag {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void NoteInterruption(int) {
    g_interrupted = 1;
}

/// A signal that the caller has chosen to ignore stays ignored.
auto HandleSignal(int signal) {
    const auto previous = std::signal(signal, NoteInterruption);
    if (previous == SIG_IGN) {
        std::signal(signal, SIG_IGN);
    }
    return previous;
}

}  // namespace

Interruption::Interruption() : m_interrupt(HandleSignal(SIGINT)), m_terminate(HandleSignal(SIGTERM)) {}

Interruption::~Interruption() {
    std::signal(SIGINT, m_interrupt);
    std::signal(SIGTERM, m_terminate);
}

bool Interruption::Requested() {
    return g_interrupted != 0;
}

}  // namespace velmdiag
