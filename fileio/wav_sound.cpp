// Sounds to and from WAV files: the channel-level reader and writer of wav_file.cpp wrapped
// around MonoSound and StereoSound.
#include "fileio/wav_file.h"

namespace orv {

bool readWaveFile(const std::string& fileName, SoundPtr& sound, int& bytesPSample,
                  const char*& message) {
    WaveFileChannels file;
    if (!readWaveChannels(fileName, file, message)) return false;
    if (file.monoStereo == 2) {
        sound = std::make_unique<StereoSound>(std::move(file.left), std::move(file.right),
                                              file.freq);
    } else {
        sound = std::make_unique<MonoSound>(std::move(file.left), file.freq);
    }
    bytesPSample = file.bytesPSample;
    return true;
}

bool writeWaveFile(CancelFlag* cancel, const std::string& fileName, const Sound* sound,
                   int bytesPSample, std::int32_t begin, std::int32_t end, bool temporary) {
    if (!sound) return false;
    if (sound->MoSt == 2) {
        const Wave* left = sound->GetLeftWave();
        const Wave* right = sound->GetRightWave();
        if (!left || !right) return false;
        return writeWaveChannels(fileName, left, right, sound->Freq, bytesPSample, begin, end,
                                 temporary, cancel);
    }
    bool isNew = false;
    Wave* middle = sound->GetMonoWave(cancel, isNew);
    if (!middle) return false;
    const WavePtr owned(isNew ? middle : nullptr);  // a mono sound lends its own wave
    return writeWaveChannels(fileName, middle, nullptr, sound->Freq, bytesPSample, begin, end,
                             temporary, cancel);
}

}  // namespace orv
