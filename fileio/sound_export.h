// Exporting a sound (or a range of it) as a file of another kind, through libsndfile:
//
//   name    file                              chosen by the extension
//   wav16   WAV, 16-bit PCM                   .wav
//   wav24   WAV, 24-bit PCM                   -
//   float   WAV, 32-bit floating point        -
//   flac    FLAC, 16-bit (lossless)           .flac
//   ogg     Ogg Vorbis (lossy)                .ogg .oga
//
// 16-bit samples go into the wider files exactly (24-bit: v x 256; float: v / 32768), so an
// import gives them back unchanged; FLAC is lossless; Ogg Vorbis is not.
//
// Like the WAV writer, an export never damages a file that is there: the new file is
// written beside it under a temporary name, every write, the flush to disk and the close
// are checked, and only then is it renamed over the old one. On any failure the old file is
// as it was and the temporary is gone.
//
// Example (what `orvasto-cli export FILE [FORMAT]` does):
//
//     std::string reason;
//     if (!orv::exportSoundFile(name, formatName, sound, reason, &doc.cancel)) {
//         showMessage("File Error", orv::exportFailureText(name, reason));
//         return false;
//     }
//
// with formatName "" to go by the extension. exportSoundRange writes samples [begin, end)
// only (a selection).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/cancel.h"
#include "core/sound.h"

namespace orv {

enum class ExportFormat { Wav16, Wav24, WavFloat, Flac, Ogg };

struct ExportFormatInfo {
    ExportFormat format;
    const char* name;         // "wav16", what the user types
    const char* description;  // "WAV, 16-bit PCM"
    const char* extensions;   // "wav", "ogg oga"; "" when only the name chooses it
};

// Every export format, in the order of the table above.
const std::vector<ExportFormatInfo>& allExportFormats();
// Those this build's libsndfile can write (it may lack FLAC or Ogg Vorbis).
std::vector<ExportFormatInfo> availableExportFormats();
// "wav16, wav24, float, flac, ogg": the names for messages and help.
std::string exportFormatNames();

// The format named `name` (case does not matter), or by the extension of `fileName` when
// `name` is empty. False with a reason when neither gives one.
bool chooseExportFormat(const std::string& fileName, const std::string& name,
                        ExportFormat& format, std::string& reason);

// Reasons of our own (the others are libsndfile's or the system's texts).
inline constexpr char kExportCancelled[] = "The export was cancelled.";
// Followed by ": " + the system's reason + ".", or by "." alone.
inline constexpr char kExportCannotCreate[] = "Cannot create a file in that folder";
inline constexpr char kExportCannotFinish[] = "Cannot finish writing the file.";

// Writes all of `sound` to `fileName` in the format chosen by `formatName` (or the
// extension when it is empty). False with a reason on any failure; an existing file is
// then untouched. A cancel flag set between blocks stops it (reason kExportCancelled).
bool exportSoundFile(const std::string& fileName, const std::string& formatName,
                     const Sound* sound, std::string& reason, CancelFlag* cancel = nullptr);

// Samples [begin, end) of every channel (asserts 0 <= begin <= end <= GetValues()).
bool exportSoundRange(const std::string& fileName, ExportFormat format, const Sound* sound,
                      std::int32_t begin, std::int32_t end, std::string& reason,
                      CancelFlag* cancel = nullptr);

// The message the user sees under "File Error":
// "Cannot export the file: \"NAME\", " + reason.
std::string exportFailureText(const std::string& fileName, const std::string& reason);

}  // namespace orv
