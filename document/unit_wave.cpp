// TUnitWave: construction, state, cursor and selection, saving.
#include "document/unit_wave.h"

#include <algorithm>

#include "core/platform.h"
#include "fileio/wav_file.h"

namespace orv {

TUnitWave::TUnitWave(std::string_view newFileName, const WaveFileProps& waveFileProps)
    : state(kStateNew), fileName(newFileName), BytesPSample(waveFileProps.BytesPSample) {
    ORV_ASSERT(waveFileProps.MonoStereo == 1 || waveFileProps.MonoStereo == 2, "unitwave");
    ORV_ASSERT(waveFileProps.BytesPSample == 1 || waveFileProps.BytesPSample == 2, "unitwave");
    if (waveFileProps.MonoStereo != 1)
        TheSound = new StereoSound(waveFileProps.Freq);
    else
        TheSound = new MonoSound(waveFileProps.Freq);
}

TUnitWave::TUnitWave(SoundPtr sound, std::uint16_t bytesPSample, std::string_view newFileName)
    : state(kStateSaved), fileName(newFileName), BytesPSample(bytesPSample) {
    ORV_ASSERT(sound != nullptr, "unitwave");
    ORV_ASSERT(bytesPSample == 1 || bytesPSample == 2, "unitwave");
    TheSound = sound.release();
}

TUnitWave::~TUnitWave() {
    // The undo record may still point at this unit: it goes first, while the unit exists.
    if (host) host->unitDestroyed(*this);
    if (!keepSound && TheSound) delete TheSound;
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

Sound* TUnitWave::swapSound(Sound* newSound) {
    Sound* old = TheSound;
    TheSound = newSound;
    return old;
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
    if (writeWaveFile(&cancel, file, TheSound, BytesPSample, begin, end, temp)) return true;
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

// ---- the common tail of every operation ---------------------------------------------------------

void TUnitWave::releaseSound(Sound* old) {
    if (!old || old == TheSound) return;
    if (host && host->undoHolds(old)) return;
    delete old;
}

bool TUnitWave::takeResult(SoundPtr made, std::int32_t begin, std::int32_t end) {
    if (isCancelled(cancel) || !made) {
        // Whatever was made is thrown away; the unit keeps sound, cursor and selection.
        if (view) view->repaintAll();
        return false;
    }
    releaseSound(swapSound(made.release()));
    selectRange(begin, end);
    if (view) view->repaintAll();
    return true;
}

void TUnitWave::effectRange(std::int32_t& begin, std::int32_t& end) const {
    begin = selBegin();
    end = selEnd();
}

void TUnitWave::makeRange(std::int32_t& begin, std::int32_t& end) const {
    if (hasSelection()) {
        begin = selBegin();
        end = selEnd();
    } else {
        begin = end = cursor;
    }
}

const Sound* TUnitWave::envelope(const std::string& waveName) const {
    const Sound* found = host ? host->soundByName(waveName) : nullptr;
    ORV_ASSERT_TEXT(found != nullptr, "envelope != NULL", "unitwave");
    return found;
}

double TUnitWave::secondsOf(const std::string& waveName) const {
    return double(envelope(waveName)->GetTime());
}

}  // namespace orv
