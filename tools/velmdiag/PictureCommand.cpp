#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "Command.h"
#include "Help.h"
#include "Path.h"
#include "PngFile.h"
#include "Report.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/FileReader.h"
#include "velm/YuvToArgb.h"

namespace velmdiag {
namespace {

constexpr int kLargestSide = 16384;
constexpr int kConversions = 21;

struct PictureOptions {
    std::string input;
    std::string output;
    std::string size;
    std::string matrix = "601";
    unsigned int frame = 0;
    bool json = false;
};

struct Conversion {
    const char* matrix;
    decltype(&velm::Yuv420ToArgb8888_BT601) function;
};

// Not constexpr: for Visual C++ the address of an imported function is no constant expression.
const Conversion kConversionTable[] = {
    {"601", velm::Yuv420ToArgb8888_BT601},
    {"709", velm::Yuv420ToArgb8888_BT709},
};

/// A frame of planar 4:2:0 as files hold it: Y, then U, then V, without gaps.
struct Frame {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> bytes;

    int ChromaWidth() const { return (width + 1) / 2; }
    std::size_t LumaSize() const {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
    std::size_t ChromaSize() const {
        return static_cast<std::size_t>(ChromaWidth()) * static_cast<std::size_t>((height + 1) / 2);
    }
    unsigned char* Y() { return bytes.data(); }
    unsigned char* U() { return Y() + LumaSize(); }
    unsigned char* V() { return U() + ChromaSize(); }
};

bool ParseSide(std::string_view text, int& side) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), side);
    return error == std::errc() && end == text.data() + text.size() && side >= 1 && side <= kLargestSide;
}

Frame MakeFrame(const std::string& size) {
    const std::size_t cross = size.find('x');
    Frame frame;
    if (cross == std::string::npos || !ParseSide(std::string_view(size).substr(0, cross), frame.width) ||
        !ParseSide(std::string_view(size).substr(cross + 1), frame.height)) {
        throw Failure{"--size " + size + ": not a width and a height from 1 to " +
                          std::to_string(kLargestSide) + ", such as 1280x720",
                      2};
    }
    frame.bytes.resize(frame.LumaSize() + 2 * frame.ChromaSize());
    return frame;
}

/// Reads frame after frame up to the wanted one.
void ReadFrame(const PictureOptions& options, Frame& frame) {
    velm::FileReader reader;
    CheckFile(options.input, reader.Open(options.input.c_str()));
    for (unsigned int i = 0; i <= options.frame; ++i) {
        unsigned long long size = 0;
        const velm::ErrorCode result = reader.Read(&size, frame.bytes.data(), frame.bytes.size());
        if (result != velm::VELM_ERROR_CORE_END_OF_DATA) {
            CheckFile(options.input, result);
        } else {
            throw Failure{options.input + ": frame " + std::to_string(i) + " has " + std::to_string(size) +
                          " of the " + std::to_string(frame.bytes.size()) + " bytes that " + options.size +
                          " pixels need (" + NameOf(result) + ')'};
        }
    }
}

void Convert(const Conversion& conversion, Frame& frame, std::vector<unsigned int>& argb) {
    const auto yStride = static_cast<unsigned int>(frame.width);
    const auto uvStride = static_cast<unsigned int>(frame.ChromaWidth());
    conversion.function(frame.Y(), frame.U(), frame.V(), yStride, uvStride, frame.width, frame.height,
                        argb.data(), yStride * 4);
}

/// The median time of a call, in microseconds.
template <class Function>
double MedianTime(Function function) {
    std::vector<double> times(kConversions);
    for (double& time : times) {
        const auto start = std::chrono::steady_clock::now();
        function();
        time = std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
    }
    std::ranges::nth_element(times, times.begin() + kConversions / 2);
    return times[kConversions / 2];
}

std::vector<unsigned char> RgbOf(const std::vector<unsigned int>& argb) {
    std::vector<unsigned char> rgb;
    rgb.reserve(argb.size() * 3);
    for (const unsigned int pixel : argb) {
        for (const int shift : {16, 8, 0}) {
            rgb.push_back(static_cast<unsigned char>(pixel >> shift));
        }
    }
    return rgb;
}

int RunPicture(const PictureOptions& options) {
    Frame frame = MakeFrame(options.size);
    const Conversion& conversion = *std::ranges::find_if(
        kConversionTable, [&](const Conversion& at) { return at.matrix == options.matrix; });
    if (options.output != "-") {
        RefuseToOverwriteInput(options.input, options.output);
    }
    ReadFrame(options, frame);

    std::vector<unsigned int> argb(frame.LumaSize());
    const double time = MedianTime([&] { Convert(conversion, frame, argb); });
    WritePng(options.output, frame.width, frame.height, RgbOf(argb));

    Report report;
    report.Add("file", options.input);
    report.Add("frame", static_cast<long long>(options.frame));
    report.Add("width", static_cast<long long>(frame.width));
    report.Add("height", static_cast<long long>(frame.height));
    report.Add("matrix", std::string("BT.") + conversion.matrix);
    report.Add("kernel", velm::GetYuvToArgbKernelName());
    report.Add("time_per_frame", time, "us", 1);
    report.Add("picture", options.output);
    if (options.output == "-") {
        report.Print(options.json, std::cerr);
    } else {
        report.Print(options.json);
    }
    return 0;
}

}  // namespace

void AddPictureCommand(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<PictureOptions>();
    CLI::App* const command = app.add_subcommand("picture", "Converts a YUV picture into a PNG file");
    Explain(command,
            "Reads a frame of planar YUV 4:2:0 in limited range (the Y, U and V planes one after "
            "another, no header), converts it into 32-bit pixels, prints the median time that takes "
            "and writes the picture.",
            "velmdiag picture colour-bars-709.yuv --size 320x180 --matrix 709 --out bars.png");
    command->add_option("IN", options->input, "the YUV file")->required();
    command->add_option("--size", options->size, "width and height in pixels, such as 1280x720")->required();
    command->add_option("--out", options->output, "the PNG file, or - for standard output")->required();
    command->add_option("--matrix", options->matrix, "the matrix of ITU-R BT.601 or BT.709")
        ->check(CLI::IsMember({"601", "709"}))
        ->capture_default_str();
    command->add_option("--frame", options->frame, "number of the frame, from 0")->capture_default_str();
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunPicture(*options); });
}

}  // namespace velmdiag
