#include "velm/FileStdio.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

namespace velm {
namespace {

std::string Content(const char* path) {
    FileStdio file;
    char text[64] = {};
    if (file.Open(path, "rb") == nullptr) {
        return "(none)";
    }
    return {text, std::fread(text, 1, sizeof text, file.Get())};
}

TEST(FileStdio, OpensAndRefuses) {
    FileStdio file;
    EXPECT_EQ(file.Get(), nullptr);
    file.Close();
    struct Case {
        const char* path;
        const char* mode;
    };
    for (const Case& test :
         {Case{"no such file", "rb"}, Case{"no such folder/file", "wb"}, Case{nullptr, "rb"},
          Case{"refused", nullptr}, Case{"refused", ""}, Case{"refused", "x"}}) {
        ASSERT_NE(file.Open("stdio", "wb"), nullptr);
        EXPECT_EQ(file.Open(test.path, test.mode), nullptr);
        EXPECT_EQ(file.Get(), nullptr);
    }
    EXPECT_EQ(Content("refused"), "(none)");
}

TEST(FileStdio, OpenClosesTheStreamThatItReplaces) {
    FileStdio file;
    ASSERT_NE(file.Open("stdio-first", "wb"), nullptr);
    std::fputs("first", file.Get());
    ASSERT_NE(file.Open("stdio-second", "wb"), nullptr);
    EXPECT_EQ(Content("stdio-first"), "first");
}

TEST(FileStdio, CloseLeavesItsArgumentOpen) {
    FileStdio own;
    FileStdio other;
    ASSERT_NE(own.Open("stdio-own", "wb"), nullptr);
    ASSERT_NE(other.Open("stdio-other", "wb"), nullptr);
    std::fputs("own", own.Get());
    own.Close(other.Get());
    EXPECT_EQ(own.Get(), nullptr);
    EXPECT_EQ(Content("stdio-own"), "own");
    EXPECT_GE(std::fputs("other", other.Get()), 0);
    other.Close(nullptr);
    EXPECT_EQ(Content("stdio-other"), "other");
}

TEST(FileStdio, AStreamIsClosedOnceWhoeverGoesFirst) {
    auto source = std::make_unique<FileStdio>();
    ASSERT_NE(source->Open("stdio-copied", "wb"), nullptr);
    {
        FileStdio copy(*source);
        EXPECT_EQ(copy.Get(), source->Get());
        FileStdio assigned;
        ASSERT_NE(assigned.Open("stdio-replaced", "wb"), nullptr);
        assigned = copy;
        copy.Close();
        EXPECT_EQ(copy.Get(), nullptr);
        *source = assigned;
    }
    EXPECT_GE(std::fputs("written after the copies went", source->Get()), 0);
    FileStdio outlives(*source);
    source.reset();
    EXPECT_EQ(Content("stdio-copied"), "written after the copies went");
}

}  // namespace
}  // namespace velm
