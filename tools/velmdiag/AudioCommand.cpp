#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <memory>
#include <numeric>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "Command.h"
#include "Help.h"
#include "Interruption.h"
#include "Path.h"
#include "Progress.h"
#include "Report.h"
#include "velm/AudioFrame.h"
#include "velm/AudioFrameStream.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/Thread.h"
#include "velm/core/Tick.h"
#include "velm/WaveFileReadHelper.h"
#include "WaveInput.h"
#include "WaveWriter.h"

namespace velmdiag {
namespace {

constexpr unsigned int kHeaderSize = 6;
constexpr unsigned int kLargestPayload = 65535;
// The frame type distinguishes sample data from the frame that ends the stream.
constexpr velm::E_FrameType kData = velm::E_FrameType_Raw0;
constexpr velm::E_FrameType kEnd = velm::E_FrameType_Raw1;

struct AudioOptions {
    std::string input;
    std::string output;
    unsigned int blockMilliseconds = 10;
    unsigned int frames = 8;
    bool info = false;
    bool json = false;
};

/// A 64-bit FNV-1a hash.
class Checksum {
public:
    void Add(const unsigned char* data, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) {
            m_hash = (m_hash ^ data[i]) * 0x100000001B3ULL;
        }
    }
    std::string Text() const {
        std::ostringstream text;
        text << std::hex << std::setw(16) << std::setfill('0') << m_hash;
        return text.str();
    }

private:
    std::uint64_t m_hash = 0xCBF29CE484222325ULL;
};

struct Block {
    unsigned int milliseconds = 0;
    unsigned int size = 0;  // in bytes
};

/// The block that the reader delivers for a play time, in its 32-bit arithmetic; none if it rejects the time.
std::optional<Block> BlockOf(const WaveFormat& format, unsigned int milliseconds) {
    const std::uint32_t product = format.samplesPerSecond * milliseconds;
    const std::uint32_t size = static_cast<std::uint32_t>(format.channels) * product / 1000;
    if (product % 1000 != 0 || size == 0) {
        return std::nullopt;
    }
    return Block{milliseconds, size};
}

/// The block for the play time closest to `wanted` that the reader accepts. If it accepts none, the one for
/// `wanted`, for which the reader returns the error.
Block PickBlock(const WaveFormat& format, unsigned int wanted) {
    constexpr unsigned int kMaxTries = 100;
    const unsigned int step = 1000 / std::gcd(format.samplesPerSecond, 1000U);
    const unsigned int nearest = std::max(1U, (wanted + step / 2) / step);
    for (unsigned int i = 0; i < kMaxTries; ++i) {
        for (const unsigned int multiple : {nearest + i, nearest > i ? nearest - i : nearest}) {
            if (const auto block = BlockOf(format, multiple * step)) {
                return *block;
            }
        }
    }
    return {wanted, 1};
}

double Seconds(velm::Tick from, velm::Tick to) {
    return static_cast<double>(to.GetCount() - from.GetCount()) /
           static_cast<double>(velm::Tick::GetFrequency());
}

/// Passes a recording from a file through the ring to a consumer.
class Transfer {
public:
    Transfer(const AudioOptions& options, WaveInput& input)
        : m_options(options),
          m_input(input),
          m_block(PickBlock(input.Format(), options.blockMilliseconds)),
          m_payloadSize(std::min(m_block.size, kLargestPayload)),
          m_frameSampleSize((kHeaderSize + m_payloadSize + 1) / 2),
          m_stream(m_frameSampleSize, options.frames, 1, 16) {}

    /// Runs both threads to completion. Throws Failure if either fails; there is no output then.
    void Run() {
        Check(m_wave.Initialize(&m_input));
        Check(m_stream.Initialize());
        if (!m_options.output.empty()) {
            m_writer.emplace(m_options.output, m_input.Format());
        }
        const velm::Tick start = velm::Tick::Get();
        velm::Thread producer;
        velm::Thread consumer;
        Launch(consumer, "consumer", [](void* self) { return static_cast<Transfer*>(self)->Consume(); });
        Launch(producer, "producer", [](void* self) { return static_cast<Transfer*>(self)->Produce(); });
        WaitForConsumer();
        Check(producer.Join(nullptr));
        Check(consumer.Join(nullptr));
        m_elapsed = Seconds(start, velm::Tick::Get());
        if (!m_consumerFailure.empty()) {
            throw Failure{m_consumerFailure};
        }
        CheckEnd();
        if (m_writer && SumsAreEqual()) {
            m_writer->Finish();
        }
    }

