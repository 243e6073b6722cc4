// libFuzzer target for the WAV reader. Each input is put in an in-memory file and read
// through the same path a user's file takes. Besides the sanitizers' checks it verifies:
// the message is one of the reader's own, a sound read has the layout the header gave and
// as many samples as its data size promised, and writing it and reading it back gives the
// same samples.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include "core/platform.h"
#include "fileio/wav_file.h"

namespace {

using namespace orv;

// Message boxes would only slow the run down.
class QuietPlatform : public Platform {
public:
    void showMessage(std::string_view, std::string_view, MessageIcon) override {}
};

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "wav_reader_fuzz: %s\n", what);
    std::abort();
}

// Inputs claim up to 4 GB of samples, but the reader takes only what the file holds: an
// input of a few KB that asks for more than 1 MB of samples is a finding.
void* cappedAllocate(std::size_t bytes) {
    if (bytes > (std::size_t(1) << 20)) fail("sample storage far beyond the file's size");
    return std::malloc(bytes);
}

bool isReaderMessage(const char* m) {
    if (isWavFrequencyMessage(m)) return true;
    for (const char* known : {kWavNoErrors, kWavCannotOpen, kWavNoRiff, kWavNoWaveFmt,
                              kWavChunkTooSmall, kWavNotPcm, kWavBadChannels,
                              kWavTooManySamples, kMemoryMessage})
        if (m == known) return true;
    return false;
}

struct Setup {
    QuietPlatform quiet;
    int input = -1;
    std::string inputPath;
    std::string outputPath;
    Setup() {
        setPlatform(&quiet);
        setSampleAllocator(cappedAllocate);
        input = ::memfd_create("wav-input", MFD_CLOEXEC);
        if (input < 0) fail("memfd_create");
        inputPath = "/proc/self/fd/" + std::to_string(input);
        const std::string dir = "/dev/shm/orv-wav-fuzz-" + std::to_string(::getpid());
        std::filesystem::create_directories(dir);
        outputPath = dir + "/out.wav";
    }
    ~Setup() { std::filesystem::remove_all(std::filesystem::path(outputPath).parent_path()); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Setup setup;
    if (::ftruncate(setup.input, 0) != 0) fail("ftruncate");
    if (size > 0 && ::pwrite(setup.input, data, size, 0) != ssize_t(size)) fail("pwrite");

    SoundPtr sound;
    int width = -1;
    const char* message = nullptr;
    const bool ok = readWaveFile(setup.inputPath, sound, width, message);
    if (!message || !isReaderMessage(message)) fail("unknown message");
    if (!ok) {
        if (sound) fail("sound set on failure");
        return 0;
    }
    if (std::strcmp(message, kWavNoErrors) != 0) fail("failure message on success");
    if (!sound || (sound->MoSt != 1 && sound->MoSt != 2)) fail("bad sound");
    if (sound->Freq < 1 || sound->Freq > 1000000) fail("unusable frequency accepted");
    // The reader takes bytes past the end of the file as zeros; so does this check.
    std::uint8_t h[44] = {};
    if (size > 0) std::memcpy(h, data, size < 44 ? size : 44);
    const std::int32_t channels = std::int16_t(getLE16(h + 22));
    if (channels != sound->MoSt) fail("channel count");
    // Where the data chunk's size lies is known only for a 16-byte format chunk followed
    // directly by "data". The samples are those the file holds, never more than it claims.
    if (std::int32_t(getLE32(h + 16)) == 16 && std::memcmp(h + 36, "data", 4) == 0) {
        const std::uint64_t claimed = getLE32(h + 40);
        const std::uint64_t held = size > 44 ? size - 44 : 0;
        const int bytes = bytesPerSampleFromBits(getLE16(h + 34));
        if (width != bytes) fail("width");
        if (sound->GetValues() != samplesPerChannel(std::min(claimed, held), channels, bytes))
            fail("count");
    }
    const Wave* left = sound->GetLeftWave();
    const Wave* right = sound->GetRightWave();
    if (!left || !right || left->getValues() != right->getValues()) fail("channel lengths");

    // Round trip at the width the file had (others are written as 16-bit).
    const int writeWidth = width == 1 ? 1 : 2;
    CancelFlag cancel{0};
    if (!writeWaveFile(&cancel, setup.outputPath, sound.get(), writeWidth, 0,
                       sound->GetValues(), true))
        fail("write");
    SoundPtr again;
    int againWidth = 0;
    if (!readWaveFile(setup.outputPath, again, againWidth, message)) fail("read back");
    if (againWidth != writeWidth || again->MoSt != sound->MoSt || again->Freq != sound->Freq ||
        again->GetValues() != sound->GetValues())
        fail("read back: format");
    const std::size_t n = std::size_t(sound->GetValues());
    if (n > 0 &&
        (std::memcmp(again->GetLeftWave()->data(), left->data(), n * 2) != 0 ||
         std::memcmp(again->GetRightWave()->data(), right->data(), n * 2) != 0))
        fail("read back: samples");
    return 0;
}
