#include "velm/AudioFrame.h"

#include <gtest/gtest.h>

#include <tuple>
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
}

// Two frames take turns, so that each has been the other before.
TEST(AudioFrame, EveryTypeTravelsFromWriterToReader) {
    Bytes data = test::Pattern(300);
    AudioFrame frames[2];
    for (int type = 0; type < 4; ++type) {
        SCOPED_TRACE(type);
        AudioFrame& writer = frames[type & 1];
        AudioFrame& reader = frames[~type & 1];
        ASSERT_EQ(writer.InitilizeWriter(static_cast<E_FrameType>(type), 0x1234, 300, data.data()), 0U);
        Bytes expected = {6, static_cast<unsigned char>(type), 0x34, 0x12, 0x2C, 0x01};
        expected.insert(expected.end(), data.begin(), data.end());
        ASSERT_EQ(writer.GetFrameBufferSize(), expected.size());
        EXPECT_EQ(Bytes(writer.GetFrameBuffer(), writer.GetFrameBuffer() + expected.size()), expected);
        ASSERT_EQ(reader.InitilizeReader(expected.data(), writer.GetFrameBufferSize()), 0U);
        EXPECT_EQ(reader.GetFrameType(), type);
        EXPECT_EQ(reader.IsRawCodec(), type < 2);
        EXPECT_EQ(reader.IsOpusCodec(), type >= 2);
        EXPECT_EQ(reader.GetCounter(), 0x1234);
        EXPECT_EQ(reader.GetDataBuffer(), expected.data() + 6);
        EXPECT_EQ(reader.GetDataBufferSize(), 300U);
    }
}

TEST(AudioFrame, ReaderChecksEveryByteOfTheHeader) {
    const std::tuple<const char*, Bytes, unsigned int> cases[] = {
        {"bytes to spare", {6, 0, 0, 0, 1, 0, 9, 9, 9}, 0},
        {"header alone", {6, 2, 0, 0, 1, 0}, VELM_ERROR_UTIL_INVALID_PARAM},
        {"header size 7", {7, 2, 0, 0, 1, 0, 9, 9}, VELM_ERROR_UTIL_UNKNOWN},
        {"type 4", {6, 4, 0, 0, 1, 0, 9}, VELM_ERROR_UTIL_UNKNOWN},
        {"no payload", {6, 2, 0, 0, 0, 0, 9}, VELM_ERROR_UTIL_UNKNOWN},
        {"payload one too long", {6, 2, 0, 0, 2, 0, 9}, VELM_ERROR_UTIL_UNKNOWN},
        {"smallest", {6, 2, 0, 0, 1, 0, 9}, 0},
    };
    AudioFrame frame;
    for (const auto& [what, header, code] : cases) {
        SCOPED_TRACE(what);
        Bytes bytes = header;
        EXPECT_EQ(frame.InitilizeReader(bytes.data(), static_cast<unsigned int>(bytes.size())), code);
        if (code != 0) {
            ExpectNoFrame(frame);
            continue;
        }
        EXPECT_EQ(frame.GetFrameBuffer(), bytes.data());
        EXPECT_EQ(frame.GetFrameBufferSize(), bytes.size());
        // The getters trust no header that changes under them.
        bytes[4] = static_cast<unsigned char>(bytes.size() - 5);
        EXPECT_EQ(frame.GetDataBufferSize(), 0U);
        bytes[1] = 9;
        EXPECT_EQ(frame.GetFrameType(), -1);
        bytes[0] = 0;
        bytes[4] = static_cast<unsigned char>(bytes.size());
        EXPECT_EQ(frame.GetDataBufferSize(), bytes.size()) << "counted from byte 0";
        EXPECT_EQ(frame.GetDataBuffer(), nullptr);
    }
    EXPECT_EQ(frame.InitilizeReader(nullptr, 100), VELM_ERROR_UTIL_INVALID_PARAM);
}

TEST(AudioFrame, WriterTakesSizesOfEveryKind) {
    Bytes data = test::Pattern(70'000);
    AudioFrame frame;
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 3, 0, nullptr), 0U);
    EXPECT_EQ(frame.GetFrameBufferSize(), 6U);
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 4, 70'000, data.data()), 0U);
    EXPECT_EQ(frame.GetFrameBufferSize(), 70'006U);
    EXPECT_EQ(frame.GetDataBufferSize(), 70'000U % 65536U);
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 5, 70'006, frame.GetFrameBuffer()), 0U);
    EXPECT_EQ(frame.GetDataBuffer()[2], 4) << "its own frame, wrapped once more";
    unsigned char* const buffer = frame.GetFrameBuffer();
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 5, 70'006, frame.GetFrameBuffer()), 0U);
    EXPECT_EQ(frame.GetFrameBuffer(), buffer) << "allocated although it fits";
    const std::tuple<int, unsigned int, unsigned char*> refused[] = {
        {0, 1, nullptr}, {0, 0xFFFFFFFA, data.data()}, {-1, 9, data.data()}, {4, 9, data.data()}};
    for (const auto& [type, size, bytes] : refused) {
        EXPECT_EQ(frame.InitilizeWriter(static_cast<E_FrameType>(type), 6, size, bytes),
                  VELM_ERROR_UTIL_INVALID_PARAM)
            << type << ", " << size;
        ExpectNoFrame(frame);
    }
}

}  // namespace
}  // namespace velm