    /// How much of the data that the header announces is missing from the file, in bytes.
    std::uint64_t MissingBytes() const {
        const WaveFormat& format = m_input.Format();
        const bool mayEnd = format.sizeIsOpen && m_endOfReading == velm::VELM_ERROR_CORE_END_OF_DATA;
        return mayEnd ? 0 : format.dataSize - std::min<std::uint64_t>(format.dataSize, m_taken.load());
    }

    bool SumsAreEqual() const { return m_sumRead.Text() == m_sumTaken.Text(); }
    double Elapsed() const { return m_elapsed; }
    const Block& ChosenBlock() const { return m_block; }
    std::uint64_t Blocks() const { return m_blocks; }
    std::uint64_t Frames() const { return m_frames; }
    std::uint64_t BytesTaken() const { return m_taken.load(); }
    velm::ErrorCode EndOfReading() const { return m_endOfReading; }
    const Checksum& SumRead() const { return m_sumRead; }
    const Checksum& SumTaken() const { return m_sumTaken; }

private:
    void Check(velm::ErrorCode result) const { CheckFile(m_options.input, result); }

    /// Rejects a file that delivered none of its data. A truncated file is used up to its end.
    void CheckEnd() const {
        if (m_taken.load() == 0 && MissingBytes() != 0) {
            throw Failure{m_options.input +
                          ": none of its sample data could be read: " + Describe(m_endOfReading)};
        }
    }

    void WaitForConsumer() {
        constexpr int kShownEvery = 100;  // iterations of 1 ms
        Progress progress;
        for (int i = 1; !m_consumed.load(); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            if (Interruption::Requested()) {
                // Not joined: the threads may be blocked on a pipe that never ends.
                m_writer->Abandon();
                std::_Exit(Interruption::kExitStatus);
            }
            if (i % kShownEvery == 0) {
                progress.Show(PercentTaken());
            }
        }
    }

    void Launch(velm::Thread& thread, const char* name, int (*function)(void*)) {
        velm::ThreadConfig config;
        config.SetName(name);
        Check(thread.Initialize(config, function, this));
        Check(thread.Start(nullptr));
    }

    std::string PercentTaken() const {
        const std::uint64_t size = std::max(1U, m_input.Format().dataSize);
        return std::to_string(std::min<std::uint64_t>(100 * m_taken.load() / size, 100)) + " %";
    }

    int Produce() {
        std::vector<unsigned char> block(m_block.size);
        velm::AudioFrame frame;
        std::vector<short> slot(m_frameSampleSize);
        unsigned short counter = 0;
        while (!m_stop.load()) {
            unsigned long long size = 0;
            m_endOfReading = m_wave.GetWaveData(block.data(), &size, block.size(), m_block.milliseconds);
            // A truncated file delivers part of its last block.
            m_sumRead.Add(block.data(), size);
            m_blocks += size != 0;
            for (std::size_t sent = 0; sent < size;) {
                const auto part =
                    static_cast<unsigned int>(std::min<std::size_t>(size - sent, m_payloadSize));
                Send(frame, slot, kData, counter++, block.data() + sent, part);
                sent += part;
            }
            if (m_endOfReading.IsFailed()) {
                break;
            }
        }
        unsigned char nothing = 0;
        Send(frame, slot, kEnd, counter, &nothing, 1);
        return 0;
    }

    void Send(velm::AudioFrame& frame, std::vector<short>& slot, velm::E_FrameType type,
              unsigned short counter, unsigned char* data, unsigned int size) {
        frame.InitilizeWriter(type, counter, size, data);
        std::memcpy(slot.data(), frame.GetFrameBuffer(), frame.GetFrameBufferSize());
        m_stream.PushBackFrame(slot.data());
    }

