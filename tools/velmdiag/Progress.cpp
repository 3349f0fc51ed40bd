#include "Progress.h"

#include <iostream>

#include "velm/platform/CommandLine.h"

namespace velmdiag {

Progress::Progress(bool isWanted) : m_isShown(isWanted && velm::platform::ErrorIsTerminal()) {}

Progress::~Progress() {
    if (m_width != 0) {
        std::cerr << '\r' << std::string(m_width, ' ') << '\r' << std::flush;
    }
}

void Progress::Show(const std::string& text) {
    if (!m_isShown) {
        return;
    }
    const std::size_t blanks = m_width > text.size() ? m_width - text.size() : 0;
    std::cerr << '\r' << text << std::string(blanks, ' ') << std::flush;
    m_width = text.size();
}

}  // namespace velmdiag
