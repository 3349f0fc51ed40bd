#include "velm/AudioFrame.h"

#include <gtest/gtest.h>

#include <vector>

#include "Pattern.h"

namespace velm {
namespace {

using Bytes = std::vector<unsigned char>;

void ExpectNoFrame(AudioFrame& frame) {
    EXPECT_EQ(frame.GetFrameBuffer(), nullptr);
    EXPECT_EQ(frame.GetFrameBufferSize(), 0U);
    EXPECT_EQ(frame.GetDataBuffer(), nullptr);
    EXPECT_EQ(frame.GetDataBufferSize(), 0U);
    EXPECT_EQ(frame.GetCounter(), 0);
    EXPECT_EQ(frame.GetFrameType(), -1);
    EXPECT_FALSE(frame.IsRawCodec());
    EXPECT_FALSE(frame.IsOpusCodec());
}

TEST(AudioFrame, WritesTheHeaderByteForByte) {
    Bytes data = {0xAA, 0xBB, 0xCC};
    AudioFrame frame;
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw1, 0x1234, 3, data.data()), 0U);
    ASSERT_EQ(frame.GetFrameBufferSize(), 9U);
    EXPECT_EQ(Bytes(frame.GetFrameBuffer(), frame.GetFrameBuffer() + 9),
              (Bytes{0x06, 0x01, 0x34, 0x12, 0x03, 0x00, 0xAA, 0xBB, 0xCC}));
}

TEST(AudioFrame, EveryTypeTravelsFromWriterToReader) {
    for (int type = -1; type <= 5; ++type) {
        Bytes data = test::Pattern(300);
        AudioFrame writer;
        const ErrorCode result =
            writer.InitilizeWriter(static_cast<E_FrameType>(type), 0xFFFF, 300, data.data());
        if (type < 0 || type > 3) {
            EXPECT_EQ(result, VELM_ERROR_UTIL_INVALID_PARAM);
            ExpectNoFrame(writer);
            continue;
        }
        ASSERT_EQ(result, 0U);
        AudioFrame reader;
        ASSERT_EQ(reader.InitilizeReader(writer.GetFrameBuffer(), writer.GetFrameBufferSize()), 0U);
        EXPECT_EQ(reader.GetFrameType(), type);
        EXPECT_EQ(reader.IsRawCodec(), type < 2);
        EXPECT_EQ(reader.IsOpusCodec(), type >= 2);
        EXPECT_EQ(reader.GetCounter(), 0xFFFF);
        ASSERT_EQ(reader.GetDataBufferSize(), 300U);
        EXPECT_EQ(Bytes(reader.GetDataBuffer(), reader.GetDataBuffer() + 300), data);
    }
}

