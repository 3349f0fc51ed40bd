#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "Command.h"
#include "Help.h"
#include "Interruption.h"
#include "Path.h"
#include "PictureInput.h"
#include "PngFile.h"
#include "Progress.h"
#include "Report.h"
#include "velm/YuvToArgb.h"

namespace velmdiag {
namespace {

constexpr int kConversions = 21;
constexpr unsigned int kFramesPerProgress = 100;

struct PictureOptions {
    std::string input;
    std::string output;
    std::string size;
    std::string matrix;
    std::string frame = "0";
    bool json = false;
};

struct Conversion {
    const char* matrix;
    decltype(&velm::Yuv420ToArgb8888_BT601) function;
};

// Not constexpr: for Visual C++ the address of an imported function is not a constant expression.
const Conversion kConversionTable[] = {
    {"601", velm::Yuv420ToArgb8888_BT601},
    {"709", velm::Yuv420ToArgb8888_BT709},
};

void Convert(const Conversion& conversion, Frame& frame, std::vector<unsigned int>& argb) {
    const auto yStride = static_cast<unsigned int>(frame.width);
    const auto uvStride = static_cast<unsigned int>(frame.ChromaWidth());
    conversion.function(frame.Y(), frame.U(), frame.V(), yStride, uvStride, frame.width, frame.height,
                        argb.data(), yStride * 4);
}

/// How long a call takes, in microseconds.
template <class Function>
double TimeOf(Function function) {
    const auto start = std::chrono::steady_clock::now();
    function();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

double MedianOf(std::vector<double> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::ranges::nth_element(times, middle);
    return *middle;
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

const Conversion& ConversionFor(const std::string& matrix) {
    const std::string wanted = matrix.empty() ? "601" : matrix;
    return *std::ranges::find_if(kConversionTable, [&](const Conversion& at) { return at.matrix == wanted; });
}

Report DescribeInput(const PictureOptions& options, const PictureInput& input) {
    Report report;
    report.Add("file", options.input);
    report.Add("format", input.IsY4m() ? "Y4M" : "raw");
    if (const auto count = input.FrameCount()) {
        report.Add("frames", static_cast<long long>(*count));
    } else {
        report.AddUnknown("frames");
    }
    report.Add("width", static_cast<long long>(input.Width()));
    report.Add("height", static_cast<long long>(input.Height()));
    report.Add("range", picojson::value(input.IsFullRange() ? "full" : "limited"),
               input.IsFullRange() ? "full, scaled to limited range before the conversion" : "limited");
    const std::string matrix = std::string("BT.") + ConversionFor(options.matrix).matrix;
    report.Add("matrix", picojson::value(matrix),
               matrix + (options.matrix.empty() ? ", the default: --matrix was not given" : ""));
    report.Add("kernel", velm::GetYuvToArgbKernelName());
    return report;
}

/// Converts one frame and writes it.
/// @return the times of several conversions, in microseconds
std::vector<double> ConvertOne(const PictureOptions& options, unsigned int number, PictureInput& input) {
    const Conversion& conversion = ConversionFor(options.matrix);
    Frame frame;
    Progress progress;
    for (unsigned int i = 0; i <= number; ++i) {
        if (!input.Read(frame)) {
            throw Failure{options.input + ": has " + std::to_string(i) + " frames, so there is no frame " +
                          std::to_string(number)};
        }
        if (i % kFramesPerProgress == kFramesPerProgress - 1) {
            progress.Show("frame " + std::to_string(i));
        }
    }
    std::vector<unsigned int> argb(frame.LumaSize());
    std::vector<double> times(kConversions);
    for (double& time : times) {
        time = TimeOf([&] { Convert(conversion, frame, argb); });
    }
    WritePng(options.output, frame.width, frame.height, RgbOf(argb));
    return times;
}

/// The file name of a frame's picture; the names sort in the order of the frames.
std::string PictureName(const std::string& folder, std::size_t number) {
    std::ostringstream name;
    name << folder << "/frame-" << std::setw(6) << std::setfill('0') << number << ".png";
    return name.str();
}

/// Converts every frame and writes each to a folder.
/// @return the time of each conversion, in microseconds
std::vector<double> ConvertAll(const PictureOptions& options, PictureInput& input) {
    const Conversion& conversion = ConversionFor(options.matrix);
    std::error_code failed;
    std::filesystem::create_directories(PathOf(options.output), failed);
    if (!std::filesystem::is_directory(PathOf(options.output), failed)) {
        throw Failure{options.output +
                      ": is not a folder and cannot be created as one, but --frame all needs a folder"};
    }
    const auto count = input.FrameCount();
    Frame frame;
    std::vector<double> times;
    Progress progress;
    while (input.Read(frame)) {
        std::vector<unsigned int> argb(frame.LumaSize());
        const std::string name = PictureName(options.output, times.size());
        times.push_back(TimeOf([&] { Convert(conversion, frame, argb); }));
        WritePng(name, frame.width, frame.height, RgbOf(argb));
        if (Interruption::Requested()) {
            throw Failure{"interrupted after " + name, Interruption::kExitStatus};
        }
        progress.Show("frame " + std::to_string(times.size()) +
                      (count ? " of " + std::to_string(*count) : ""));
    }
    if (times.empty()) {
        throw Failure{options.input + ": has no frames"};
    }
    return times;
}

int RunPicture(const PictureOptions& options) {
    unsigned int number = 0;
    const bool all = options.frame == "all";
    if (!all && !CLI::detail::lexical_cast(options.frame, number)) {
        throw Failure{"--frame " + options.frame + ": neither the number of a frame nor \"all\"",
                      kWrongUsage};
    }
    if (all && options.output == "-") {
        throw Failure{"--frame all: needs a folder for its pictures, not standard output", kWrongUsage};
    }
    if (options.output != "-") {
        RefuseToOverwriteInput(options.input, options.output);
    }
    PictureInput input(options.input, options.size);
    const std::vector<double> times = all ? ConvertAll(options, input) : ConvertOne(options, number, input);
    Report report = DescribeInput(options, input);
    report.Add("time_per_frame", MedianOf(times), "us", 1);
    if (all) {
        report.Add("pictures", static_cast<long long>(times.size()));
        report.Add("folder", options.output);
    } else {
        report.Add("frame", static_cast<long long>(number));
        report.Add("picture", options.output);
    }
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
    Explain(
        command,
        "Reads planar YUV 4:2:0 with 8 bits, raw (the Y, U and V planes of each frame one after another, "
        "no header) or Y4M, converts a frame into 32-bit pixels, prints the median time of the conversion "
        "and writes the picture. With --frame all, writes a picture of each frame to the folder OUT. "
        "Full-range Y4M is scaled to the limited range that the library converts.",
        "velmdiag picture colour-bars-709.yuv --size 320x180 --matrix 709 --out bars.png");
    command->add_option("IN", options->input, "the raw YUV or Y4M file")->type_name(kFileType)->required();
    command->add_option("--size", options->size,
                        "width and height in pixels, such as 1280x720; required without a Y4M header");
    command
        ->add_option("--out", options->output,
                     "the PNG file, or - for standard output; a folder for all frames")
        ->type_name(kFileType)
        ->required();
    command->add_option("--matrix", options->matrix, "the matrix of ITU-R BT.601 or BT.709; 601 if not given")
        ->check(CLI::IsMember({"601", "709"}));
    command->add_option("--frame", options->frame, "number of the frame, from 0, or all")
        ->capture_default_str();
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunPicture(*options); });
}

}  // namespace velmdiag
