#include "velm/AudioFrame.h"

#include <gtest/gtest.h>

#include <tuple>

#include "Random.h"

namespace velm::audio_frame_test {

using Bytes = std::vector<unsigned char>;

/// Expects a frame of these bytes, or no frame if there are none.
void ExpectFrame(AudioFrame& frame, const Bytes& bytes) {
    const bool held = !bytes.empty();
    ASSERT_EQ(frame.GetFrameBufferSize(), bytes.size());
    EXPECT_EQ(frame.GetFrameBuffer() != nullptr, held);
    EXPECT_EQ(Bytes(frame.GetFrameBuffer(), frame.GetFrameBuffer() + bytes.size()), bytes);
    EXPECT_EQ(frame.GetDataBuffer(), held ? frame.GetFrameBuffer() + 6 : nullptr);
    EXPECT_EQ(frame.GetDataBufferSize(), held ? bytes[4] + 256U * bytes[5] : 0);
    EXPECT_EQ(frame.GetCounter(), held ? bytes[2] + 256 * bytes[3] : 0);
    EXPECT_EQ(frame.GetFrameType(), held ? bytes[1] : -1);
    EXPECT_EQ(frame.IsRawCodec(), held && bytes[1] < 2);
    EXPECT_EQ(frame.IsOpusCodec(), held && bytes[1] >= 2);
}

// Writer and reader swap objects, so each starts with the state that the other role left.
TEST(AudioFrame, CarriesEveryTypeFromWriterToReader) {
    Bytes data = test::RandomBytes(300);
    AudioFrame frames[2];
    for (unsigned char type = 0; type < 4; ++type) {
        SCOPED_TRACE(int{type});
        AudioFrame& writer = frames[type & 1];
        AudioFrame& reader = frames[~type & 1];
        Bytes expected = {6, type, 0x34, 0x12, 0x2C, 0x01};
        expected.insert(expected.end(), data.begin(), data.end());
        ASSERT_EQ(writer.InitilizeWriter(static_cast<E_FrameType>(type), 0x1234, 300, data.data()), 0U);
        ExpectFrame(writer, expected);
        ASSERT_EQ(reader.InitilizeReader(expected.data(), writer.GetFrameBufferSize()), 0U);
        ExpectFrame(reader, expected);
        EXPECT_EQ(reader.GetFrameBuffer(), expected.data());
    }
}

TEST(AudioFrame, ReaderRejectsInvalidHeaders) {
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
        ExpectFrame(frame, code == 0 ? bytes : Bytes());
        if (code != 0) {
            continue;
        }
        // The getters check again, because the caller may have changed the bytes.
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

TEST(AudioFrame, WriterAcceptsAnySizeThatFits) {
    Bytes data = test::RandomBytes(70'000);
    AudioFrame frame;
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 3, 0, nullptr), 0U);
    EXPECT_EQ(frame.GetFrameBufferSize(), 6U);
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 4, 70'000, data.data()), 0U);
    EXPECT_EQ(frame.GetFrameBufferSize(), 70'006U);
    EXPECT_EQ(frame.GetDataBufferSize(), 70'000U % 65536U);
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 5, 70'006, frame.GetFrameBuffer()), 0U);
    EXPECT_EQ(frame.GetDataBuffer()[2], 4) << "wrong when its own frame is the data";
    unsigned char* const buffer = frame.GetFrameBuffer();
    ASSERT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 5, 70'006, frame.GetFrameBuffer()), 0U);
    EXPECT_EQ(frame.GetFrameBuffer(), buffer) << "reallocated although it fits";
    const std::tuple<int, unsigned int, unsigned char*> invalid[] = {
        {0, 1, nullptr}, {0, 0xFFFFFFFA, data.data()}, {-1, 9, data.data()}, {4, 9, data.data()}};
    for (const auto& [type, size, bytes] : invalid) {
        SCOPED_TRACE(testing::Message() << type << ", " << size);
        EXPECT_EQ(frame.InitilizeWriter(static_cast<E_FrameType>(type), 6, size, bytes),
                  VELM_ERROR_UTIL_INVALID_PARAM);
        ExpectFrame(frame, {});
    }
}

}  // namespace velm::audio_frame_test