TEST(AudioFrame, ReaderChecksEveryByteOfTheHeader) {
    struct Case {
        const char* what;
        Bytes frame;
        unsigned int code;
    };
    const Case cases[] = {
        {"smallest", {6, 2, 0, 0, 1, 0, 9}, 0},
        {"bytes to spare", {6, 0, 0, 0, 1, 0, 9, 9, 9}, 0},
        {"header size 5", {5, 2, 0, 0, 1, 0, 9}, VELM_ERROR_UTIL_UNKNOWN},
        {"header size 7", {7, 2, 0, 0, 1, 0, 9, 9}, VELM_ERROR_UTIL_UNKNOWN},
        {"type 4", {6, 4, 0, 0, 1, 0, 9}, VELM_ERROR_UTIL_UNKNOWN},
        {"type 255", {6, 255, 0, 0, 1, 0, 9}, VELM_ERROR_UTIL_UNKNOWN},
        {"no payload", {6, 2, 0, 0, 0, 0, 9}, VELM_ERROR_UTIL_UNKNOWN},
        {"payload one too long", {6, 2, 0, 0, 2, 0, 9}, VELM_ERROR_UTIL_UNKNOWN},
        {"payload 256 bytes too long", {6, 2, 0, 0, 1, 1, 9}, VELM_ERROR_UTIL_UNKNOWN},
        {"payload 65535", {6, 2, 0, 0, 255, 255, 9}, VELM_ERROR_UTIL_UNKNOWN},
        {"header alone", {6, 2, 0, 0, 1, 0}, VELM_ERROR_UTIL_INVALID_PARAM},
        {"cut header", {6, 2, 0}, VELM_ERROR_UTIL_INVALID_PARAM},
        {"nothing", {}, VELM_ERROR_UTIL_INVALID_PARAM},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Bytes bytes = c.frame;
        AudioFrame frame;
        EXPECT_EQ(frame.InitilizeReader(bytes.data(), static_cast<unsigned int>(bytes.size())), c.code);
        if (c.code != 0) {
            ExpectNoFrame(frame);
            continue;
        }
        EXPECT_EQ(frame.GetFrameBuffer(), bytes.data());
        EXPECT_EQ(frame.GetFrameBufferSize(), bytes.size());
        EXPECT_EQ(frame.GetDataBuffer(), bytes.data() + 6);
        EXPECT_EQ(frame.GetDataBufferSize(), 1U);
    }
    AudioFrame frame;
    EXPECT_EQ(frame.InitilizeReader(nullptr, 100), VELM_ERROR_UTIL_INVALID_PARAM);
}

TEST(AudioFrame, GettersDoNotTrustAHeaderThatChangesUnderThem) {
    Bytes bytes = {6, 0, 0, 0, 1, 0, 9};
    AudioFrame frame;
    ASSERT_EQ(frame.InitilizeReader(bytes.data(), 7), 0U);
    bytes[4] = 2;
    EXPECT_EQ(frame.GetDataBufferSize(), 0U);
    bytes[1] = 9;
    EXPECT_EQ(frame.GetFrameType(), -1);
    bytes[0] = 0;
    EXPECT_EQ(frame.GetDataBuffer(), nullptr);
}

TEST(AudioFrame, WriterTakesSizesOfEveryKind) {
    Bytes data = test::Pattern(70'000);
    AudioFrame frame;
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 1, 1000, data.data()), 0U);
    const unsigned char* const block = frame.GetFrameBuffer();
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 2, 999, data.data()), 0U);
    EXPECT_EQ(frame.GetFrameBuffer(), block) << "a block that is large enough is kept";

    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 3, 0, nullptr), 0U);
    EXPECT_EQ(frame.GetFrameBufferSize(), 6U);
    EXPECT_EQ(frame.GetDataBufferSize(), 0U);

    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 4, 70'000, data.data()), 0U);
    EXPECT_EQ(frame.GetFrameBufferSize(), 70'006U);
    EXPECT_EQ(frame.GetDataBufferSize(), 70'000U % 65536U);

    EXPECT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 5, 1, nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    ExpectNoFrame(frame);
    for (const unsigned int size : {0xFFFFFFFAU, 0xFFFFFFFFU}) {
        EXPECT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 6, size, data.data()),
                  VELM_ERROR_UTIL_INVALID_PARAM);
        ExpectNoFrame(frame);
    }
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 7, 3, data.data()), 0U);
    EXPECT_EQ(frame.GetCounter(), 7);
}

TEST(AudioFrame, AReaderOverItsOwnWrittenFrameReleasesTheBlock) {
    Bytes data = {1};
    Bytes other = {6, 3, 0, 0, 1, 0, 9};
    AudioFrame frame;
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 1, 1, data.data()), 0U);
    ASSERT_EQ(frame.InitilizeReader(other.data(), 7), 0U);
    EXPECT_TRUE(frame.IsOpusCodec());
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 1, 1, data.data()), 0U);
    EXPECT_EQ(frame.GetDataBuffer()[0], 1);
}

}  // namespace
}  // namespace velm
