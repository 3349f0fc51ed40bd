#include "velm/core/FileReader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "Pattern.h"
#include "TemporaryFile.h"
#include "velm/core/CoreErrorCode.h"

namespace velm {
namespace {

using test::Pattern;
using test::TemporaryFile;

std::string PatternText(std::size_t size) {
    const auto bytes = Pattern(size);
    return {bytes.begin(), bytes.end()};
}

// The reader's buffer holds 262144 bytes.
TEST(FileReader, DeliversTheSameBytesInPiecesOfAnySize) {
    const std::string content = PatternText(600'000);
    const TemporaryFile file("pieces.bin", content);
    for (const std::size_t piece : {1U, 7U, 4096U, 262'143U, 262'144U, 1'000'000U}) {
        SCOPED_TRACE(piece);
        FileReader reader;
        ASSERT_EQ(reader.Open(file.Name()), 0U);
        std::string read;
        unsigned long long readSize = piece;
        while (readSize == piece) {
            std::string part(piece, '\0');
            const ErrorCode result = reader.Read(&readSize, part.data(), piece);
            ASSERT_EQ(result, readSize == piece ? 0U : VELM_ERROR_CORE_END_OF_DATA);
            read.append(part, 0, readSize);
            // A byte in between, so that the two ways of reading share one position.
            unsigned char byte = 77;
            if (reader.ReadU8(&byte) == 0) {
                read += static_cast<char>(byte);
            }
        }
        EXPECT_TRUE(read == content);
        unsigned char byte = 77;
        EXPECT_EQ(reader.ReadU8(&byte), VELM_ERROR_CORE_END_OF_DATA);
        EXPECT_EQ(reader.Read(nullptr, &byte, 1), VELM_ERROR_CORE_END_OF_DATA);
        EXPECT_EQ(byte, 77);
    }
}

TEST(FileReader, SaysWhyAFileCannotBeRead) {
    std::filesystem::create_directory("a-directory");
    FileReader reader;
    unsigned char byte = 0;
    unsigned long long readSize = 9;
    EXPECT_EQ(reader.Open(nullptr), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(reader.Open(""), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(reader.Open("missing/missing.bin"), VELM_ERROR_CORE_NOT_EXIST);
    EXPECT_EQ(reader.Open("a-directory"), VELM_ERROR_CORE_ACCESS_DENIED);
    EXPECT_EQ(reader.Read(&readSize, &byte, 1), VELM_ERROR_CORE_NOT_INITIALIZED);
    EXPECT_EQ(readSize, 0U);

    const TemporaryFile first(
        "Gr\xC3\xBC\xC3\x9F"
        "e-\xE6\x97\xA5\xE6\x9C\xAC-\xF0\x9F\x8E\xB5.bin",
        "abc");
    ASSERT_EQ(reader.Open(first.Name()), 0U);
    EXPECT_EQ(reader.ReadU8(nullptr), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(reader.Read(&readSize, nullptr, 1), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(reader.Read(&readSize, nullptr, 0), 0U);
    EXPECT_EQ(reader.ReadU8(&byte), 0U);
    EXPECT_EQ(byte, 'a');
    const TemporaryFile second("second.bin", "xyz");
    ASSERT_EQ(reader.Open(second.Name()), 0U);
    EXPECT_EQ(reader.ReadU8(&byte), 0U);
    EXPECT_EQ(byte, 'x') << "and not what was left of the first file";
    reader.Close();
    EXPECT_EQ(reader.ReadU8(&byte), VELM_ERROR_CORE_NOT_INITIALIZED);
}

/// A reader that has no buffer, and two bytes.
struct Unbuffered : IReader {
    ErrorCode Read(unsigned long long* readSize, void* buffer, unsigned long long) override {
        *readSize = left != 0;
        if (left == 0) {
            return VELM_ERROR_CORE_READ_FAILED;
        }
        *static_cast<unsigned char*>(buffer) = left--;
        return 0;
    }
    unsigned char left = 2;
};

TEST(IReader, ReadsSingleBytesThroughTheBlockReadOfAnyReader) {
    Unbuffered reader;
    unsigned char byte = 0;
    ASSERT_EQ(reader.ReadU8(&byte), 0U);
    EXPECT_EQ(byte, 2);
    ASSERT_EQ(reader.ReadU8(&byte), 0U);
    EXPECT_EQ(reader.ReadU8(&byte), VELM_ERROR_CORE_READ_FAILED);
    EXPECT_EQ(byte, 1);
}

}  // namespace
}  // namespace velm