    /// Takes frames until the one that ends the stream. After a failure it goes on, because otherwise the
    /// producer could wait for space forever.
    int Consume() {
        std::vector<short> slot(m_frameSampleSize);
        auto* const bytes = reinterpret_cast<unsigned char*>(slot.data());
        const auto byteSize = static_cast<unsigned int>(slot.size() * sizeof(short));
        velm::AudioFrame frame;
        for (unsigned short counter = 0;; ++counter) {
            m_stream.TakeFrontFrame(slot.data());
            const velm::ErrorCode result = frame.InitilizeReader(bytes, byteSize);
            if (result.IsFailed() || frame.GetCounter() != counter) {
                Fail(m_options.input + ": a frame arrived damaged: " + Describe(result));
            }
            if (frame.GetFrameType() == kEnd) {
                m_consumed = true;
                return 0;
            }
            m_sumTaken.Add(frame.GetDataBuffer(), frame.GetDataBufferSize());
            m_taken += frame.GetDataBufferSize();
            ++m_frames;
            WriteOutput(frame);
        }
    }

    void WriteOutput(velm::AudioFrame& frame) {
        if (!m_writer || m_stop.load()) {
            return;
        }
        try {
            m_writer->Write(frame.GetDataBuffer(), frame.GetDataBufferSize());
        } catch (const Failure& failure) {
            Fail(failure.message);
        }
    }

    void Fail(const std::string& message) {
        if (m_consumerFailure.empty()) {
            m_consumerFailure = message;
        }
        m_stop = true;
    }

    const AudioOptions& m_options;
    WaveInput& m_input;
    Block m_block;
    unsigned int m_payloadSize;
    unsigned int m_frameSampleSize;
    velm::WaveFileReadHelper m_wave;
    velm::AudioFrameStream m_stream;
    std::optional<WaveWriter> m_writer;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_consumed{false};
    std::atomic<std::uint64_t> m_taken{0};  // in bytes
    double m_elapsed = 0;                   // in seconds

    // Written by the producer, read after it was joined.
    velm::ErrorCode m_endOfReading;
    std::uint64_t m_blocks = 0;
    Checksum m_sumRead;

