#include "velm/FileStdio.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

namespace velm::file_stdio_test {

std::string Content(const char* path) {
    FileStdio file;
    char text[64] = {};
    if (file.Open(path, "rb") == nullptr) {
        return "(none)";
    }
    return {text, std::fread(text, 1, sizeof text, file.Get())};
}

TEST(FileStdio, OpenClosesThePreviousStream) {
    FileStdio file;
    EXPECT_EQ(file.Get(), nullptr);
    const char* const refused[][2] = {{"no such folder/file", "wb"},
                                      {nullptr, "rb"},
                                      {"refused", nullptr},
                                      {"refused", ""},
                                      {"refused", "x"}};
    for (const auto& [path, mode] : refused) {
        SCOPED_TRACE(mode != nullptr ? mode : "no mode");
        ASSERT_NE(file.Open("stdio", "wb"), nullptr);
        std::fputs("first", file.Get());
        EXPECT_EQ(file.Open(path, mode), nullptr);
        EXPECT_EQ(file.Get(), nullptr);
        EXPECT_EQ(Content("stdio"), "first");
    }
    EXPECT_EQ(Content("refused"), "(none)");
}

TEST(FileStdio, OwnerClosesTheStreamOnce) {
    auto source = std::make_unique<FileStdio>();
    ASSERT_NE(source->Open("stdio-copied", "wb"), nullptr);
    {
        FileStdio copy(*source);
        FileStdio assigned;
        ASSERT_NE(assigned.Open("stdio-replaced", "wb"), nullptr);
        std::fputs("replaced", assigned.Get());
        assigned = copy;
        EXPECT_EQ(Content("stdio-replaced"), "replaced");
        copy.Close();
        EXPECT_EQ(copy.Get(), nullptr);
        *source = assigned;
        ASSERT_NE(copy.Open("stdio-other", "wb"), nullptr);
        std::fputs("other", copy.Get());
        copy.Close(source->Get());  // closes its own stream, not the argument
        EXPECT_EQ(Content("stdio-other"), "other");
    }
    EXPECT_GE(std::fputs("written after the copies", source->Get()), 0);
    const FileStdio outlives(*source);
    source.reset();
    EXPECT_EQ(Content("stdio-copied"), "written after the copies");
}

}  // namespace velm::file_stdio_test
