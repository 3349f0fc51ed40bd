#include "PngFile.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

#include <fstream>

#include "Command.h"
#include "Path.h"

namespace velmdiag {

void WritePng(const std::string& path, int width, int height, const std::vector<unsigned char>& rgb) {
    constexpr int kBytesPerPixel = 3;
    std::ofstream file(PathOf(path), std::ios::binary);
    const auto write = [](void* context, void* data, int size) {
        static_cast<std::ofstream*>(context)->write(static_cast<const char*>(data), size);
    };
    const bool encoded = file.is_open() && stbi_write_png_to_func(write, &file, width, height, kBytesPerPixel,
                                                                  rgb.data(), width * kBytesPerPixel) != 0;
    file.close();
    if (!encoded || file.fail()) {
        throw Failure{path + ": cannot be written"};
    }
}

}  // namespace velmdiag
