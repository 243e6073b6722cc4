// Split and merge in the frame: how many windows there are afterwards, where the new ones
// lie, what they hold, the merge dialogs' side-by-side table and their refusal.
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QtTest>

#include "app/main_form.h"
#include "fileio/wav_file.h"
#include "gui_test_helpers.h"
#include "support/file_test_helpers.h"
#include "support/recording_platform.h"
#include "view/mdi_child_wave.h"

using namespace orv;
using namespace orv::test;

namespace {

WavePtr waveOf(std::initializer_list<WaveVal> samples) {
    auto w = std::make_unique<Wave>(allocateSamples(std::int32_t(samples.size())),
                                    std::int32_t(samples.size()));
    std::int32_t i = 0;
    for (WaveVal v : samples) (*w)[i++] = v;
    return w;
}

QMdiSubWindow* subOf(TMainForm& frame, const TUnitWave* unit) {
    TMDIChildWave* child = frame.childOf(unit);
    return child ? qobject_cast<QMdiSubWindow*>(child->parentWidget()) : nullptr;
}

}  // namespace

class SplitMergeWindowsTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void splitVerticallyStacksTheChannelsInTheOldPlace();
    void splitHorizontallyLaysThePiecesSideBySide();
    void mergeHorizontallyShowsBothWavesAndJoinsThem();
    void aMergeWithItselfIsRefusedAndChangesNothing();

private:
    TUnitWave* open(const std::string& name, WavePtr left, WavePtr right, std::int32_t freq = 1000);
    std::unique_ptr<RecordingPlatformScope> messages_;
    std::unique_ptr<TempDir> dir_;
    std::unique_ptr<TMainForm> frame_;
};

void SplitMergeWindowsTest::init() {
    messages_ = std::make_unique<RecordingPlatformScope>();
    dir_ = std::make_unique<TempDir>();
    frame_ = std::make_unique<TMainForm>();
    frame_->show();
    QVERIFY(QTest::qWaitForWindowExposed(frame_.get()));
}

void SplitMergeWindowsTest::cleanup() {
    QVERIFY(!cancelPendingModals());
    frame_.reset();
    dir_.reset();
    messages_.reset();
}

TUnitWave* SplitMergeWindowsTest::open(const std::string& name, WavePtr left, WavePtr right,
                                       std::int32_t freq) {
    const std::string file = *dir_ / name;
    if (!writeWaveChannels(file, left.get(), right.get(), freq, 2, 0, left->getValues(), false))
        return nullptr;
    frame_->openFiles({QString::fromStdString(file)});
    return frame_->workspace().active();
}

void SplitMergeWindowsTest::splitVerticallyStacksTheChannelsInTheOldPlace() {
    TUnitWave* source = open("st.wav", waveOf({1, 2, 3}), waveOf({-1, -2, -3}));
    QVERIFY(source);
    subOf(*frame_, source)->setGeometry(QRect(10, 20, 400, 301));
    WaveViewRecord look = frame_->childOf(source)->settings();
    look.twoSingleWaves = !look.twoSingleWaves;
    look.background = 0x123456;
    frame_->childOf(source)->setSettings(look);
    frame_->action("SplitV")->trigger();
    const auto& docs = frame_->workspace().documents();
    QCOMPARE(docs.size(), std::size_t(2));
    QCOMPARE(frame_->mdiArea()->subWindowList().size(), 2);
    // mid = (20 + 321) / 2 = 170: the left channel above, up to 168; the right from 170.
    QCOMPARE(subOf(*frame_, docs[0].get())->geometry(), QRect(10, 20, 400, 149));
    QCOMPARE(subOf(*frame_, docs[1].get())->geometry(), QRect(10, 170, 400, 151));
    QCOMPARE(samplesOf(docs[0]->getSound()->GetLeftWave()), (std::vector<WaveVal>{1, 2, 3}));
    QCOMPARE(samplesOf(docs[1]->getSound()->GetLeftWave()), (std::vector<WaveVal>{-1, -2, -3}));
    QCOMPARE(frame_->childOf(docs[0].get())->title(), QString("NONAME"));
    for (const auto& doc : docs)  // both look like the window they came from
        QCOMPARE(frame_->childOf(doc.get())->settings().background, ColorRef(0x123456));
    QVERIFY(messages_->recorder.messages.empty());
}

