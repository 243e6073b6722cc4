// Helpers shared by the document tests: units from literal samples, a window that logs what a
// unit asks of it, a fixed list of registered names, and a workspace fixture.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <sys/stat.h>
#include <vector>

#include "document/workspace.h"
#include "support/core_test_helpers.h"
#include "support/recording_platform.h"

namespace orv::test {

using Lines = std::vector<std::string>;

inline Samples samplesOf(const TUnitWave& u) { return samplesOf(u.getSound()->GetLeftWave()); }
inline Samples rampOf(int n) {
    Samples v(n);
    for (int i = 0; i < n; ++i) v[i] = i;
    return v;
}
inline void select(TUnitWave& u, std::int32_t cursor, std::int32_t end) {
    u.setCursor(cursor);
    u.setSelEnd(end);
}
// The cursor and the other end of the part; the part from its lower end.
using Ends = std::pair<std::int32_t, std::int32_t>;
inline Ends marks(const TUnitWave& u) { return {u.getCursor(), u.getSelEndPos()}; }
inline Ends part(const TUnitWave& u) { return {u.selBegin(), u.selEnd()}; }

// Every field of a record as its form shows it, " | " between them.
template <class Form, class Record>
std::string shownFields(Record& r) {
    Form form(r);
    const FormState s = form.show(nullptr);
    std::string out;
    for (std::size_t i = 0; i < s.fields.size(); ++i)
        out += (i ? " | " : "") + shownValue(form.spec(), s, int(i));
    return out;
}

// Logs every request of a unit to its window, in order. Attached with attach(), it lets go
// of the unit when either of the two goes first.
struct RecordingView : WaveView {
    RecordingView() = default;
    RecordingView(const RecordingView&) = delete;
    RecordingView& operator=(const RecordingView&) = delete;
    ~RecordingView() override {
        if (unit && unit->getView() == this) unit->setView(nullptr);
    }
    void attach(TUnitWave& u) {
        u.setView(this);
        unit = &u;
    }
    void unitGone() override {
        calls.push_back("gone");
        unit = nullptr;
    }
    TUnitWave* unit = nullptr;
    Lines calls;
    void repaint(std::int32_t b, std::int32_t e) override {
        calls.push_back("repaint " + std::to_string(b) + " " + std::to_string(e));
    }
    void repaintAll() override { calls.push_back("repaintAll"); }
    void moveCursor(std::int32_t p) override { calls.push_back("cursor " + std::to_string(p)); }
    void showRange(std::int32_t b, std::int32_t e) override {
        calls.push_back("show " + std::to_string(b) + " " + std::to_string(e));
    }
    void refreshStatus(const TUnitWave&) override { calls.push_back("status"); }
};

// A fresh folder under /tmp, removed with everything in it (even after a chmod) at the end.
class TempDir {
public:
    TempDir() {
        char tmpl[] = "/tmp/orv-doc-test-XXXXXX";
        if (::mkdtemp(tmpl)) path_ = tmpl;
    }
    ~TempDir() {
        ::chmod(path_.c_str(), 0700);
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

class Names : public WaveNameLookup {
public:
    explicit Names(Lines n) : names_(std::move(n)) {}
    bool waveExists(std::string_view name) const override {
        for (const std::string& n : names_)
            if (n == name) return true;
        return false;
    }

private:
    Lines names_;
};

// A workspace with a recording platform; `load` adds a saved mono document at 1000 Hz.
class WorkspaceFixture : public ::testing::Test {
protected:
    TUnitWave& load(const Samples& v, std::uint16_t bytes = 2, const std::string& file = "a.wav",
                    std::int32_t freq = 1000) {
        return ws.add(std::make_unique<TUnitWave>(mono(v, freq), bytes, file));
    }
    bool run(std::string_view action, const TypedFields& fields = {}) {
        return ws.runAction(action, fields).ok();
    }
    const std::vector<ShownMessage>& shown() const { return rec.recorder.messages; }
    RecordingPlatformScope rec;
    Workspace ws;
};

}  // namespace orv::test
