// The recording on disk: while it runs the file already opens as a sound with what it holds
// (what a crash would leave); finished, it has its true size in place of the record file;
// given up, it is gone; a target that cannot be written says why.
#include <QtTest>

#include "app/recording_file.h"
#include "fileio/wav_file.h"
#include "support/file_test_helpers.h"

using namespace orv;
using namespace orv::test;

class RecordingFileTest : public QObject {
    Q_OBJECT
private slots:
    void readableWhileItRunsExactWhenFinished();
    void givenUpOrMisplacedItLeavesNothing();
};

namespace {
bool readBack(const std::string& file, WaveFileChannels& out) {
    const char* message = "";
    return readWaveChannels(file, out, message);
}
}  // namespace

void RecordingFileTest::readableWhileItRunsExactWhenFinished() {
    TempDir dir;
    const std::string part = dir / "rec.wav.part", target = dir / "rec.wav";
    writeBytes(target, {'o', 'l', 'd'});
    RecordingFile rec;
    std::string error;
    QVERIFY(rec.begin(part, 2, 8000, 2, error));
    const Bytes first = le16({1, -1, 2, -2});
    QVERIFY(rec.append(first.data(), first.size(), error));
    WaveFileChannels got;
    QVERIFY(readBack(part, got));  // a crash now would leave these two frames
    QCOMPARE(samplesOf(got.left.get()), (std::vector<WaveVal>{1, 2}));
    QCOMPARE(samplesOf(got.right.get()), (std::vector<WaveVal>{-1, -2}));
    const Bytes more = le16({3, -3, 4});  // one whole frame and half of the next
    QVERIFY(rec.append(more.data(), more.size(), error));
    QCOMPARE(rec.bytes(), std::uint64_t(14));
    QVERIFY(rec.finish(target, error));
    QVERIFY(!std::filesystem::exists(part));
    const Bytes file = readBytes(target);
    QCOMPARE(file.size(), std::size_t(44 + 12));  // the half frame is not kept
    QCOMPARE(getLE32(file.data() + 40), std::uint32_t(12));  // the data chunk's true size
    QCOMPARE(getLE32(file.data() + 4), std::uint32_t(12 + 32));
    QVERIFY(readBack(target, got));
    QCOMPARE(got.freq, 8000);
    QCOMPARE(samplesOf(got.left.get()), (std::vector<WaveVal>{1, 2, 3}));
    QCOMPARE(samplesOf(got.right.get()), (std::vector<WaveVal>{-1, -2, -3}));
}

void RecordingFileTest::givenUpOrMisplacedItLeavesNothing() {
    TempDir dir;
    const std::string part = dir / "rec.wav.part";
    std::string error;
    {
        RecordingFile rec;
        QVERIFY(rec.begin(part, 1, 8000, 1, error));
        QVERIFY(std::filesystem::exists(part));
    }
    QVERIFY(!std::filesystem::exists(part));  // given up: gone

    RecordingFile rec;
    QVERIFY(rec.begin(part, 1, 8000, 1, error));
    const Bytes bytes{128, 255};
    QVERIFY(rec.append(bytes.data(), bytes.size(), error));
    const std::string nowhere = dir / "missing/rec.wav";
    QVERIFY(!rec.finish(nowhere, error));
    QCOMPARE(QString::fromStdString(error),
             QString::fromStdString("\"" + nowhere + "\": No such file or directory"));
    QVERIFY(!std::filesystem::exists(part));
    QVERIFY(!rec.append(bytes.data(), bytes.size(), error));  // finished: takes nothing more

    error.clear();
    QVERIFY(!rec.begin(dir / "missing/x.part", 1, 8000, 1, error));
    QVERIFY(error.find("No such file or directory") != std::string::npos);
}

QTEST_MAIN(RecordingFileTest)
#include "recording_file_test.moc"
