#include "document/record_browser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "document/records.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

// Hooks over the frequency record's form that also log the deletions.
class Hooks : public FormBrowserHooks<FrequencyRecord> {
public:
    void beforeDelete(const FrequencyRecord& r) override { deleted.push_back(r.startVolume.value); }
    std::vector<double> deleted;
    std::string shownVolume() const { return controls.fields[0].text; }
};

// A browser over records with the given start volumes, opened on its hooks.
struct Opened {
    explicit Opened(const std::vector<double>& volumes) {
        std::vector<FrequencyRecord> rs;
        for (double v : volumes) {
            rs.emplace_back();
            rs.back().startVolume.value = v;
        }
        b = RecordBrowser<FrequencyRecord>(rs);
        b.open(h);
    }
    Hooks h;
    RecordBrowser<FrequencyRecord> b;
};

// Values read back from their texts ("0.3" is 3 x 10^-1) may differ in the last bit.
void expectVolumes(const RecordBrowser<FrequencyRecord>& b, const std::vector<double>& want) {
    ASSERT_EQ(b.records().size(), want.size());
    for (std::size_t i = 0; i < want.size(); ++i)
        EXPECT_DOUBLE_EQ(b.records()[i].startVolume.value, want[i]) << i;
}

// count, 1-based cursor, back, forward, delete, paste
void expectButtons(const BrowserUpdate& u, int count, int cursor, bool back, bool forward,
                   bool del, bool paste) {
    EXPECT_EQ((std::vector<int>{u.count, u.cursor, u.canGoBack, u.canGoForward, u.canDelete,
                                u.canPaste}),
              (std::vector<int>{count, cursor, back, forward, del, paste}));
}

TEST(RecordBrowser, EditsAreStoredWhenMovingAndOnClose) {
    RecordBrowser<FrequencyRecord> b;
    Hooks h;
    b.open(h);
    expectButtons(h.shown, 1, 1, false, false, false, false);
    EXPECT_EQ(h.controls.fields[2].text, "1 kHz");
    ASSERT_FALSE(h.set("Start Volume", "0.1"));
    ASSERT_TRUE(b.append());
    expectButtons(h.shown, 2, 2, true, false, true, false);
    EXPECT_EQ(h.shownVolume(), "0.5");  // the new record's defaults
    ASSERT_FALSE(h.set("Start Volume", "0.2"));
    ASSERT_TRUE(b.first());
    EXPECT_EQ(h.shownVolume(), "0.1");
    expectButtons(h.shown, 2, 1, false, true, true, false);
    ASSERT_TRUE(b.last());
    ASSERT_FALSE(h.set("Start Volume", "0.3"));
    ASSERT_TRUE(b.close());
    EXPECT_FALSE(b.isOpen());
    expectVolumes(b, {0.1, 0.3});
}

TEST(RecordBrowser, AnInvalidFieldKeepsTheCursorAndShowsTheMessage) {
    test::RecordingPlatformScope rec;
    Opened o({0.1, 0.2});
    ASSERT_FALSE(o.h.set("Volume Factor", "0"));
    EXPECT_FALSE(o.b.next());
    EXPECT_EQ(o.b.cursor(), 0);
    ASSERT_EQ(rec.recorder.messages.size(), 1u);
    EXPECT_EQ(rec.recorder.messages[0].caption, "Input Error");
    EXPECT_EQ(rec.recorder.messages[0].text,
              "In Volume Factor: Value must be positive and more than 0.");
    EXPECT_FALSE(o.b.close());
    ASSERT_FALSE(o.h.set("Volume Factor", "0.5"));
    EXPECT_TRUE(o.b.next());
    EXPECT_EQ(o.b.cursor(), 1);
}

TEST(RecordBrowser, InsertPutsADefaultRecordAtTheCursor) {
    Opened o({0.1, 0.2});
    ASSERT_TRUE(o.b.next());
    ASSERT_TRUE(o.b.insert());
    expectButtons(o.h.shown, 3, 2, true, true, true, false);
    ASSERT_FALSE(o.h.set("Start Volume", "0.15"));
    ASSERT_TRUE(o.b.first());
    ASSERT_TRUE(o.b.insert());  // before the head: becomes the new head
    ASSERT_TRUE(o.b.close());
    expectVolumes(o.b, {0.5, 0.1, 0.15, 0.2});
}

