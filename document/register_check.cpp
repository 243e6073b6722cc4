#include "document/register_check.h"

namespace orv {

std::string nameInUseMessage(std::string_view name) {
    std::string text = "A wave with name \"";
    text += name;
    text += "\" already exists.";
    return text;
}

std::optional<FormError> checkRegisterName(std::string_view newName, std::string_view ownName,
                                           const WaveNameLookup& names) {
    if (newName.empty() || newName == ownName || !names.waveExists(newName)) return std::nullopt;
    FormError e;
    e.caption = std::string(kRegisterErrorCaption);
    e.message = nameInUseMessage(newName);
    return e;
}

RegisterRecord::RegisterRecord() { table().applyDefaults(*this); }
const RecordTable<RegisterRecord>& RegisterRecord::table() {
    using R = RegisterRecord;
    static const RecordTable<R> t("Register", 24, {
        textField("Name:", &R::name),
    });
    return t;
}

}  // namespace orv
