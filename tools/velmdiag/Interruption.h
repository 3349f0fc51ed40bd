#pragma once

namespace velmdiag {

/// While an object of this class exists, Ctrl-C and SIGTERM do not end the program, so that a command can
/// first finish or remove the file that it is writing. One object at a time.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Whether the program was asked to end. Threads: any.
    static bool Requested();

    /// The exit status of an interrupted command, as shells report it.
    static constexpr int kExitStatus = 130;

private:
    using Handler = void (*)(int);
    Handler m_interrupt;
    Handler m_terminate;
};

}  // namespace velmdiag
