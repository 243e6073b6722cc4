// The parameter record of every operation dialog. Each record is a plain value (copying
// copies every field); its fields, defaults and checks are declared once in its table()
// (records_*.cpp), and a new record starts at those defaults. Documents keep one record of
// each kind so that a dialog reopens with the values last used on that wave.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/sound.h"
#include "document/field_table.h"
#include "document/record_browser.h"
#include "document/record_form.h"
#include "units/value_record.h"

namespace orv {

// Constant-or-envelope pairs.
enum ConstEnv : std::uint8_t { kConstant = 0, kEnvelope = 1 };

// The length options shared by Change Length, Roll out, Pitch Tempo and Block or Triangle.
enum LengthKind : std::uint8_t {
    kLengthFactor = 0,  // "Length Factor"
    kLengthNew = 1,     // "New Length"
    kLengthSameAs = 2,  // "Same Length as"
    kLengthCount = 3,   // "Count"
};

// The factor an operation receives from the length options: the factor itself, the new
// length or the time of the "Same Length as" wave divided by the current length, and 0 for
// anything else. A current length of 0 also gives 0: there is nothing to scale.
double lengthFactor(std::uint8_t kind, double factor, double newLengthSeconds,
                    double sameAsSeconds, double currentSeconds);
template <class R>
double lengthFactorOf(const R& r, double sameAsSeconds, double currentSeconds) {
    return lengthFactor(r.lengthKind, r.lengthFactor.value, r.newLength.value, sameAsSeconds,
                        currentSeconds);
}

struct VolumeRecord {
    VolumeRecord();
    static const RecordTable<VolumeRecord>& table();
    std::uint8_t kind;  // ConstEnv
    std::string envelope;
    ValueRecord factor;
};

struct SilenceRecord {
    SilenceRecord();
    static const RecordTable<SilenceRecord>& table();
    ValueRecord length;
};

struct LineRecord {
    enum : std::uint8_t { kLinear = 0, kExponential = 1 };
    LineRecord();
    static const RecordTable<LineRecord>& table();
    ValueRecord beginValue;
    ValueRecord endValue;
    ValueRecord length;
    std::uint8_t kind;
};

struct NoiseRecord {
    NoiseRecord();
    static const RecordTable<NoiseRecord>& table();
    ValueRecord volume;
    ValueRecord length;
};

struct RotateRecord {
    enum : std::uint8_t { kByFactor = 0, kByTime = 1 };
    enum : std::uint8_t { kLeft = 0, kRight = 1 };
    RotateRecord();
    static const RecordTable<RotateRecord>& table();
    ValueRecord factor;  // phase
    ValueRecord time;
    std::uint8_t kind;
    std::uint8_t shiftTo;
};

struct BlockRecord {
    enum : std::uint8_t { kCount = 0, kTimeOrHeight = 1, kNoChange = 2 };
    BlockRecord();
    static const RecordTable<BlockRecord>& table();
    std::uint8_t horizontal;
    std::int32_t horizontalCount;
    ValueRecord time;
    std::uint8_t vertical;
    std::int32_t verticalCount;
    ValueRecord height;
};

struct BlockTriangleRecord {
    enum : std::uint8_t { bloTriTime = 0, bloTriFreq = 1 };
    enum : std::uint8_t { kMiddleConstant = 0, kMiddleEnvelope = 1 };
    BlockTriangleRecord();
    static const RecordTable<BlockTriangleRecord>& table();

    bool HasMiddleEnvelope() const { return middleKind == kMiddleEnvelope; }
    // Each getter belongs to one mode; using it in the other is a programming error.
    double getMiddle() const;
    double getTime1() const;
    double getTime2() const;