    // Written by the consumer, read after it was joined.
    std::uint64_t m_frames = 0;
    Checksum m_sumTaken;
    std::string m_consumerFailure;
};

void AddNumber(Report& report, const char* key, const std::optional<double>& number, const char* unit,
               int decimals) {
    if (number) {
        report.Add(key, *number, unit, decimals);
    } else {
        report.AddUnknown(key);
    }
}

void AddFormat(Report& report, const AudioOptions& options, const WaveFormat& format) {
    report.Add("file", options.input);
    report.Add("format", NameOfFormat(format));
    report.Add("format_tag", picojson::value(static_cast<double>(format.formatTag)), TextOfTag(format));
    report.Add("bits_per_sample", static_cast<long long>(format.bitsPerSample));
    report.Add("channels", static_cast<long long>(format.channels));
    report.Add("samples_per_second", static_cast<long long>(format.samplesPerSecond));
}

void AddSamples(Report& report, const WaveFormat& format, std::uint64_t bytes) {
    const auto samples = SamplesIn(format, bytes);
    AddNumber(report, "samples", samples ? std::optional(static_cast<double>(*samples)) : std::nullopt, "",
              0);
    report.Add("bytes", static_cast<long long>(bytes));
    AddNumber(report, "audio", DurationOf(format, bytes), "s", 3);
}

void AddOpenSize(Report& report, bool isOpen) {
    report.Add(
        "size_is_open", picojson::value(isOpen),
        isOpen ? "yes: the header does not give the size, so the data lasts until the file ends" : "no");
}

/// What the header says, without the sample data.
int RunInfo(const AudioOptions& options) {
    const WaveInput input(options.input);
    const WaveFormat& format = input.Format();
    Report report;
    AddFormat(report, options, format);
    report.Add("bytes_per_second", static_cast<long long>(format.averageBytesPerSecond));
    report.Add("block_align", static_cast<long long>(format.blockAlign));
    if (format.sizeIsOpen) {
        for (const char* const key : {"samples", "bytes", "audio"}) {
            report.AddUnknown(key);
        }
    } else {
        AddSamples(report, format, format.dataSize);
    }
    AddOpenSize(report, format.sizeIsOpen);
    picojson::array chunks;
    std::vector<std::string> lines{"    offset        size"};
    for (const WaveChunk& chunk : format.chunks) {
        chunks.emplace_back(picojson::object{{"tag", picojson::value(chunk.tag)},
                                             {"offset", picojson::value(static_cast<double>(chunk.offset))},
                                             {"size", picojson::value(static_cast<double>(chunk.size))}});
        std::ostringstream line;
        line << std::setw(10) << chunk.offset << "  " << std::setw(10) << chunk.size << "  " << chunk.tag;
        lines.push_back(line.str());
    }
    report.AddLines("chunks", picojson::value(chunks), lines);
    report.Print(options.json);
    return 0;
}

Report ReportOf(const AudioOptions& options, const WaveFormat& format, const Transfer& transfer) {
    const std::uint64_t bytes = transfer.BytesTaken();
    const std::optional<double> audio = DurationOf(format, bytes);
    Report report;
    AddFormat(report, options, format);
    report.Add("block", static_cast<double>(transfer.ChosenBlock().milliseconds), "ms", 0);
    report.Add("blocks", static_cast<long long>(transfer.Blocks()));
    report.Add("frames", static_cast<long long>(transfer.Frames()));
    AddSamples(report, format, bytes);
    AddOpenSize(report, format.sizeIsOpen && bytes < format.dataSize);
    report.Add("elapsed", transfer.Elapsed(), "s");
    AddNumber(report, "real_time_factor",
              audio && transfer.Elapsed() > 0 ? std::optional(*audio / transfer.Elapsed()) : std::nullopt, "",
              0);
    report.Add("checksum_read", transfer.SumRead().Text());
    report.Add("checksum_taken", transfer.SumTaken().Text());
    report.Add("checksums_equal", transfer.SumsAreEqual());
    return report;
}

int RunAudio(const AudioOptions& options) {
    if (options.info) {
        return RunInfo(options);
    }
    const bool outputIsData = options.output == "-";
    if (!outputIsData) {
        RefuseToOverwriteInput(options.input, options.output);
    }
    WaveInput input(options.input);
    Transfer transfer(options, input);
    transfer.Run();
    const Report report = ReportOf(options, input.Format(), transfer);
    if (outputIsData) {
        report.Print(options.json, std::cerr);
    } else {
        report.Print(options.json);
    }
    if (const std::uint64_t missing = transfer.MissingBytes(); missing != 0) {
        throw Failure{options.input + ": ends " + std::to_string(missing) +
                      " bytes before the end of its data (" + NameOf(transfer.EndOfReading()) + ')' +
                      (options.output.empty() ? "" : "; " + options.output + " has the data up to there")};
    }
    return transfer.SumsAreEqual() ? 0 : 1;
}

}  // namespace

void AddAudioCommand(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<AudioOptions>();
    CLI::App* const command = app.add_subcommand("audio", "Plays a WAVE file through the frame ring");
    Explain(command,
            "Reads a WAVE file block by block on one thread, passes each block as an audio frame "
            "through the frame ring to another, and compares what arrives with what was read. Any "
            "sample rate, depth and number of channels will do. A file that was written to a pipe, and whose "
            "header therefore leaves the size open, is read to its end. The file OUT appears when it is "
            "complete; with --out - the recording goes to standard output and the report to standard error.",
            "velmdiag audio speech.wav --out copy.wav");
    command->add_option("IN", options->input, "the WAVE file, or - for standard input")
        ->type_name(kFileType)
        ->required();
    CLI::Option* const out = command
                                 ->add_option("--out", options->output,
                                              "write what arrives to this WAVE file, or - for standard "
                                              "output")
                                 ->type_name(kFileType);
    command->add_flag("--info", options->info, "read the header only and list the chunks in it")
        ->excludes(out);
    command->add_option("--block-ms", options->blockMilliseconds, "play time of a block in milliseconds")
        ->check(CLI::Range(1U, 10000U))
        ->capture_default_str();
    command->add_option("--frames", options->frames, "frames that the ring holds")
        ->check(CLI::Range(1U, 1024U))
        ->capture_default_str();
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunAudio(*options); });
}

}  // namespace velmdiag