TEST(RecordBrowser, DeleteCursorRules) {
    {  // the last: the new last is shown, and edits of the deleted record go with it
        Opened o({0.1, 0.2, 0.3});
        ASSERT_TRUE(o.b.last());
        ASSERT_FALSE(o.h.set("Start Volume", "0.9"));
        o.b.remove();
        EXPECT_EQ(o.h.deleted, std::vector<double>{0.3});
        EXPECT_EQ(o.h.shownVolume(), "0.2");
        expectButtons(o.h.shown, 2, 2, true, false, true, false);
        ASSERT_TRUE(o.b.close());
        expectVolumes(o.b, {0.1, 0.2});
    }
    {  // the first: the head moves, the cursor stays 0
        Opened o({0.1, 0.2, 0.3});
        o.b.remove();
        EXPECT_EQ(o.h.shownVolume(), "0.2");
        expectButtons(o.h.shown, 2, 1, false, true, true, false);
    }
    {  // the middle: the following record at the same index; then the last: back to the first
        Opened o({0.1, 0.2, 0.3});
        ASSERT_TRUE(o.b.next());
        o.b.remove();
        EXPECT_EQ(o.h.shownVolume(), "0.3");
        expectButtons(o.h.shown, 2, 2, true, false, true, false);
        o.b.remove();
        EXPECT_EQ(o.h.shownVolume(), "0.1");
        expectButtons(o.h.shown, 1, 1, false, false, false, false);
        EXPECT_EQ(o.h.deleted, (std::vector<double>{0.2, 0.3}));
    }
}

TEST(RecordBrowser, PasteAfterACopyReplacesTheCurrentRecordAndClearResetsIt) {
    Opened o({0.1, 0.2, 0.3});
    EXPECT_FALSE(o.h.shown.canPaste);
    ASSERT_FALSE(o.h.set("Frequency", "440 Hz"));
    ASSERT_TRUE(o.b.copy());  // the copy takes the fields as typed
    EXPECT_TRUE(o.h.shown.canPaste);
    ASSERT_TRUE(o.b.next());
    o.b.paste();
    EXPECT_EQ(o.h.controls.fields[2].text, "440 Hz");
    ASSERT_TRUE(o.b.next());
    o.b.clear();
    EXPECT_EQ(o.h.shownVolume(), "0.5");
    ASSERT_TRUE(o.b.close());
    std::vector<FrequencyRecord> rs = o.b.records();
    EXPECT_DOUBLE_EQ(rs[0].frequency.value, 1.0 / 440);
    EXPECT_DOUBLE_EQ(rs[1].frequency.value, 1.0 / 440);
    expectVolumes(o.b, {0.1, 0.1, 0.5});
}

TEST(RecordBrowser, CopiesKeepTheCursorAndAreIndependent) {
    Opened o({0.1, 0.2, 0.3});
    ASSERT_TRUE(o.b.last());
    ASSERT_TRUE(o.b.close());
    MFreqRecord m;
    m.frequencies = o.b;
    MFreqRecord copy = m;
    EXPECT_EQ(copy.frequencies.cursor(), 2);
    Hooks h2;
    copy.frequencies.open(h2);
    EXPECT_EQ(h2.shownVolume(), "0.3");
    copy.frequencies.remove();
    ASSERT_TRUE(copy.frequencies.close());
    expectVolumes(copy.frequencies, {0.1, 0.2});
    expectVolumes(m.frequencies, {0.1, 0.2, 0.3});
    auto same = [](const FrequencyRecord& x, const FrequencyRecord& y) {
        return x.startVolume.value == y.startVolume.value;
    };
    EXPECT_TRUE(m.frequencies.sameRecords(o.b, same));
    EXPECT_FALSE(m.frequencies.sameRecords(copy.frequencies, same));
}

TEST(RecordBrowserDeathTest, MisuseAsserts) {
    Opened o({0.1, 0.2});
    EXPECT_DEATH(o.b.count(), "Assertion failed: !IsOpen, unit rbrowser");
    EXPECT_DEATH(o.b.previous(), "Assertion failed: Cursor > 0, unit rbrowser");
    Opened one({0.1});
    EXPECT_DEATH(one.b.remove(), "Assertion failed: Count >= 2, unit rbrowser");
}

}  // namespace
}  // namespace orv