void SplitMergeWindowsTest::splitHorizontallyLaysThePiecesSideBySide() {
    TUnitWave* source = open("m.wav", waveOf({1, 2, 3, 4, 5, 6, 7, 8, 9}), nullptr);
    QVERIFY(source);
    subOf(*frame_, source)->setGeometry(QRect(0, 0, 400, 200));
    // A part that touches the first sample leaves nothing before it: not offered.
    source->selectRange(0, 3);
    frame_->updateActions();
    QVERIFY(!frame_->action("SplitH")->isEnabled());
    source->selectRange(3, 6);
    frame_->updateActions();
    QVERIFY(frame_->action("SplitH")->isEnabled());
    whenModal([](QDialog* d) {
        QCOMPARE(d->windowTitle(), QString("Split Horizontally"));
        QTest::mouseClick(control<QRadioButton>(d, "optResultThreeparts"), Qt::LeftButton);
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
    });
    frame_->action("SplitH")->trigger();
    auto& docs = frame_->workspace().documents();
    QCOMPARE(docs.size(), std::size_t(3));
    QCOMPARE(frame_->mdiArea()->subWindowList().size(), 3);
    const std::vector<std::vector<WaveVal>> pieces{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
    const QRect places[] = {QRect(0, 0, 133, 200), QRect(133, 0, 133, 200), QRect(266, 0, 134, 200)};
    for (std::size_t i = 0; i < 3; ++i) {
        QCOMPARE(samplesOf(docs[i]->getSound()->GetLeftWave()), pieces[i]);
        QCOMPARE(subOf(*frame_, docs[i].get())->geometry(), places[i]);
    }

    // Nothing selected: cut at the cursor into two, without asking.
    TUnitWave* middle = docs[1].get();
    frame_->workspace().setActive(middle);
    middle->setCursor(1);
    middle->setSelEnd(1);
    frame_->updateActions();
    bool asked = false;
    whenModal([&asked](QDialog*) { asked = true; });
    frame_->action("SplitH")->trigger();
    QVERIFY(!asked);
    QVERIFY(cancelPendingModals());  // the dialog it waited for never came
    QCOMPARE(docs.size(), std::size_t(4));
    QCOMPARE(samplesOf(docs[2]->getSound()->GetLeftWave()), (std::vector<WaveVal>{4}));
    QCOMPARE(samplesOf(docs[3]->getSound()->GetLeftWave()), (std::vector<WaveVal>{5, 6}));
    // Side by side in the middle window's place.
    QCOMPARE(subOf(*frame_, docs[2].get())->geometry(), QRect(133, 0, 66, 200));
    QCOMPARE(subOf(*frame_, docs[3].get())->geometry(), QRect(199, 0, 67, 200));
}

void SplitMergeWindowsTest::mergeHorizontallyShowsBothWavesAndJoinsThem() {
    TUnitWave* a = open("a.wav", waveOf({1, 2}), nullptr, 22050);
    TUnitWave* b = open("b.wav", waveOf({7, 8, 9, 10}), waveOf({7, 8, 9, 10}), 44100);
    QVERIFY(a && b);
    QVERIFY(frame_->workspace().registerName(*a, "a"));
    QVERIFY(frame_->workspace().registerName(*b, "b"));
    subOf(*frame_, a)->setGeometry(QRect(0, 0, 200, 100));
    subOf(*frame_, b)->setGeometry(QRect(200, 100, 300, 50));
    WaveViewRecord look = frame_->childOf(b)->settings();
    look.background = 0x654321;
    frame_->childOf(b)->setSettings(look);
    frame_->updateActions();
    whenModal([](QDialog* d) {
        chooseInList(control<QComboBox>(d, "cboFirst"), "a");
        chooseInList(control<QComboBox>(d, "cboLast"), "b");
        // The two waves side by side, as chosen.
        QCOMPARE(control<QLabel>(d, "lblChosen_0_1")->text(), QString("First"));
        QCOMPARE(control<QLabel>(d, "lblChosen_1_1")->text(), QString("Mono"));
        QCOMPARE(control<QLabel>(d, "lblChosen_1_2")->text(), QString("Stereo"));
        QCOMPARE(control<QLabel>(d, "lblChosen_2_1")->text(), QString("22050 Hz"));
        QCOMPARE(control<QLabel>(d, "lblChosen_2_2")->text(), QString("44100 Hz"));
        chooseInList(control<QComboBox>(d, "cboFrequency"), "22 kHz");
        QTest::mouseClick(control<QRadioButton>(d, "optUseDisplayPropertiesofLast"), Qt::LeftButton);
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
    });
    frame_->action("MergeH")->trigger();
    const auto& docs = frame_->workspace().documents();
    QCOMPARE(docs.size(), std::size_t(1));
    QCOMPARE(frame_->mdiArea()->subWindowList().size(), 1);
    // Corners halfway: (0 + 200) / 2, (0 + 100) / 2 to (200 + 500) / 2, (100 + 150) / 2.
    QCOMPARE(subOf(*frame_, docs[0].get())->geometry(), QRect(100, 50, 250, 75));
    QCOMPARE(frame_->childOf(docs[0].get())->settings().background, ColorRef(0x654321));  // Last's
    const Sound& made = *docs[0]->getSound();
    QCOMPARE(made.Freq, 22050);
    QVERIFY(made.GetRightWave() != nullptr);  // stereo, as the last one
    // The first wave as it was, then the last one at half its frequency: 2 + 2 samples.
    QCOMPARE(made.GetValues(), 4);
    const std::vector<WaveVal> left = samplesOf(made.GetLeftWave());
    QCOMPARE(std::vector<WaveVal>(left.begin(), left.begin() + 2), (std::vector<WaveVal>{1, 2}));
}

void SplitMergeWindowsTest::aMergeWithItselfIsRefusedAndChangesNothing() {
    TUnitWave* a = open("a.wav", waveOf({1, 2}), nullptr);
    TUnitWave* b = open("b.wav", waveOf({3}), nullptr);
    QVERIFY(frame_->workspace().registerName(*a, "a"));
    QVERIFY(frame_->workspace().registerName(*b, "b"));
    frame_->updateActions();
    whenModal([this](QDialog* d) {
        chooseInList(control<QComboBox>(d, "cboLeft"), "a");
        chooseInList(control<QComboBox>(d, "cboRight"), "a");
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
        QVERIFY(d->isVisible());  // stays open on the refusal
        QCOMPARE(messages_->recorder.messages.size(), std::size_t(1));
        QCOMPARE(messages_->recorder.messages[0].caption, std::string("Input Error"));
        QCOMPARE(messages_->recorder.messages[0].text, std::string("The chosen Waves must be different"));
    });
    frame_->action("MergeV")->trigger();
    QCOMPARE(frame_->workspace().documents().size(), std::size_t(2));
    QCOMPARE(frame_->mdiArea()->subWindowList().size(), 2);
}

QTEST_MAIN(SplitMergeWindowsTest)
#include "split_merge_windows_test.moc"
