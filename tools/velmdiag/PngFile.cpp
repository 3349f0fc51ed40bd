#include "PngFile.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

#include "Command.h"
#include "OutputFile.h"

namespace velmdiag {

void WritePng(const std::string& path, int width, int height, const std::vector<unsigned char>& rgb) {
    constexpr int kBytesPerPixel = 3;
    std::string encoded;
    const auto append = [](void* context, void* data, int size) {
        static_cast<std::string*>(context)->append(static_cast<const char*>(data),
                                                   static_cast<std::size_t>(size));
    };
    if (stbi_write_png_to_func(append, &encoded, width, height, kBytesPerPixel, rgb.data(),
                               width * kBytesPerPixel) == 0) {
        throw Failure{path + ": the picture cannot be encoded: memory ran out"};
    }
    OutputFile file(path);
    file.Write(encoded.data(), encoded.size());
    file.Commit();
}

}  // namespace velmdiag
