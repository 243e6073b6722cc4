// TUnitWave: construction, state, cursor and selection, saving.
#include "document/unit_wave.h"

#include <algorithm>
#include <cmath>

#include "core/platform.h"
#include "fileio/wav_file.h"

namespace orv {

TUnitWave::TUnitWave(std::string_view newFileName, const WaveFileProps& waveFileProps)
    : state(kStateNew), fileName(newFileName), BytesPSample(waveFileProps.BytesPSample) {
    ORV_ASSERT(waveFileProps.MonoStereo == 1 || waveFileProps.MonoStereo == 2, "unitwave");
    ORV_ASSERT(waveFileProps.BytesPSample == 1 || waveFileProps.BytesPSample == 2, "unitwave");
    if (waveFileProps.MonoStereo != 1)
        TheSound = std::make_shared<StereoSound>(waveFileProps.Freq);
    else
        TheSound = std::make_shared<MonoSound>(waveFileProps.Freq);
}

TUnitWave::TUnitWave(SoundPtr sound, std::uint16_t bytesPSample, std::string_view newFileName)
    : state(kStateSaved), fileName(newFileName), BytesPSample(bytesPSample) {
    ORV_ASSERT(sound != nullptr, "unitwave");
    ORV_ASSERT(bytesPSample == 1 || bytesPSample == 2, "unitwave");
    TheSound = std::move(sound);
}

TUnitWave::~TUnitWave() {
    if (view) view->unitGone();
    // The undo record may still point at this unit: it goes first, while the unit exists.
    if (host) host->unitDestroyed(*this);
}

// ---- state ---------------------------------------------------------------------------

void TUnitWave::setChanged() {
    if (state == kStateSaved) state = kStateChanged;
}

void TUnitWave::saveAs(std::string_view newFileName) {
    fileName = newFileName;
    state = kStateSaved;
}

bool TUnitWave::needsSave() const { return values() != 0 && state != kStateSaved; }

std::shared_ptr<Sound> TUnitWave::swapSound(std::shared_ptr<Sound> newSound) {
    std::swap(TheSound, newSound);
    return newSound;
}

void TUnitWave::setBytesPSample(std::uint16_t bytes) {
    ORV_ASSERT(bytes == 1 || bytes == 2, "unitwave");
    BytesPSample = bytes;
}

double TUnitWave::lengthSeconds() const { return double(values()) / double(getFreq()); }

double TUnitWave::selectionSeconds() const {
    if (!hasSelection()) return lengthSeconds();
    return double(selEnd() - selBegin()) / double(getFreq());
}

std::int64_t TUnitWave::sizeInBytes() const {
    return std::int64_t(values()) * getMonoStereo() * BytesPSample;
}

// ---- cursor and selection ----------------------------------------------------------------

std::int32_t TUnitWave::clamp(std::int32_t pos) const { return std::clamp(pos, 0, values()); }

std::int32_t TUnitWave::selBegin() const { return hasSelection() ? std::min(cursor, selEndPos) : 0; }

std::int32_t TUnitWave::selEnd() const {
    return hasSelection() ? std::max(cursor, selEndPos) : values();
}

void TUnitWave::setCursorOnly(std::int32_t pos) {
    changeSelection([&] { cursor = clamp(pos); });
}

void TUnitWave::setCursor(std::int32_t pos) {
    changeSelection([&] { cursor = selEndPos = clamp(pos); });
}

void TUnitWave::setSelEnd(std::int32_t pos) {
    changeSelection([&] { selEndPos = clamp(pos); });
}

void TUnitWave::setSelection(std::int32_t begin, std::int32_t end) {
    ORV_ASSERT(begin <= end, "unitwave");
    changeSelection([&] {
        const std::int32_t b = clamp(begin), e = clamp(end);
        if (selEnd() == cursor) {
            cursor = e;
            selEndPos = b;
        } else {
            cursor = b;
            selEndPos = e;
        }
    });
}

void TUnitWave::selectRange(std::int32_t begin, std::int32_t end) {
    if (view) view->showRange(begin, end);
    if (end != begin)
        setSelection(begin, end);
    else
        setCursor(begin);
}

// ---- saving ---------------------------------------------------------------------------------

bool TUnitWave::writeRequest(const TagList& request) {
    debugTrace("PLAY Get...\n");
    const std::string file = request.getString("file", "");
    const bool temp = request.getInt("temp", 0) != 0;
    const std::int32_t begin = request.getLong("begin", 0);
    const std::int32_t end = request.getLong("end", values());
    debugTrace("PLAY call writeWaveFile\n");
    if (writeWaveFile(cancel.get(), file, TheSound.get(), BytesPSample, begin, end, temp))
        return true;
    showMessage(kSaveErrorCaption, kSaveErrorText, MessageIcon::Information);
    return false;
}

bool TUnitWave::save(const std::string& toFile, bool temp) {
    TagList request;
    request.addString("file", toFile);
    request.addInt("temp", temp ? 1 : 0);
    return writeRequest(request);
}

bool TUnitWave::save(bool temp) { return save(fileName, temp); }

bool TUnitWave::saveSelection(const std::string& toFile, bool temp) {
    TagList request;
    request.addString("file", toFile);
    request.addInt("temp", temp ? 1 : 0);
    request.addLong("begin", selBegin());
    request.addLong("end", selEnd());
    return writeRequest(request);
}

// ---- records --------------------------------------------------------------------------------

int TUnitWave::freqCount() const { return records_.mfreq.frequencies.count(); }

const FrequencyRecord& TUnitWave::mFreqBrowseRecord(int index) const {
    ORV_ASSERT_TEXT(index >= 0 && index < freqCount(), "index < freqCount", "unitwave");
    return records_.mfreq.frequencies.at(index);
}

// ---- taking the result of an operation ----------------------------------------------------------

void TUnitWave::takeResult(std::shared_ptr<Sound> made, std::int32_t begin, std::int32_t end) {
    ORV_ASSERT(made != nullptr, "unitwave");
    TheSound = std::move(made);
    selectRange(begin, end);
    if (view) view->repaintAll();
}

void TUnitWave::takeConverted(std::shared_ptr<Sound> made, std::uint16_t bytesPSample,
                              double scale) {
    ORV_ASSERT(made != nullptr, "unitwave");
    ORV_ASSERT(bytesPSample == 1 || bytesPSample == 2, "unitwave");
    // Cursor and selection keep their place in time.
    const std::int32_t newCursor = std::int32_t(std::floor(cursor * scale));
    const std::int32_t newSelEnd = std::int32_t(std::floor(selEndPos * scale));
    BytesPSample = bytesPSample;
    TheSound = std::move(made);
    changeSelection([&] {
        cursor = clamp(newCursor);
        selEndPos = clamp(newSelEnd);
    });
    if (view) view->repaintAll();
}

}  // namespace orv
