// Importing sound files of other kinds (FLAC, Ogg Vorbis, AIFF, 24-bit and float WAV, WAV
// files with extra chunks, ...) through libsndfile. Our own WAV reader (wav_file.h) stays the
// way a document is opened; import is the way in for everything it refuses.
//
// Any file libsndfile can open with one or two channels becomes a new MonoSound or
// StereoSound at the file's own frequency. Samples are converted to 16 bits the way
// libsndfile reads 16-bit data with clipping on: wider integers keep their top 16 bits
// (24-bit 0x7FFFFF gives 32767, 0x800000 gives -32768, 0x000001 gives 0, 0xFFFFFF gives -1),
// floating point is scaled by 32768, rounded to the nearest integer (ties to even) and
// clipped to -32768..32767 (1.5 gives 32767, -2.0 gives -32768, 0.5 gives 16384, 1/65536
// gives 0). Nothing wraps around.
//
// Example (what `orvasto-cli import FILE` does):
//
//     orv::SoundPtr sound;
//     std::string reason;
//     if (!orv::importSoundFile(name, sound, reason, &doc.cancel)) {
//         showMessage("File Error", orv::importFailureText(name, reason));
//         return false;  // the CLI prints "File Error: " + that text and exits 1
//     }
//     // sound->MoSt is 1 or 2, sound->Freq the file's frequency; the document keeps it as
//     // a 16-bit (2 bytes per sample) wave and marks itself changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/cancel.h"
#include "core/sound.h"
#include "fileio/wav_format.h"

namespace orv {

// The reasons a file is refused, in a user's words. Where libsndfile said something, its
// text follows as a detail: "... (libsndfile: Format not recognised.)".
inline constexpr char kImportCancelled[] = "The import was cancelled.";
inline constexpr const char* kImportTooLong = kWavTooManySamples;
inline constexpr char kImportMissing[] = "The file does not exist.";
// Followed by the system's reason: "The file cannot be opened: Permission denied."
inline constexpr char kImportCannotOpen[] = "The file cannot be opened: ";
inline constexpr char kImportFolder[] = "This is a folder, not a sound file.";
inline constexpr char kImportNotAFile[] =
    "This is not a plain file (a pipe or a device); only files can be imported.";
inline constexpr char kImportEmpty[] = "The file is empty.";
inline constexpr char kImportUnknownKind[] = "The file is not a sound file of a kind that can be imported.";
inline constexpr char kImportDamagedHeader[] =
    "The file is damaged, or uses a form of its format that cannot be read.";
inline constexpr char kImportDamagedSamples[] = "The file is damaged: its samples cannot all be decoded.";
// "The file has N channels; only mono and stereo files can be imported."
std::string importChannelsReason(int channels);
// A sample frequency outside 1 .. 1000000 Hz gives sampleFrequencyReason (sample_frequency.h).

// Reads `fileName` into a new sound. On success `sound` owns it and the result is true. On
// failure `sound` is left empty and `reason` says why, with one of the reasons above. Only
// plain files are handed to libsndfile (a named pipe is refused at once, it would block).
// A cancel flag set between two blocks stops the import (reason kImportCancelled). When
// sample storage cannot be had the memory message is shown under "System Error", the flag
// (if given) is set and the reason is that message. A WAV or AIFF file that ends before the
// length its header promised gives the samples that are there; damage that libsndfile
// notices while decoding (a FLAC file cut inside a frame) refuses the file with
// kImportDamagedSamples and libsndfile's "Error : flac decoder lost sync." as the detail.
// Codec libraries may print diagnostics of their own on stderr meanwhile; QuietStderr
// silences them.
bool importSoundFile(const std::string& fileName, SoundPtr& sound, std::string& reason,
                     CancelFlag* cancel = nullptr);

// The same from bytes in memory (a file dropped or pasted; the fuzzer feeds this).
bool importSoundMemory(const void* data, std::size_t size, SoundPtr& sound,
                       std::string& reason, CancelFlag* cancel = nullptr);

// While it lives, whatever the process writes to file descriptor 2 (stderr) is thrown away:
// the codec libraries behind libsndfile (mpg123 among them) print raw warnings there. A
// front end that shows its own messages on stderr writes them through a duplicate of the
// descriptor taken before (orvasto-cli does). Not for tests or fuzzing: a sanitizer's
// report would be lost too.
class QuietStderr {
public:
    QuietStderr();
    ~QuietStderr();
    QuietStderr(const QuietStderr&) = delete;
    QuietStderr& operator=(const QuietStderr&) = delete;

private:
    int saved_ = -1;
};

// The message the user sees under "File Error":
// "Cannot import the file: \"NAME\", " + reason.
std::string importFailureText(const std::string& fileName, const std::string& reason);

// The kinds of file this build's libsndfile can read, for `orvasto-cli help`.
struct ImportFormat {
    std::string name;       // "FLAC (Free Lossless Audio Codec)"
    std::string extension;  // "flac"
};
std::vector<ImportFormat> importFormats();

}  // namespace orv
