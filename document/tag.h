// A tag list: a few named, typed values that one part of the program fills and another
// reads, so that a request can carry optional arguments with defaults (the save and play
// requests of a document are built this way). Asking for a tag with another type than it
// was added with is a programming error and stops the program.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "core/sample_value.h"

namespace orv {

enum TagType : std::uint8_t {
    kTagInt = 0,
    kTagDouble = 1,
    kTagLong = 2,
    kTagWaveVal = 3,
    kTagString = 4,
    kTagPointer = 5,
};

// The name of a type code as the tag error message spells it.
std::string_view tagTypeName(std::uint8_t type);

class TagList {
public:
    explicit TagList(std::int32_t listData = 0) : listData_(listData) {}
    ~TagList();
    TagList(const TagList&) = delete;
    TagList& operator=(const TagList&) = delete;

    // Each add returns false and changes nothing when a tag of that name is already present.
    bool addInt(std::string_view name, int value);
    bool addDouble(std::string_view name, double value);
    bool addLong(std::string_view name, std::int32_t value);
    bool addWaveVal(std::string_view name, WaveVal value);
    bool addString(std::string_view name, std::string_view value);
    bool addPointer(std::string_view name, void* value);

    // Each get returns the newest tag of that name, or `def` when there is none.
    int getInt(std::string_view name, int def) const;
    double getDouble(std::string_view name, double def) const;
    std::int32_t getLong(std::string_view name, std::int32_t def) const;
    WaveVal getWaveVal(std::string_view name, WaveVal def) const;
    std::string getString(std::string_view name, std::string_view def) const;
    void* getPointer(std::string_view name, void* def) const;

    bool has(std::string_view name) const { return find(name) != nullptr; }
    std::int32_t listData() const { return listData_; }

private:
    using Value = std::variant<int, double, std::int32_t, WaveVal, std::string, void*>;
    struct Tag {
        std::uint8_t type;
        std::string name;
        Value value;
        Tag* next;
        std::uint8_t owned;
        std::int32_t listData;
    };

    const Tag* find(std::string_view name) const;
    bool add(std::string_view name, Value value, std::uint8_t type);
    // Finds the tag and checks its type; a mismatch reports the internal error and stops.
    const Tag* lookup(std::string_view name, std::uint8_t expected) const;

    Tag* newest_ = nullptr;
    std::int32_t listData_;
};

}  // namespace orv
