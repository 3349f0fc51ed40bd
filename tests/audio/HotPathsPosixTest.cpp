#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "Allocations.h"
#include "velm/AudioFrame.h"
#include "velm/AudioFrameStream.h"
#include "velm/YuvToArgb.h"

namespace velm {
namespace {

TEST(HotPaths, NothingIsAllocatedForAFrameOrAPicture) {
    std::vector<unsigned char> bytes(1920, 1);
    auto* const frame = reinterpret_cast<short*>(bytes.data());
    AudioStream samples(1000, 2, 16);
    AudioFrameStream frames(480, 4, 2, 16);
    ASSERT_FALSE(frames.Initialize().IsFailed());
    AudioFrame writer;
    AudioFrame reader;
    ASSERT_FALSE(writer.InitilizeWriter(E_FrameType_Raw0, 0, 960, bytes.data()).IsFailed());
    std::vector<unsigned char> planes(64 * 64 * 3 / 2, 128);
    std::vector<unsigned int> pixels(64 * 64);
    const auto convert = [&](const auto& conversion) {
        unsigned char* const y = planes.data();
        conversion(y, y + 64 * 64, y + 64 * 64 * 5 / 4, 64, 32, 64, 64, pixels.data(), 256);
    };
    const struct {
        const char* name;
        std::function<void()> run;
    } paths[] = {
        {"samples, back and front",
         [&] {
             EXPECT_EQ(samples.PushBackSamples(bytes.data(), 480), 0U);
             EXPECT_EQ(samples.PushFrontSamples(bytes.data(), 480), 0U);
             EXPECT_EQ(samples.TakeFrontSamples(480, bytes.data()), 0U);
             EXPECT_EQ(samples.TakeBackSamples(480, bytes.data()), 0U);
         }},
        {"clear samples",
         [&] {
             EXPECT_EQ(samples.PushBackClearSamples(700), 0U);
             EXPECT_EQ(samples.DropFrontSamples(700), 0U);
         }},
        {"frames",
         [&] {
             EXPECT_EQ(frames.PushBackFrame(frame), 0U);
             EXPECT_EQ(frames.PushFrontFrame(frame), 0U);
             EXPECT_EQ(frames.PushAllClearFrame(), 0U);
             EXPECT_EQ(frames.TakeFrontFrame(frame), 0U);
             EXPECT_EQ(frames.DropAllFrame(), 0U);
         }},
        {"an AudioFrame of sizes seen before",
         [&] {
             for (const unsigned int size : {960U, 20U}) {
                 EXPECT_EQ(writer.InitilizeWriter(E_FrameType_Opus0, 1, size, bytes.data()), 0U);
                 EXPECT_EQ(reader.InitilizeReader(writer.GetFrameBuffer(), writer.GetFrameBufferSize()), 0U);
                 EXPECT_EQ(reader.GetDataBufferSize(), size);
             }
         }},
        {"BT.601", [&] { convert(Yuv420ToArgb8888_BT601); }},
        {"BT.709", [&] { convert(Yuv420ToArgb8888_BT709); }},
    };
    for (const auto& path : paths) {
        const unsigned int before = test::Allocations();
        path.run();
        EXPECT_EQ(test::Allocations(), before) << path.name;
    }
}

}  // namespace
}  // namespace velm
