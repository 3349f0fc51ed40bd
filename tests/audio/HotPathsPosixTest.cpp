#include <gtest/gtest.h>

#include <vector>

#include "Allocations.h"
#include "velm/AudioFrame.h"
#include "velm/AudioFrameStream.h"
#include "velm/YuvToArgb.h"

namespace velm {
namespace {

TEST(HotPaths, NothingIsAllocatedForAFrameOrAPicture) {
    std::vector<unsigned char> bytes(64 * 64 * 3 / 2, 128);
    std::vector<unsigned int> pixels(64 * 64);
    unsigned char* const y = bytes.data();
    auto* const frame = reinterpret_cast<short*>(y);
    AudioFrameStream frames(480, 4, 2, 16);
    ASSERT_FALSE(frames.Initialize().IsFailed());
    AudioFrame writer;
    AudioFrame reader;
    ASSERT_FALSE(writer.InitilizeWriter(E_FrameType_Raw0, 0, 960, y).IsFailed());

    const unsigned int before = test::Allocations();
    EXPECT_EQ(frames.PushBackFrame(frame), 0U);
    EXPECT_EQ(frames.PushFrontFrame(frame), 0U);
    EXPECT_EQ(frames.PushAllClearFrame(), 0U);
    EXPECT_EQ(frames.TakeFrontFrame(frame), 0U);
    EXPECT_EQ(frames.TakeBackFrame(frame), 0U);
    EXPECT_EQ(frames.DropAllFrame(), 0U);
    EXPECT_EQ(test::Allocations(), before) << "by the frame ring";
    for (const unsigned int size : {960U, 20U}) {  // of sizes seen before
        EXPECT_EQ(writer.InitilizeWriter(E_FrameType_Opus0, 1, size, y), 0U);
        EXPECT_EQ(reader.InitilizeReader(writer.GetFrameBuffer(), writer.GetFrameBufferSize()), 0U);
        EXPECT_EQ(reader.GetDataBufferSize(), size);
    }
    EXPECT_EQ(test::Allocations(), before) << "by an AudioFrame";
    for (const auto convert : {Yuv420ToArgb8888_BT601, Yuv420ToArgb8888_BT709}) {
        convert(y, y + 64 * 64, y + 64 * 64 * 5 / 4, 64, 32, 64, 64, pixels.data(), 256);
    }
    EXPECT_EQ(test::Allocations(), before) << "by a picture";
}

}  // namespace
}  // namespace velm
