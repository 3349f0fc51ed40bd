// WAVE files in the page cache: reading blocks of samples against libsndfile, and skipping a chunk against
// stdio's fastest way to read bytes.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "Families.h"
#include "Riff.h"
#include "TemporaryFile.h"
#include "velm/core/FileReader.h"
#include "velm/WaveFileReadHelper.h"

#ifdef VELM_BENCH_SNDFILE
#include <sndfile.h>
#endif

namespace velm::bench {
namespace {

constexpr unsigned int kBlockMilliseconds = 20;
constexpr unsigned int kBlockBytes = 1920;  // for 48 kHz and two channels, as GetWaveData counts bytes

/// The header of a chunk.
std::string ChunkHead(const std::string& tag, std::size_t size) {
    return tag + test::Le32(static_cast<unsigned int>(size));
}

/// A WAVE file of zeros: `skipped` bytes in an unknown chunk, then `data` bytes of samples.
class WaveFile {
public:
    WaveFile(std::size_t skipped, std::size_t data) : m_file("velm_bench.wav", "") {
        std::string head = ChunkHead("fmt ", 16) + test::PcmFormat(2, 48000, 16);
        std::size_t gap = 0;
        if (skipped != 0) {
            head += ChunkHead("junk", skipped);
            gap = skipped;
        }
        const std::size_t all = 4 + head.size() + gap + 8 + data;
        head = ChunkHead("RIFF", all) + "WAVE" + head;
        std::FILE* const file = std::fopen(m_file.Name(), "wb");
        std::fwrite(head.data(), 1, head.size(), file);
        std::fseek(file, static_cast<long>(gap), SEEK_CUR);
        const std::string last = ChunkHead("data", data);
        std::fwrite(last.data(), 1, last.size(), file);
        std::fclose(file);
        std::filesystem::resize_file(m_file.Path(), head.size() + gap + last.size() + data);
    }

    const char* Name() const { return m_file.Name(); }

private:
    test::TemporaryFile m_file;
};

/// Opens the file and reads all of it.
Contender Ours(const std::shared_ptr<WaveFile>& file) {
    return Repeat("WaveFileReadHelper", [file] {
        FileReader reader;
        reader.Open(file->Name());
        WaveFileReadHelper wave;
        wave.Initialize(&reader);
        unsigned char block[kBlockBytes];
        unsigned long long size = 0;
        while (!wave.GetWaveData(block, &size, sizeof block, kBlockMilliseconds).IsFailed()) {
            Keep(&block);
        }
    });
}

Peer Sndfile(const std::shared_ptr<WaveFile>& file, double required) {
    const std::string name = "libsndfile, sf_read_raw";
#ifdef VELM_BENCH_SNDFILE
    return {Repeat(name,
                   [file] {
                       SF_INFO info{};
                       SNDFILE* const sound = sf_open(file->Name(), SFM_READ, &info);
                       unsigned char block[kBlockBytes];
                       while (sf_read_raw(sound, block, sizeof block) > 0) {
                           Keep(&block);
                       }
                       sf_close(sound);
                   }),
            required};
#else
    (void)file;
    return Missing(name, "libsndfile1-dev", required);
#endif
}

/// The operating system's part of the work: read() into a buffer of 64 KB.
Peer ReadAlone(const std::shared_ptr<WaveFile>& file) {
    return LimitOf(Repeat("read() alone, 64 KB at a time",
                          [file] {
                              const int descriptor = open(file->Name(), O_RDONLY);
                              static char buffer[64 * 1024];
                              while (read(descriptor, buffer, sizeof buffer) > 0) {
                                  Keep(&buffer);
                              }
                              close(descriptor);
                          }),
                   0.85);
}

/// A reader without the kernel's copy: blocks from a memory-mapped file.
Peer Mapping(const std::shared_ptr<WaveFile>& file) {
    return {Repeat("blocks from a memory-mapped file", [file] {
        const auto size = static_cast<std::size_t>(std::filesystem::file_size(file->Name()));
        const int descriptor = open(file->Name(), O_RDONLY);
        void* const mapping = mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
        close(descriptor);
        if (mapping == MAP_FAILED) {
            return;
        }
        unsigned char block[kBlockBytes];
        for (std::size_t at = 0; at + sizeof block <= size; at += sizeof block) {
            std::memcpy(block, static_cast<const unsigned char*>(mapping) + at, sizeof block);
            Keep(&block);
        }
        munmap(mapping, size);
    })};
}

void MeasureSkip(Suite& suite) {
    const auto file = std::make_shared<WaveFile>(suite.IsShort() ? 100'000U : 100'000'000U, kBlockBytes);
    const Contender ours = Repeat("WaveFileReadHelper", [file] {
        FileReader reader;
        reader.Open(file->Name());
        WaveFileReadHelper wave;
        Keep(wave.Initialize(&reader));
    });
    const Contender stdio = Repeat("getc_unlocked", [file] {
        std::FILE* const stream = std::fopen(file->Name(), "rb");
        int last = 0;
        while ((last = getc_unlocked(stream)) != EOF) {
            Keep(last);
        }
        std::fclose(stream);
    });
    suite.Compare("WaveFileReadHelper", "skipping a 100 MB chunk", ours, {{stdio, 1.0}});
}

}  // namespace

void MeasureWave(Suite& suite) {
    const auto file = std::make_shared<WaveFile>(0U, suite.IsShort() ? 100'000U : 10'000'000U);
    suite.Compare("WaveFileReadHelper", "10 MB in blocks of 1920 bytes", Ours(file),
                  {Sndfile(file, 2.5), ReadAlone(file), Mapping(file)});
    MeasureSkip(suite);

    std::vector<double> sizes;
    for (double size = 1 << 10; size <= 1 << 30; size *= 4) {
        sizes.push_back(size);
    }
    suite.MeasureCurve(
        "WaveFileReadHelper: a file read in blocks of 1920 bytes", "bytes of the file", Growth::kWithSize,
        sizes,
        [](double size) -> std::vector<Contender> {
            const auto grown = std::make_shared<WaveFile>(0U, static_cast<std::size_t>(size));
            std::vector<Contender> contenders{Ours(grown)};
            const Peer sndfile = Sndfile(grown, 0);
            if (sndfile.contender.run != nullptr) {
                contenders.push_back(sndfile.contender);
            }
            return contenders;
        },
        1 << 16);
}

}  // namespace velm::bench
