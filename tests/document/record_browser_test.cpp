#include "document/record_browser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "document/records.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

// Hooks over the frequency record's form that also log the deletions and moves.
class Hooks : public FormBrowserHooks<FrequencyRecord> {
public:
    void beforeDelete(const FrequencyRecord& r) override { deleted.push_back(r.startVolume.value); }
    void goneTo(int index) override { moves.push_back(index); }
    std::vector<double> deleted;
    std::vector<int> moves;
};

FrequencyRecord withVolume(double v) {
    FrequencyRecord r;
    r.startVolume.value = v;
    return r;
}

// Values read back from their texts ("0.3" is 3 x 10^-1) may differ in the last bit.
void expectVolumes(const std::vector<double>& got, const std::vector<double>& want) {
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < got.size(); ++i) EXPECT_DOUBLE_EQ(got[i], want[i]) << i;
}

std::vector<double> volumes(const RecordBrowser<FrequencyRecord>& b) {
    std::vector<double> out;
    for (const FrequencyRecord& r : b.records()) out.push_back(r.startVolume.value);
    return out;
}

void expectUpdate(const BrowserUpdate& u, int count, int cursor, bool back, bool forward,
                  bool del, bool paste) {
    EXPECT_EQ(u.count, count);
    EXPECT_EQ(u.cursor, cursor);
    EXPECT_EQ(u.canGoBack, back);
    EXPECT_EQ(u.canGoForward, forward);
    EXPECT_EQ(u.canDelete, del);
    EXPECT_EQ(u.canPaste, paste);
}

TEST(RecordBrowser, ANewListHoldsOneDefaultRecordWithEverythingDisabled) {
    RecordBrowser<FrequencyRecord> b;
    Hooks h;
    b.open(h);
    expectUpdate(h.shown, 1, 1, false, false, false, false);
    EXPECT_EQ(h.controls.fields[0].text, "0.5");
    EXPECT_EQ(h.controls.fields[2].text, "1 kHz");
}

TEST(RecordBrowser, EditsAreStoredWhenMovingAndOnClose) {
    RecordBrowser<FrequencyRecord> b;
    Hooks h;
    b.open(h);
    ASSERT_FALSE(h.set("Start Volume", "0.1"));
    ASSERT_TRUE(b.append());
    expectUpdate(h.shown, 2, 2, true, false, true, false);
    EXPECT_EQ(h.controls.fields[0].text, "0.5");  // the new record's defaults
    ASSERT_FALSE(h.set("Start Volume", "0.2"));
    ASSERT_TRUE(b.first());
    EXPECT_EQ(h.controls.fields[0].text, "0.1");
    expectUpdate(h.shown, 2, 1, false, true, true, false);
    ASSERT_TRUE(b.last());
    ASSERT_FALSE(h.set("Start Volume", "0.3"));
    ASSERT_TRUE(b.close());
    EXPECT_FALSE(b.isOpen());
    EXPECT_EQ(b.count(), 2);
    expectVolumes(volumes(b), {0.1, 0.3});
}

TEST(RecordBrowser, AnInvalidFieldKeepsTheCursorAndShowsTheMessage) {
    test::RecordingPlatformScope rec;
    RecordBrowser<FrequencyRecord> b({withVolume(0.1), withVolume(0.2)});
    Hooks h;
    b.open(h);
    ASSERT_FALSE(h.set("Volume Factor", "0"));
    EXPECT_FALSE(b.next());
    EXPECT_EQ(b.cursor(), 0);
    ASSERT_EQ(rec.recorder.messages.size(), 1u);
    EXPECT_EQ(rec.recorder.messages[0].caption, "Input Error");
    EXPECT_EQ(rec.recorder.messages[0].text,
              "In Volume Factor: Value must be positive and more than 0.");
    EXPECT_FALSE(b.close());
    EXPECT_TRUE(b.isOpen());
    ASSERT_FALSE(h.set("Volume Factor", "0.5"));
    EXPECT_TRUE(b.next());
    EXPECT_EQ(b.cursor(), 1);
}

TEST(RecordBrowser, InsertPutsADefaultRecordAtTheCursor) {
    RecordBrowser<FrequencyRecord> b({withVolume(0.1), withVolume(0.2)});
    Hooks h;
    b.open(h);
    ASSERT_TRUE(b.next());
    ASSERT_TRUE(b.insert());
    expectUpdate(h.shown, 3, 2, true, true, true, false);
    ASSERT_FALSE(h.set("Start Volume", "0.15"));
    ASSERT_TRUE(b.first());
    ASSERT_TRUE(b.insert());  // before the head: becomes the new head
    ASSERT_TRUE(b.close());
    expectVolumes(volumes(b), {0.5, 0.1, 0.15, 0.2});
}

TEST(RecordBrowser, DeletingTheLastRecordMovesToTheNewLast) {
    RecordBrowser<FrequencyRecord> b({withVolume(0.1), withVolume(0.2), withVolume(0.3)});
    Hooks h;
    b.open(h);
    ASSERT_TRUE(b.last());
    ASSERT_FALSE(h.set("Start Volume", "0.9"));  // edits of a deleted record go with it
    b.remove();
    expectVolumes(h.deleted, {0.3});
    EXPECT_EQ(b.cursor(), 1);
    EXPECT_EQ(h.controls.fields[0].text, "0.2");
    expectUpdate(h.shown, 2, 2, true, false, true, false);
    ASSERT_TRUE(b.close());
    expectVolumes(volumes(b), {0.1, 0.2});
}

