#pragma once

#include <cstddef>
#include <string>

namespace velmdiag {

/// Shows the progress of a long command: one line on standard error that overwrites itself, if that is a
/// terminal. The destructor clears the line. Uses no escape sequences, because not every console interprets
/// them. Threads: one at a time.
class Progress {
public:
    /// @param isWanted  false shows nothing
    explicit Progress(bool isWanted = true);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// @param text  printable ASCII
    void Show(const std::string& text);

private:
    bool m_isShown;
    std::size_t m_width = 0;  // of the text on the terminal
};

}  // namespace velmdiag
