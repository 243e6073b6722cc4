#include "document/tag.h"

#include <string>

#include "core/platform.h"

namespace orv {

std::string_view tagTypeName(std::uint8_t type) {
    switch (type) {
        case kTagInt: return "int";
        case kTagDouble: return "double";
        case kTagLong: return "long";
        case kTagWaveVal: return "WaveVal";
        case kTagString: return "string";
        case kTagPointer: return "*<type>";
        default: return "<onbekende type!>";
    }
}

TagList::~TagList() {
    // Newest first; every tag owns its value (held inline here) and its name.
    while (newest_) {
        Tag* next = newest_->next;
        delete newest_;
        newest_ = next;
    }
}

const TagList::Tag* TagList::find(std::string_view name) const {
    for (const Tag* t = newest_; t; t = t->next)
        if (t->name == name) return t;
    return nullptr;
}

bool TagList::add(std::string_view name, Value value, std::uint8_t type) {
    // A refused value is simply dropped with `value`; nothing leaks.
    if (find(name)) return false;
    newest_ = new Tag{type, std::string(name), std::move(value), newest_, 1, listData_};
    return true;
}

const TagList::Tag* TagList::lookup(std::string_view name, std::uint8_t expected) const {
    const Tag* t = find(name);
    if (t && t->type != expected) {
        std::string text = "Tag \"";
        text += name;
        text += "\" has type ";
        text += tagTypeName(t->type);
        text += " but type ";
        text += tagTypeName(expected);
        text += " is expected.";
        showMessage("Tag Error (Internal)", text, MessageIcon::Stop);
        ORV_ASSERT(false, "tag");
    }
    return t;
}

bool TagList::addInt(std::string_view name, int value) { return add(name, Value(std::in_place_index<0>, value), kTagInt); }
bool TagList::addDouble(std::string_view name, double value) { return add(name, Value(std::in_place_index<1>, value), kTagDouble); }
bool TagList::addLong(std::string_view name, std::int32_t value) {
    return add(name, Value(std::in_place_index<2>, value), kTagLong);
}
bool TagList::addWaveVal(std::string_view name, WaveVal value) {
    return add(name, Value(std::in_place_index<3>, value), kTagWaveVal);
}
bool TagList::addString(std::string_view name, std::string_view value) {
    return add(name, Value(std::in_place_index<4>, std::string(value)), kTagString);
}
bool TagList::addPointer(std::string_view name, void* value) {
    return add(name, Value(std::in_place_index<5>, value), kTagPointer);
}

int TagList::getInt(std::string_view name, int def) const {
    const Tag* t = lookup(name, kTagInt);
    return t ? std::get<0>(t->value) : def;
}
double TagList::getDouble(std::string_view name, double def) const {
    const Tag* t = lookup(name, kTagDouble);
    return t ? std::get<1>(t->value) : def;
}
std::int32_t TagList::getLong(std::string_view name, std::int32_t def) const {
    const Tag* t = lookup(name, kTagLong);
    return t ? std::get<2>(t->value) : def;
}
WaveVal TagList::getWaveVal(std::string_view name, WaveVal def) const {
    const Tag* t = lookup(name, kTagWaveVal);
    return t ? std::get<3>(t->value) : def;
}
std::string TagList::getString(std::string_view name, std::string_view def) const {
    const Tag* t = lookup(name, kTagString);
    return t ? std::get<4>(t->value) : std::string(def);
}
void* TagList::getPointer(std::string_view name, void* def) const {
    const Tag* t = lookup(name, kTagPointer);
    return t ? std::get<5>(t->value) : def;
}

}  // namespace orv
