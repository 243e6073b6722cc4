// libFuzzer target for what happens after a file is opened: each input is opened as a WAV
// file the way a user's is, then a fixed short script of operations runs on it (filters,
// tempo and pitch, random echo, roll in, balance or left/right mixing, maximal volume), each
// as orvasto-cli runs it. A file the reader accepts must never make an operation stop the
// program on an internal check, nor ask for storage that no file of this size needs.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include "cli/runner.h"
#include "cli/script.h"
#include "core/platform.h"

namespace {

using namespace orv;

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "wav_operations_fuzz: %s\n", what);
    std::abort();
}

// Refusals are expected and only slow the run down; a failed check is a finding (the
// default handler prints it, then the program aborts).
class QuietPlatform : public Platform {
public:
    void showMessage(std::string_view, std::string_view, MessageIcon) override {}
};

// Inputs are at most a few KB (a few thousand samples); the script at most lengthens them a
// few times. 64 MB of samples is a sane file's operation gone wrong.
void* cappedAllocate(std::size_t bytes) {
    if (bytes > (std::size_t(64) << 20)) fail("sample storage far beyond any sane result");
    return std::malloc(bytes);
}

struct Setup {
    QuietPlatform quiet;
    int input = -1;
    std::string inputPath;
    Setup() {
        setPlatform(&quiet);
        setSampleAllocator(cappedAllocate);
        input = ::memfd_create("wav-input", MFD_CLOEXEC);
        if (input < 0) fail("memfd_create");
        inputPath = "/proc/self/fd/" + std::to_string(input);
    }
};

const std::vector<std::vector<std::string>> kScript = {
    {"FilterLow"}, {"FilterHigh", "Count=3", "Maximize Volume=on"},
    {"FilterRes"}, {"FilterNotch", "Frequency Constant=100 Hz"},
    {"TempoPitch"}, {"RndEcho"}, {"RollIn"}, {"Balance"}, {"MixLeftRight"}, {"MaxVolume"},
    {"Length", "Length Factor=0.5"}, {"PerEcho"}, {"FilterBlock"},
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Setup setup;
    if (::ftruncate(setup.input, 0) != 0) fail("ftruncate");
    if (size > 0 && ::pwrite(setup.input, data, size, 0) != ssize_t(size)) fail("pwrite");

    std::ostringstream out;
    cli::ScriptRunner runner(out);
    std::vector<cli::Step> steps;
    if (cli::parseScript({"open", setup.inputPath}, steps)) fail("script");
    if (runner.runStep(steps[0]) != cli::kExitOk) return 0;  // refused: the reader's fuzzer's part
    for (const auto& words : kScript) {
        if (cli::parseScript(words, steps)) fail("script");
        (void)runner.runStep(steps[0]);  // a refusal is fine; the next operation runs anyway
    }
    return 0;
}
