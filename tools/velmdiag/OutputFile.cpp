#include "OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <random>
#include <sstream>
#include <system_error>

#include "Command.h"
#include "Path.h"
#include "velm/platform/CommandLine.h"

namespace velmdiag {
namespace {

/// An unused name in the folder of `target`.
std::filesystem::path UnusedNameFor(const std::filesystem::path& target) {
    std::random_device random;
    std::filesystem::path name;
    std::error_code ignored;
    do {
        std::ostringstream suffix;
        suffix << '.' << std::hex << random() << ".part";
        name = target;
        name += suffix.str();
    } while (std::filesystem::exists(name, ignored));
    return name;
}

[[noreturn]] void ThrowUnwritable(const std::string& name, int error) {
    throw Failure{name + ": cannot be written" +
                  (error != 0 ? ": " + std::generic_category().message(error) : std::string())};
}

}  // namespace

OutputFile::OutputFile(const std::string& path) : m_name(path) {
    if (path == "-") {
        m_name = "standard output";
        velm::platform::UseBinary(stdout);
        m_stream = &std::cout;
        return;
    }
    if (path.empty()) {
        throw Failure{"the name of the output file is empty"};
    }
    // A symbolic link stays; the file it points to is replaced.
    std::error_code failed;
    m_target = std::filesystem::canonical(PathOf(path), failed);
    if (failed) {
        m_target = PathOf(path);
    }
    const std::filesystem::file_status status = std::filesystem::status(m_target, failed);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        errno = 0;
        m_file.open(m_target, std::ios::binary);
        Check();
    } else {
        OpenTemporary();
    }
}

void OutputFile::OpenTemporary() {
    m_temporary = UnusedNameFor(m_target);
    errno = 0;
    m_file.open(m_temporary, std::ios::binary);
    Check();
    std::error_code ignored;
    if (const auto status = std::filesystem::status(m_target, ignored); std::filesystem::exists(status)) {
        std::filesystem::permissions(m_temporary, status.permissions(), ignored);
    }
}

OutputFile::~OutputFile() {
    Discard();
}

void OutputFile::Write(const void* bytes, std::size_t size) {
    const std::lock_guard lock(m_mutex);
    errno = 0;
    m_stream->write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    Check();
}

void OutputFile::WriteAt(std::uint64_t offset, const void* bytes, std::size_t size) {
    errno = 0;
    m_file.seekp(static_cast<std::streamoff>(offset));
    m_file.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    m_file.seekp(0, std::ios::end);
    Check();
}

void OutputFile::Commit() {
    errno = 0;
    m_stream->flush();
    Check();
    if (m_stream != &m_file) {
        return;
    }
    m_file.close();
    Check();
    if (IsStream()) {
        return;
    }
    std::error_code failed;
    std::filesystem::rename(m_temporary, m_target, failed);
    if (failed) {
        throw Failure{m_name + ": cannot be written: " + failed.message()};
    }
    m_temporary.clear();
}

void OutputFile::Abandon() {
    const std::lock_guard lock(m_mutex);
    Discard();
    m_file.setstate(std::ios::badbit);
}

void OutputFile::Check() {
    if (!m_stream->good()) {
        const int error = errno;
        Discard();
        ThrowUnwritable(m_name, error);
    }
}

void OutputFile::Discard() {
    if (!m_temporary.empty()) {
        m_file.close();
        std::error_code ignored;
        std::filesystem::remove(m_temporary, ignored);
        m_temporary.clear();
    }
}

}  // namespace velmdiag
