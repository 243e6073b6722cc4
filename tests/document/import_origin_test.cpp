// Saving an imported wave over the file it came from: refused unless that file is a plain
// 8/16-bit PCM WAV that already holds exactly the imported samples.
#include <filesystem>
#include <unistd.h>

#include <gtest/gtest.h>

#include "document/import_origin.h"
#include "fileio/sound_import.h"
#include "support/cli_test_helpers.h"

namespace orv {
namespace {

namespace fs = std::filesystem;
using namespace orv::test;

class ImportOriginTest : public ::testing::Test {
protected:
    // Writes `bytes` as `name`, imports it and looks at where it came from.
    ImportOrigin imported(const std::string& name, const Bytes& bytes) {
        writeBytes(dir / name, bytes);
        SoundPtr sound;
        std::string reason;
        EXPECT_TRUE(importSoundFile(dir / name, sound, reason)) << reason;
        return sound ? importOrigin(dir / name, *sound) : ImportOrigin{};
    }
    TempDir dir;
};

TEST_F(ImportOriginTest, WiderOrRicherFilesAreNeverOverwritten) {
    const Bytes list = {'L', 'I', 'S', 'T', 4, 0, 0, 0, 'I', 'N', 'F', 'O'};
    const struct {
        const char* name;
        Bytes bytes;
    } cases[] = {
        {"24.wav", wavBytes(1, 2, 48000, 24, {1, 2, 3, 4, 5, 6})},
        {"float.wav", wavBytes(3, 1, 8000, 32, floatBytes({0.5f, -0.25f}))},
        // Our reader refuses a chunk before "data": saving would drop the chunk.
        {"list.wav", wavBytes(1, 1, 8000, 16, le16({1, 2}), list)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const ImportOrigin origin = imported(c.name, c.bytes);
        EXPECT_FALSE(origin.plainCopy);
        const auto refusal = importOverwriteRefusal(origin, dir / c.name);
        ASSERT_TRUE(refusal);
        EXPECT_EQ(*refusal, "This wave was imported from \"" + (dir / c.name) +
                                "\"; saving it over that file would replace the original. Save "
                                "it under another name.");
        EXPECT_FALSE(importOverwriteRefusal(origin, dir / "other.wav"));  // not there yet
    }
}

TEST_F(ImportOriginTest, TheFileIsKnownByWhatItIsNotByItsName) {
    const ImportOrigin origin = imported("24.wav", wavBytes(1, 1, 48000, 24, {1, 2, 3}));
    fs::create_symlink(dir / "24.wav", dir / "link.wav");
    fs::create_hard_link(dir / "24.wav", dir / "hard.wav");
    writeBytes(dir / "else.wav", {1});
    EXPECT_TRUE(importOverwriteRefusal(origin, dir / "link.wav"));
    EXPECT_TRUE(importOverwriteRefusal(origin, dir / "hard.wav"));
    EXPECT_TRUE(importOverwriteRefusal(origin, dir.path() + "/./24.wav"));
    EXPECT_FALSE(importOverwriteRefusal(origin, dir / "else.wav"));
}

TEST_F(ImportOriginTest, PlainWavsWithTheSameSamplesMayBeSavedOver) {
    for (const auto& [name, bytes] : {std::pair{"16.wav", wavBytes(1, 2, 8000, 16, le16({1, -2, 32767, -32768}))},
                                      std::pair{"8.wav", wavBytes(1, 1, 11025, 8, {0, 128, 255})}}) {
        SCOPED_TRACE(name);
        const ImportOrigin origin = imported(name, bytes);
        EXPECT_TRUE(origin.plainCopy);
        EXPECT_FALSE(importOverwriteRefusal(origin, dir / name));
    }
}

}  // namespace
}  // namespace orv
