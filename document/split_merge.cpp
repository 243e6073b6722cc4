#include "document/split_merge.h"

#include <algorithm>

#include "core/platform.h"

namespace orv {

namespace {

// The frequencies the dialogs list; the waves' own frequencies may be others.
const std::initializer_list<std::string_view> kFreqNames = {"5 kHz",  "11 kHz", "22 kHz",
                                                            "44 kHz", "88 kHz", "176 kHz"};
const std::initializer_list<std::int32_t> kFreqValues = {5512,  11025, 22050,
                                                         44100, 88200, 176400};

bool checkDifferent(const std::string& a, const std::string& b, FormError& error) {
    if (a != b) return true;
    error = FormError{};
    error.message = std::string(kWavesMustDifferMessage);
    return false;
}

bool checkMergeHor(const MergeHorRecord& r, const FormContext&, FormError& error) {
    return checkDifferent(r.first, r.last, error);
}

bool checkMergeVert(const MergeVertRecord& r, const FormContext&, FormError& error) {
    return checkDifferent(r.left, r.right, error);
}

std::unique_ptr<TUnitWave> newDocument(SoundPtr sound, std::uint16_t bytesPSample) {
    auto unit = std::make_unique<TUnitWave>(std::move(sound), bytesPSample, kNoName);
    unit->setNew();
    return unit;
}

// The sound in the given channels and frequency (always a new sound).
SoundPtr converted(const Sound& s, const WaveFileProps& props, CancelFlag& cancel) {
    SoundPtr made;
    const Sound* source = &s;
    if (s.Freq != props.Freq) {
        made = s.ChangeFreq(&cancel, props.Freq);
        if (!made || isCancelled(cancel)) return nullptr;
        source = made.get();
    }
    if (source->MoSt != props.MonoStereo) {
        if (props.MonoStereo == 2) return std::make_unique<StereoSound>(*source, &cancel);
        return std::make_unique<MonoSound>(*source, &cancel);
    }
    if (!made) made = source->CopyRange(&cancel, 0, source->GetValues());
    return made;
}

// Takes the one wave out of a mono sound.
WavePtr takeWave(SoundPtr sound) {
    auto* mono = dynamic_cast<MonoSound*>(sound.get());
    ORV_ASSERT_TEXT(mono != nullptr, "MonoStereo == 1", "Main");
    WavePtr wave(mono->WaveMiddle);
    mono->WaveMiddle = nullptr;
    return wave;
}

}  // namespace

SplitHorRecord::SplitHorRecord() { table().applyDefaults(*this); }
const RecordTable<SplitHorRecord>& SplitHorRecord::table() {
    using R = SplitHorRecord;
    static const RecordTable<R> t("Split Horizontally", 38, {
        optionField("Result", &R::result,
                    {"Three parts", "Two parts, both inclusive selected part",
                     "Two parts, both exclusive selected part"}),
    });
    return t;
}

MergeHorRecord::MergeHorRecord() { table().applyDefaults(*this); }
const RecordTable<MergeHorRecord>& MergeHorRecord::table() {
    using R = MergeHorRecord;
    static const RecordTable<R> t("Merge Horizontally", 47, {
        waveNameField("First", &R::first),
        waveNameField("Last", &R::last),
        optionField("Mono/Stereo", &R::channels, {"Mono", "Stereo"}, kStereo),
        choiceField("Frequency", &R::freq, kFreqNames, kFreqValues, 44100),
        optionField("Bits", &R::bits, {"8 Bits", "16 Bits"}, k16Bits),
        optionField("Use Display Properties of", &R::display, {"First", "Last"}),
    }, checkMergeHor);
    return t;
}

void MergeHorRecord::takeDefaultsFrom(const TUnitWave& a, const TUnitWave& b) {
    channels = a.getMonoStereo() == 2 || b.getMonoStereo() == 2 ? kStereo : kMono;
    freq = std::max(a.getFreq(), b.getFreq());
    bits = a.getBytesPSample() == 2 || b.getBytesPSample() == 2 ? k16Bits : k8Bits;
}

WaveFileProps MergeHorRecord::props() const {
    WaveFileProps p;
    p.Freq = freq;
    p.MonoStereo = channels == kStereo ? 2 : 1;
    p.BytesPSample = bits == k8Bits ? 1 : 2;
    return p;
}

MergeVertRecord::MergeVertRecord() { table().applyDefaults(*this); }
const RecordTable<MergeVertRecord>& MergeVertRecord::table() {
    using R = MergeVertRecord;
    static const RecordTable<R> t("Merge Vertically", 48, {
        waveNameField("Left", &R::left),
        waveNameField("Right", &R::right),
        optionField("Make Lengths Equal", &R::lengths,
                    {"Add Silence at the begin of the shortest wave",
                     "Add Silence at the end of the shortest wave", "Stretch the shortest wave",
                     "Stretch the longest wave"},
                    kSilenceAtEnd),
        choiceField("Frequency", &R::freq, kFreqNames, kFreqValues, 44100),
        optionField("Bits", &R::bits, {"8 Bits", "16 Bits"}, k16Bits),
        optionField("Use Display Properties of", &R::display, {"Left", "Right"}),
    }, checkMergeVert);
    return t;
}

void MergeVertRecord::takeDefaultsFrom(const TUnitWave& a, const TUnitWave& b) {
    freq = std::max(a.getFreq(), b.getFreq());
    bits = a.getBytesPSample() == 2 || b.getBytesPSample() == 2 ? k16Bits : k8Bits;
}

std::optional<NewDocuments> splitVertically(const TUnitWave& source, CancelFlag& cancel) {
    ORV_ASSERT_TEXT(source.getMonoStereo() == 2, "MonoStereo == 2", "Main");
    debugTrace("begin Split\n");
    const Sound& s = *source.getSound();
    WavePtr left = s.DupLeftWave(&cancel, 0);
    WavePtr right = left ? s.DupRightWave(&cancel, 0) : nullptr;
    if (!left || !right || isCancelled(cancel)) return std::nullopt;
    NewDocuments made;
    made.push_back(newDocument(std::make_unique<MonoSound>(std::move(left), s.Freq),
                               source.getBytesPSample()));
    made.push_back(newDocument(std::make_unique<MonoSound>(std::move(right), s.Freq),
                               source.getBytesPSample()));
    debugTrace("einde Split\n");
    return made;
}

std::optional<NewDocuments> splitHorizontally(const TUnitWave& source,
                                              const SplitHorRecord& choice, CancelFlag& cancel) {
    const std::int32_t n = source.values();
    const std::int32_t b = std::min(source.getCursor(), source.getSelEndPos());
    const std::int32_t e = std::max(source.getCursor(), source.getSelEndPos());
    ORV_ASSERT_TEXT(b > 0 && e < n - 1, "the part lies inside the wave", "Main");
    std::vector<std::pair<std::int32_t, std::int32_t>> pieces;
    if (b == e)
        pieces = {{0, b}, {b, n}};
    else if (choice.result == SplitHorRecord::kTwoInclusive)
        pieces = {{0, e}, {b, n}};
    else if (choice.result == SplitHorRecord::kTwoExclusive)
        pieces = {{0, b}, {e, n}};
    else
        pieces = {{0, b}, {b, e}, {e, n}};
    NewDocuments made;
    for (const auto& [from, to] : pieces) {
        SoundPtr piece = source.getSound()->CopyRange(&cancel, from, to);
        if (!piece || isCancelled(cancel)) return std::nullopt;
        made.push_back(newDocument(std::move(piece), source.getBytesPSample()));
    }
    return made;
}

std::optional<NewDocuments> mergeHorizontally(const TUnitWave& first, const TUnitWave& last,
                                              const MergeHorRecord& choice, CancelFlag& cancel) {
    const WaveFileProps props = choice.props();
    SoundPtr a = converted(*first.getSound(), props, cancel);
    SoundPtr b = a ? converted(*last.getSound(), props, cancel) : nullptr;
    if (!a || !b || isCancelled(cancel)) return std::nullopt;
    std::int32_t end = a->GetValues();
    SoundPtr joined = a->Insert(&cancel, b.get(), a->GetValues(), end);
    if (!joined || isCancelled(cancel)) return std::nullopt;
    NewDocuments made;
    made.push_back(newDocument(std::move(joined), props.BytesPSample));
    return made;
}

std::optional<NewDocuments> mergeVertically(const TUnitWave& left, const TUnitWave& right,
                                            const MergeVertRecord& choice, CancelFlag& cancel) {
    const std::int32_t freq = choice.freq;
    SoundPtr l = std::make_unique<MonoSound>(left.getSound()->DupMonoWave(&cancel, freq), freq);
    SoundPtr r = std::make_unique<MonoSound>(right.getSound()->DupMonoWave(&cancel, freq), freq);
    if (isCancelled(cancel)) return std::nullopt;
    SoundPtr& shorter = l->GetValues() < r->GetValues() ? l : r;
    SoundPtr& longer = l->GetValues() < r->GetValues() ? r : l;
    const std::int32_t target = longer->GetValues();
    const std::int32_t n = shorter->GetValues();
    if (n != target) {
        SoundPtr grown;
        std::int32_t begin = 0, end = 0;
        switch (choice.lengths) {
            case MergeVertRecord::kSilenceAtBegin:
                grown = shorter->MakeSilenceValues(&cancel, double(target - n), begin, end);
                shorter = std::move(grown);
                break;
            case MergeVertRecord::kSilenceAtEnd:
                begin = end = n;
                grown = shorter->MakeSilenceValues(&cancel, double(target - n), begin, end);
                shorter = std::move(grown);
                break;
            default: {
                // A length factor that truncates to exactly the other's length.
                const bool stretchLonger = choice.lengths == MergeVertRecord::kStretchLongest;
                SoundPtr& from = stretchLonger ? longer : shorter;
                const std::int32_t have = from->GetValues(), want = stretchLonger ? n : target;
                if (have == 0) {
                    begin = end = 0;
                    grown = from->MakeSilenceValues(&cancel, double(want), begin, end);
                } else {
                    end = have;
                    grown = from->Length(&cancel, (double(want) + 0.5) / double(have), 0, end);
                }
                from = std::move(grown);
                break;
            }
        }
        if (!l || !r || isCancelled(cancel)) return std::nullopt;
    }
    ORV_ASSERT_TEXT(l->GetValues() == r->GetValues(), "left->getValues() == right->getValues()",
                    "Main");
    NewDocuments made;
    made.push_back(newDocument(
        std::make_unique<StereoSound>(takeWave(std::move(l)), takeWave(std::move(r)), freq),
        choice.bits == MergeVertRecord::k8Bits ? 1 : 2));
    return made;
}

}  // namespace orv
