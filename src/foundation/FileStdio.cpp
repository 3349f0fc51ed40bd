#include "velm/FileStdio.h"

#include <windows.h>

#include <cstring>

namespace velm {
namespace {

// The Microsoft C runtime ends the process on an unknown mode.
bool IsMode(const char* mode) {
    return mode != nullptr && *mode != '\0' && std::strchr("rwa", *mode) != nullptr;
}

}  // namespace

FileStdio::FileStdio() : mFile(nullptr), mOwned(false) {}

FileStdio::FileStdio(const FileStdio& other) : mFile(other.mFile), mOwned(false) {}

FileStdio& FileStdio::operator=(const FileStdio& other) {
    if (mFile != other.mFile) {
        Close();
        mFile = other.mFile;
    }
    return *this;
}

FileStdio::~FileStdio() {
    Close();
}

std::FILE* FileStdio::Open(const char* path, const char* mode) {
    Close();
    if (path == nullptr || !IsMode(mode)) {
        return nullptr;
    }
    if (fopen_s(&mFile, path, mode) != 0) {
        mFile = nullptr;
    }
    mOwned = mFile != nullptr;
    return mFile;
}

std::FILE* FileStdio::Get() {
    return mFile;
}

void FileStdio::Close() {
    if (mOwned) {
        std::fclose(mFile);
    }
    mFile = nullptr;
    mOwned = false;
}

void FileStdio::Close(std::FILE*) {
    Close();
}

}  // namespace velm
