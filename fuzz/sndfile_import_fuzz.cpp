// libFuzzer target for import: each input is handed to libsndfile as an in-memory file
// (sf_open_virtual, through importSoundMemory) and read the way a user's file is. Besides
// the sanitizers' checks it verifies: a failure leaves no sound and says why, a sound read
// is mono or stereo with channels of equal length and a usable frequency, and a small sound
// exported as 16-bit WAV and imported again comes back sample for sample.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "core/platform.h"
#include "fileio/sound_export.h"
#include "fileio/sound_import.h"

namespace {

using namespace orv;

// Message boxes would only slow the run down.
class QuietPlatform : public Platform {
public:
    void showMessage(std::string_view, std::string_view, MessageIcon) override {}
};

// Headers claim up to 2^31 frames; refuse storage past 1 MB per channel so the run tests
// the refusal path instead of running out of memory.
void* cappedAllocate(std::size_t bytes) {
    return bytes > (std::size_t(1) << 20) ? nullptr : std::malloc(bytes);
}

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "sndfile_import_fuzz: %s\n", what);
    std::abort();
}

struct Setup {
    QuietPlatform quiet;
    std::string outputPath;
    Setup() {
        setPlatform(&quiet);
        setSampleAllocator(cappedAllocate);
        const std::string dir = "/dev/shm/orv-import-fuzz-" + std::to_string(::getpid());
        std::filesystem::create_directories(dir);
        outputPath = dir + "/out.wav";
    }
    ~Setup() { std::filesystem::remove_all(std::filesystem::path(outputPath).parent_path()); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Setup setup;
    SoundPtr sound;
    std::string reason;
    const bool ok = importSoundMemory(data, size, sound, reason);
    if (!ok) {
        if (sound) fail("sound set on failure");
        if (reason.empty()) fail("failure without a reason");
        return 0;
    }
    if (!sound || (sound->MoSt != 1 && sound->MoSt != 2)) fail("bad sound");
    if (sound->Freq < 1 || sound->Freq > 1000000) fail("unusable frequency accepted");
    const Wave* left = sound->GetLeftWave();
    const Wave* right = sound->GetRightWave();
    if (!left || !right || left->getValues() != right->getValues() ||
        left->getValues() != sound->GetValues())
        fail("channel lengths");

    // Round trip of small sounds only: the point is the reader, not the disk.
    if (sound->GetValues() > 65536) return 0;
    if (!exportSoundFile(setup.outputPath, "wav16", sound.get(), reason)) {
        // libsndfile refuses some frequencies a file may claim; nothing else may fail.
        if (reason.rfind("This build cannot write", 0) == 0) return 0;
        std::fprintf(stderr, "export: %s\n", reason.c_str());
        fail("export");
    }
    SoundPtr again;
    if (!importSoundFile(setup.outputPath, again, reason)) {
        std::fprintf(stderr, "import again: %s\n", reason.c_str());
        fail("import again");
    }
    if (again->MoSt != sound->MoSt || again->Freq != sound->Freq ||
        again->GetValues() != sound->GetValues())
        fail("round trip: format");
    const std::size_t n = std::size_t(sound->GetValues());
    if (n > 0 &&
        (std::memcmp(again->GetLeftWave()->data(), left->data(), n * 2) != 0 ||
         std::memcmp(again->GetRightWave()->data(), right->data(), n * 2) != 0))
        fail("round trip: samples");
    return 0;
}
