#include "document/file_props_record.h"

namespace orv {

WaveFilePropsRecord::WaveFilePropsRecord() { table().applyDefaults(*this); }

WaveFilePropsRecord::WaveFilePropsRecord(const WaveFileProps& props)
    : freq(props.Freq),
      bits(props.BytesPSample == 1 ? k8Bits : k16Bits),
      channels(props.MonoStereo == 2 ? kStereo : kMono) {}

const RecordTable<WaveFilePropsRecord>& WaveFilePropsRecord::table() {
    using R = WaveFilePropsRecord;
    // The list names the usual rates by their whole kilohertz; 5 kHz is an eighth of 44.1.
    static const RecordTable<R> t("Wave Properties", 2, {
        choiceField("Sample Frequency:", &R::freq,
                    {"5 kHz", "11 kHz", "22 kHz", "44 kHz", "88 kHz", "176 kHz"},
                    {5512, 11025, 22050, 44100, 88200, 176400}, 22050),
        optionField("Wave Values", &R::bits, {"8 Bits", "16 Bits"}, k16Bits),
        optionField("Mono/Stereo", &R::channels, {"Mono", "Stereo"}, kMono),
    });
    return t;
}

WaveFileProps WaveFilePropsRecord::props() const {
    WaveFileProps p;
    p.Freq = freq;
    p.BytesPSample = bits == k8Bits ? 1 : 2;
    p.MonoStereo = channels == kStereo ? 2 : 1;
    return p;
}

}  // namespace orv
