#include "velm/core/ThreadConfig.h"

namespace velm {

ThreadConfig::ThreadConfig() = default;
ThreadConfig::ThreadConfig(const ThreadConfig& other) = default;
ThreadConfig& ThreadConfig::operator=(const ThreadConfig& other) = default;
ThreadConfig::~ThreadConfig() = default;

void ThreadConfig::SetName(const char* name) {
    m_name = name != nullptr ? name : "";
}

const char* ThreadConfig::GetName() const {
    return m_name.c_str();
}

void ThreadConfig::SetStackSize(unsigned int bytes) {
    m_stackSize = bytes;
}

unsigned int ThreadConfig::GetStackSize() const {
    return m_stackSize;
}

}  // namespace velm