TEST(RecordBrowser, DeletingTheFirstRecordMovesTheHeadAndKeepsCursorZero) {
    RecordBrowser<FrequencyRecord> b({withVolume(0.1), withVolume(0.2), withVolume(0.3)});
    Hooks h;
    b.open(h);
    b.remove();
    EXPECT_EQ(b.cursor(), 0);
    EXPECT_EQ(h.controls.fields[0].text, "0.2");
    expectUpdate(h.shown, 2, 1, false, true, true, false);
    ASSERT_TRUE(b.next());
    EXPECT_EQ(h.controls.fields[0].text, "0.3");
    ASSERT_TRUE(b.close());
    expectVolumes(volumes(b), {0.2, 0.3});
}

TEST(RecordBrowser, DeletingInTheMiddleShowsTheFollowingRecordAtTheSameIndex) {
    RecordBrowser<FrequencyRecord> b({withVolume(0.1), withVolume(0.2), withVolume(0.3)});
    Hooks h;
    b.open(h);
    ASSERT_TRUE(b.next());
    b.remove();
    EXPECT_EQ(b.cursor(), 1);
    EXPECT_EQ(h.controls.fields[0].text, "0.3");
    b.remove();  // now the last one: back to the first
    EXPECT_EQ(b.cursor(), 0);
    EXPECT_EQ(h.controls.fields[0].text, "0.1");
    expectUpdate(h.shown, 1, 1, false, false, false, false);
    expectVolumes(h.deleted, {0.2, 0.3});
}

TEST(RecordBrowser, PasteIsOfferedOnlyAfterACopyAndReplacesTheCurrentRecord) {
    RecordBrowser<FrequencyRecord> b({withVolume(0.1), withVolume(0.2)});
    Hooks h;
    b.open(h);
    EXPECT_FALSE(h.shown.canPaste);
    ASSERT_FALSE(h.set("Frequency", "440 Hz"));
    ASSERT_TRUE(b.copy());  // the copy takes the fields as typed
    EXPECT_TRUE(h.shown.canPaste);
    ASSERT_TRUE(b.next());
    b.paste();
    EXPECT_EQ(h.controls.fields[0].text, "0.1");
    EXPECT_EQ(h.controls.fields[2].text, "440 Hz");
    ASSERT_TRUE(b.close());
    std::vector<FrequencyRecord> rs = b.records();
    EXPECT_DOUBLE_EQ(rs[0].frequency.value, 1.0 / 440);
    EXPECT_DOUBLE_EQ(rs[1].frequency.value, 1.0 / 440);
    EXPECT_EQ(rs[1].startVolume.value, 0.1);
}

TEST(RecordBrowser, ClearResetsOnlyTheCurrentRecord) {
    RecordBrowser<FrequencyRecord> b({withVolume(0.1), withVolume(0.2)});
    Hooks h;
    b.open(h);
    b.clear();
    EXPECT_EQ(h.controls.fields[0].text, "0.5");
    ASSERT_TRUE(b.close());
    expectVolumes(volumes(b), {0.5, 0.2});
}

TEST(RecordBrowser, CopiesKeepTheCursorAndAreIndependent) {
    RecordBrowser<FrequencyRecord> b({withVolume(0.1), withVolume(0.2), withVolume(0.3)});
    Hooks h;
    b.open(h);
    ASSERT_TRUE(b.last());
    ASSERT_TRUE(b.close());
    MFreqRecord m;
    m.frequencies = b;
    MFreqRecord copy = m;
    EXPECT_EQ(copy.frequencies.cursor(), 2);
    EXPECT_EQ(copy.frequencies.count(), 3);
    Hooks h2;
    copy.frequencies.open(h2);
    EXPECT_EQ(h2.controls.fields[0].text, "0.3");
    copy.frequencies.remove();
    ASSERT_TRUE(copy.frequencies.close());
    expectVolumes(volumes(copy.frequencies), {0.1, 0.2});
    expectVolumes(volumes(m.frequencies), {0.1, 0.2, 0.3});
    auto same = [](const FrequencyRecord& x, const FrequencyRecord& y) {
        return x.startVolume.value == y.startVolume.value;
    };
    EXPECT_TRUE(m.frequencies.sameRecords(b, same));
    EXPECT_FALSE(m.frequencies.sameRecords(copy.frequencies, same));
}

TEST(RecordBrowserDeathTest, MisuseAsserts) {
    RecordBrowser<FrequencyRecord> b({withVolume(0.1), withVolume(0.2)});
    Hooks h;
    b.open(h);
    EXPECT_DEATH(b.count(), "Assertion failed: !IsOpen, unit rbrowser");
    EXPECT_DEATH(b.records(), "Assertion failed: !IsOpen, unit rbrowser");
    EXPECT_DEATH(b.previous(), "Assertion failed: Cursor > 0, unit rbrowser");
    ASSERT_TRUE(b.last());
    EXPECT_DEATH(b.next(), "Assertion failed: Cursor < Count - 1, unit rbrowser");
    RecordBrowser<FrequencyRecord> one;
    one.open(h);
    EXPECT_DEATH(one.remove(), "Assertion failed: Count >= 2, unit rbrowser");
    EXPECT_DEATH(one.paste(), "Assertion failed: CopyFull, unit rbrowser");
}

}  // namespace
}  // namespace orv
