// Pictures of any geometry through every kernel that this processor can run: each kernel produces the same
// pixels as the scalar one and touches no byte before, after or between the rows.
#include "Fuzz.h"
#include "GuardedPicture.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::uint8_t* const end = data + size;
    const auto next = [&]() -> std::size_t { return data != end ? *data++ : 0; };  // zeros after the input
    const std::size_t width = next();
    const std::size_t height = next() % 8;
    const std::size_t yStride = 2 * next();
    const std::size_t uvStride = next();
    const std::size_t argbStride = 4 * width + next() / 4 * 4;
    const auto guard = next() % 2 != 0 ? velm::test::Guard::kBefore : velm::test::Guard::kAfter;
    velm::test::GuardedPicture picture({width, height, yStride, uvStride, argbStride, guard}, next);
    for (const velm::yuv::Kernel& kernel : velm::test::RunnableKernels()) {
        VELM_FUZZ_DEMAND(picture.FirstWrongRow(kernel, velm::yuv::kBt709).empty());
    }
    return 0;
}
