#include "velm/core/FileReader.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "Random.h"
#include "TemporaryFile.h"
#include "velm/core/CoreErrorCode.h"

namespace velm::file_reader_test {

using test::TemporaryFile;

// The reader's buffer holds 262144 bytes.
TEST(FileReader, ReadsTheSameBytesInPiecesOfAnySize) {
    const auto pattern = test::RandomBytes(600'000);
    const std::string content(pattern.begin(), pattern.end());
    const TemporaryFile file("pieces.bin", content);
    for (const std::size_t piece : {7U, 262'143U, 262'144U, 1'000'000U}) {
        SCOPED_TRACE(piece);
        FileReader reader;
        ASSERT_EQ(reader.Open(file.Name()), 0U);
        std::string read;
        unsigned char byte = 77;
        unsigned long long readSize = piece;
        while (readSize == piece) {
            std::string part(piece, '\0');
            const ErrorCode result = reader.Read(&readSize, part.data(), piece);
            ASSERT_EQ(result, readSize == piece ? 0U : VELM_ERROR_CORE_END_OF_DATA);
            read.append(part, 0, readSize);
            // A single byte in between: Read and ReadU8 share one position.
            if (reader.ReadU8(&byte) == 0) {
                read += static_cast<char>(byte);
            }
        }
        EXPECT_TRUE(read == content);
        byte = 77;
        EXPECT_EQ(reader.ReadU8(&byte), VELM_ERROR_CORE_END_OF_DATA);
        EXPECT_EQ(reader.Read(nullptr, &byte, 1), VELM_ERROR_CORE_END_OF_DATA);
        EXPECT_EQ(byte, 77);
    }
}

TEST(FileReader, ReportsWhyReadingFails) {
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

    const TemporaryFile first("Gr\xC3\xBC\xC3\x9F-\xE6\x97\xA5-\xF0\x9F\x8E\xB5.bin", "abc");
    ASSERT_EQ(reader.Open(first.Name()), 0U);
    EXPECT_EQ(reader.ReadU8(nullptr), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(reader.Read(&readSize, nullptr, 1), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(reader.Read(&readSize, nullptr, 0), 0U);
    EXPECT_EQ(reader.ReadU8(&byte), 0U);
    EXPECT_EQ(byte, 'a');
    const TemporaryFile second("second.bin", "xyz");
    ASSERT_EQ(reader.Open(second.Name()), 0U);
    EXPECT_EQ(reader.ReadU8(&byte), 0U);
    EXPECT_EQ(byte, 'x') << "a byte of the first file";
    reader.Skip(1);
    EXPECT_EQ(reader.ReadU8(&byte), 0U);
    EXPECT_EQ(byte, 'z');
    reader.Close();
    EXPECT_EQ(reader.ReadU8(&byte), VELM_ERROR_CORE_NOT_INITIALIZED);
}

}  // namespace velm::file_reader_test
