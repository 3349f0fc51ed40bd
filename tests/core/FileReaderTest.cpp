#include "velm/core/FileReader.h"

#include <gtest/gtest.h>

#include <algorithm>
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

TEST(FileReader, DeliversTheSameBytesInPiecesOfAnySize) {
    const std::string content = PatternText(300'000);
    const TemporaryFile file("pieces.bin", content);
    for (const std::size_t piece :
         {std::size_t{1}, std::size_t{2}, std::size_t{7}, std::size_t{4096}, std::size_t{65535},
          std::size_t{65536}, std::size_t{65537}, std::size_t{200'000}, std::size_t{300'000}}) {
        FileReader reader;
        ASSERT_EQ(reader.Open(file.Name()), 0U);
        std::string read;
        while (read.size() < content.size()) {
            std::string part(std::min(piece, content.size() - read.size()), '\0');
            unsigned long long readSize = 0;
            ASSERT_EQ(reader.Read(&readSize, part.data(), part.size()), 0U);
            ASSERT_EQ(readSize, part.size());
            read += part;
            // A byte in between, so that the two ways of reading share one position.
            unsigned char byte = 0;
            if (read.size() < content.size()) {
                ASSERT_EQ(reader.ReadU8(&byte), 0U);
                read += static_cast<char>(byte);
            }
        }
        EXPECT_TRUE(read == content) << "pieces of " << piece;
        unsigned char byte = 77;
        EXPECT_EQ(reader.ReadU8(&byte), VELM_ERROR_CORE_END_OF_DATA);
        EXPECT_EQ(byte, 77);
    }
}

TEST(FileReader, AShortReadFailsAndSaysHowMuchItGot) {
    const TemporaryFile file("short.bin", PatternText(100));
    for (const std::size_t wanted : {std::size_t{101}, std::size_t{65536}, std::size_t{1'000'000}}) {
        FileReader reader;
        ASSERT_EQ(reader.Open(file.Name()), 0U);
        std::string buffer(wanted, '\0');
        unsigned long long readSize = 0;
        EXPECT_EQ(reader.Read(&readSize, buffer.data(), wanted), VELM_ERROR_CORE_END_OF_DATA);
        EXPECT_EQ(readSize, 100U);
        EXPECT_EQ(buffer.substr(0, 100), PatternText(100));
        EXPECT_EQ(reader.Read(nullptr, buffer.data(), 1), VELM_ERROR_CORE_END_OF_DATA);
    }
}

TEST(FileReader, SaysWhyAFileCannotBeRead) {
    std::filesystem::create_directory("a-directory");
    FileReader reader;
    unsigned char byte = 0;
    unsigned long long readSize = 9;
    EXPECT_EQ(reader.Open(nullptr), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(reader.Open(""), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(reader.Open("missing.bin"), VELM_ERROR_CORE_NOT_EXIST);
    EXPECT_EQ(reader.Open("missing/missing.bin"), VELM_ERROR_CORE_NOT_EXIST);
    EXPECT_EQ(reader.Open("a-directory"), VELM_ERROR_CORE_ACCESS_DENIED);
    EXPECT_EQ(reader.ReadU8(&byte), VELM_ERROR_CORE_NOT_INITIALIZED);
    EXPECT_EQ(reader.Read(&readSize, &byte, 1), VELM_ERROR_CORE_NOT_INITIALIZED);
    EXPECT_EQ(readSize, 0U);

    const TemporaryFile file("null.bin", "abc");
    ASSERT_EQ(reader.Open(file.Name()), 0U);
    EXPECT_EQ(reader.ReadU8(nullptr), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(reader.Read(&readSize, nullptr, 1), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(reader.Read(&readSize, nullptr, 0), 0U);
    EXPECT_EQ(reader.ReadU8(&byte), 0U);
    EXPECT_EQ(byte, 'a');
    reader.Close();
    EXPECT_EQ(reader.ReadU8(&byte), VELM_ERROR_CORE_NOT_INITIALIZED);
}

TEST(FileReader, OpensUtf8PathsAndStartsAnewWithTheNextFile) {
    const TemporaryFile first(
        "Gr\xC3\xBC\xC3\x9F"
        "e-\xE6\x97\xA5\xE6\x9C\xAC-\xF0\x9F\x8E\xB5.bin",
        "abc");
    const TemporaryFile second("second.bin", "xyz");
    FileReader reader;
    unsigned char byte = 0;
    ASSERT_EQ(reader.Open(first.Name()), 0U);
    ASSERT_EQ(reader.ReadU8(&byte), 0U);
    EXPECT_EQ(byte, 'a');
    ASSERT_EQ(reader.Open(second.Name()), 0U);
    ASSERT_EQ(reader.ReadU8(&byte), 0U);
    EXPECT_EQ(byte, 'x');
}

/// A reader that has no buffer and gives at most so many bytes.
class Unbuffered : public IReader {
public:
    explicit Unbuffered(unsigned int size) : m_left(size) {}
    ErrorCode Read(unsigned long long* readSize, void* buffer, unsigned long long size) override {
        *readSize = std::min<unsigned long long>(m_left, size);
        std::fill_n(static_cast<unsigned char*>(buffer), *readSize, static_cast<unsigned char>(m_left));
        m_left -= static_cast<unsigned int>(*readSize);
        return *readSize == size ? 0 : VELM_ERROR_CORE_READ_FAILED;
    }

private:
    unsigned int m_left;
};

TEST(IReader, ReadsSingleBytesThroughTheBlockReadOfAnyReader) {
    Unbuffered reader(2);
    unsigned char byte = 0;
    ASSERT_EQ(reader.ReadU8(&byte), 0U);
    EXPECT_EQ(byte, 2);
    ASSERT_EQ(reader.ReadU8(&byte), 0U);
    EXPECT_EQ(byte, 1);
    EXPECT_EQ(reader.ReadU8(&byte), VELM_ERROR_CORE_READ_FAILED);
    EXPECT_EQ(byte, 1);
}

}  // namespace
}  // namespace velm
