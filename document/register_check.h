// Giving a wave a name (registering it), from the "Register" dialog or the name field of
// the tool bar. The empty name is always accepted and unregisters the wave; the wave's own
// name is accepted again; a name that another wave bears is refused.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "document/field_table.h"
#include "document/record_form.h"

namespace orv {

inline constexpr std::string_view kRegisterErrorCaption = "Error";

// "A wave with name \"<name>\" already exists."
std::string nameInUseMessage(std::string_view name);

// The refusal (caption "Error", no field) or nothing when `newName` may be given to the
// wave now named `ownName`.
std::optional<FormError> checkRegisterName(std::string_view newName, std::string_view ownName,
                                           const WaveNameLookup& names);

// The record of the "Register" dialog.
struct RegisterRecord {
    RegisterRecord();
    explicit RegisterRecord(std::string_view current) : name(current) {}
    static const RecordTable<RegisterRecord>& table();
    std::string name;
};

}  // namespace orv