    ValueRecord height1;
    ValueRecord height2;
    ValueRecord frequency;  // kept as its period
    ValueRecord middle;     // phase
    std::string middleEnvelope;
    std::uint8_t middleKind;
    ValueRecord time1;
    ValueRecord time2;
    std::uint8_t BloTriHorKind;
    std::uint8_t lengthKind;
    ValueRecord lengthFactor;
    ValueRecord newLength;
    std::string sameAs;
    std::int32_t lengthCount;
    ValueRecord startPosition;  // phase
};

struct SinusRecord {
    enum : std::uint8_t { kByLength = 0, kByCount = 1 };
    SinusRecord();
    static const RecordTable<SinusRecord>& table();
    ValueRecord amplitude;
    ValueRecord frequency;
    ValueRecord startPhase;
    ValueRecord length;
    ValueRecord count;  // a factor: periods may be fractional
    std::uint8_t kind;
};

struct RollInRecord {
    enum : std::uint8_t { kStartAt = 0, kEndAt = 1 };
    RollInRecord();
    static const RecordTable<RollInRecord>& table();
    ValueRecord length;
    std::uint8_t placement;
    ValueRecord startAt;
    ValueRecord endAt;
};

struct UpRecord {
    UpRecord();
    static const RecordTable<UpRecord>& table();
    ValueRecord addValue;
};

struct LeftRightRecord {
    LeftRightRecord();
    static const RecordTable<LeftRightRecord>& table();
    ValueRecord leftToLeft;
    ValueRecord leftToRight;
    ValueRecord rightToLeft;
    ValueRecord rightToRight;
};

struct ResNotchRecord {
    ResNotchRecord();
    static const RecordTable<ResNotchRecord>& table();
    std::uint8_t frequencyKind;  // ConstEnv
    ValueRecord frequency;       // kept as its period
    std::string frequencyEnvelope;
    std::uint8_t widthKind;  // ConstEnv
    ValueRecord width;
    std::string widthEnvelope;
};

struct PerEchoRecord {
    PerEchoRecord();
    static const RecordTable<PerEchoRecord>& table();
    ValueRecord time;
    bool timeHasEnvelope;
    std::string timeEnvelope;
    std::uint8_t volumeKind;  // ConstEnv
    ValueRecord volume;
    std::string volumeEnvelope;
    std::int32_t count;
};

struct HighLowRecord {
    HighLowRecord();
    static const RecordTable<HighLowRecord>& table();
    std::uint8_t frequencyKind;  // ConstEnv
    std::string frequencyEnvelope;
    ValueRecord frequency;  // kept as its period
    ValueRecord volume;
    std::int32_t count;
    bool maximize;
};

struct BlockFilterRecord {
    BlockFilterRecord();
    static const RecordTable<BlockFilterRecord>& table();
    ValueRecord time;
    bool hasEnvelope;
    std::string envelope;
};

struct BalanceRecord {
    enum : std::uint8_t { kNone = 0, kVolume = 1, kFilter = 2 };
    BalanceRecord();
    static const RecordTable<BalanceRecord>& table();
    std::uint8_t directionKind;  // ConstEnv
    ValueRecord direction;
    std::string directionEnvelope;
    std::uint8_t volumeDifference;
    bool timeDifference;
};

struct MixRecord {
    enum : std::uint8_t { kAlignBegin = 0, kAlignEnd = 1, kStretch = 2 };
    MixRecord();
    static const RecordTable<MixRecord>& table();
    std::uint8_t place;
};

struct TempoPitchRecord {
    enum : std::uint8_t { kLow = 0, kHigh = 1 };
    TempoPitchRecord();
    static const RecordTable<TempoPitchRecord>& table();
    ValueRecord frequencyFactor;
    bool frequencyHasEnvelope;
    std::string frequencyEnvelope;
    ValueRecord speedFactor;
    bool speedHasEnvelope;
    std::string speedEnvelope;
    std::uint8_t lengthKind;
    ValueRecord lengthFactor;
    ValueRecord newLength;
    std::string sameAs;
    std::int32_t lengthCount;
    ValueRecord startPosition;
    std::uint8_t quality;
    ValueRecord blockSize;
};

struct RollOutRecord {
    RollOutRecord();
    static const RecordTable<RollOutRecord>& table();
    ValueRecord speedFactor;
    bool speedHasEnvelope;
    std::string speedEnvelope;
    std::uint8_t lengthKind;
    ValueRecord lengthFactor;
    ValueRecord newLength;
    std::string sameAs;
    std::int32_t lengthCount;
    ValueRecord startPosition;
};

struct LengthRecord {
    LengthRecord();
    static const RecordTable<LengthRecord>& table();
    std::uint8_t lengthKind;
    ValueRecord lengthFactor;
    ValueRecord newLength;
    std::string sameAs;
};

// One property of a random echo: how it is chosen, which die drives it, and its envelope.
struct RandomEchoRecord {
    RandomEchoRecord();
    static const RecordTable<RandomEchoRecord>& table();
    std::int32_t count;
    std::int32_t seed;
    std::uint8_t timeKind;  // "Linear" / "Random Envelope"
    std::uint8_t timeDie;
    std::string timeEnvelope;
    ValueRecord timeDifference;
    std::uint8_t volumeKind;  // "No Change" / "Linear" / "Random Envelope"
    std::uint8_t volumeDie;
    std::string volumeEnvelope;
    std::uint8_t lengthKind;  // "No Change" / "Random Envelope"
    std::uint8_t lengthDie;
    std::string lengthEnvelope;
    std::uint8_t balanceKind;  // "No Change" / "Linear" / "Random Envelope"
    std::uint8_t balanceDie;
    std::string balanceEnvelope;
    std::uint8_t balanceVolumeDifference;  // BalanceRecord::kNone / kVolume / kFilter
    bool balanceTimeDifference;
    std::uint8_t pitchKind;  // "No Change" / "Random Envelope"
    std::uint8_t pitchDie;
    std::string pitchEnvelope;
    ValueRecord pitchFactor;
    std::uint8_t tempoKind;  // "No Change" / "Random Envelope"
    std::uint8_t tempoDie;
    std::string tempoEnvelope;
    bool cyclable;
    std::uint8_t quality;  // TempoPitchRecord::kLow / kHigh
    ValueRecord blockSize;
};

struct DistortRecord {
    DistortRecord();
    static const RecordTable<DistortRecord>& table();
    std::string envelope;
};

// One frequency of the multi-frequency generator. Each field has a "Default" box; while it
// is checked the field takes its default, whatever its edit field holds.
struct FrequencyRecord {
    FrequencyRecord();
    static const RecordTable<FrequencyRecord>& table();
    // The generator's form of the record.
    MFreqPartial partial() const;

    ValueRecord startVolume;
    bool defVolume;
    ValueRecord frequency;  // kept as its period
    bool defFrequency;
    ValueRecord startAngle;
    bool defAngle;
    ValueRecord volumeFactor;
    bool defVolFact;
    ValueRecord volumeFactorTime;
    bool defVolFactTime;
};

struct MFreqRecord {
    enum : std::uint8_t { kSinus = 0, kWaveForm = 1 };
    MFreqRecord();
    static const RecordTable<MFreqRecord>& table();
    // The generator's form of the list (only once its editing is closed).
    std::vector<MFreqPartial> partials() const;
    ValueRecord length;
    std::uint8_t use;
    std::string waveForm;
    RecordBrowser<FrequencyRecord> frequencies;
};

// Replaces the list by one record per entry, each starting from the defaults with its typed
// fields applied (the command line's way to give the frequencies). The first failing entry
// is reported as its dialog would; the list is unchanged then. At least one entry.
std::optional<FormError> setFrequencies(MFreqRecord& record,
                                        const std::vector<TypedFields>& entries,
                                        const FormContext& context);

}  // namespace orv
