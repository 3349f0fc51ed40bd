#pragma once

namespace velmdiag {

/// While an object lives, Ctrl-C and a request to terminate do not end the program: a command that is writing
/// a file finishes or removes it first. One object at a time.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Whether the program was asked to end. Threads: any.
    static bool Requested();

    /// The exit status of an interrupted command, by the convention of shells.
    static constexpr int kExitStatus = 130;

private:
    using Handler = void (*)(int);
    Handler m_interrupt;
    Handler m_terminate;
};

}  // namespace velmdiag
