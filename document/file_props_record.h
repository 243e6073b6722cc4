// The record of the "Wave Properties" dialog: the format of a new document, or the one an
// existing document is converted to.
#pragma once

#include <cstdint>

#include "core/sound.h"
#include "document/field_table.h"
#include "document/record_form.h"

namespace orv {

struct WaveFilePropsRecord {
    enum : std::uint8_t { k8Bits = 0, k16Bits = 1 };
    enum : std::uint8_t { kMono = 0, kStereo = 1 };
    WaveFilePropsRecord();
    explicit WaveFilePropsRecord(const WaveFileProps& props);
    static const RecordTable<WaveFilePropsRecord>& table();

    WaveFileProps props() const;

    std::int32_t freq;  // one of the listed frequencies, or the file's own
    std::uint8_t bits;
    std::uint8_t channels;
};

}  // namespace orv
