#include "render/png_writer.h"

#include <png.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "core/sound.h"
#include "render/wave_painter.h"
#include "support/file_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;

// A PNG read back through libpng as 8-bit RGB; empty when it cannot be read.
std::vector<Pixel> readPng(const std::string& path, int& width, int& height, bool& storedRgb8) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) return {};
    storedRgb8 = image.format == PNG_FORMAT_RGB;
    image.format = PNG_FORMAT_RGB;
    std::vector<png_byte> bytes(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr)) return {};
    width = int(image.width);
    height = int(image.height);
    std::vector<Pixel> pixels;
    for (std::size_t i = 0; i + 2 < bytes.size(); i += 3)
        pixels.push_back(rgbPixel(bytes[i], bytes[i + 1], bytes[i + 2]));
    return pixels;
}

std::vector<std::string> folder(const TempDir& dir) {
    std::vector<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(dir.path()))
        names.push_back(e.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

TEST(PngWriter, PaintedWaveRoundTripsOverAnOlderPicture) {
    TempDir dir;
    std::string error;
    ASSERT_TRUE(writePng(Canvas(2, 2, rgbPixel(9, 9, 9)), dir / "wave.png", error)) << error;
    StereoSound sound(waveOf({0, 32767, -32768, 1000, -1000, 20000, 5}),
                      waveOf({5, 4, 3, -20000, 1, 0, 9}), 1000);
    WavePaintInput in;
    in.sound = &sound;
    in.clientWidth = 23;
    in.clientHeight = 17;
    in.cursor = 2;
    in.selEndPos = 5;
    in.settings.valuesPerPixel = 1;
    Canvas c;
    paintWave(c, in);
    c.setPixel(0, 0, rgbPixel(1, 2, 3));  // every byte in its place
    ASSERT_TRUE(writePng(c, dir / "wave.png", error)) << error;
    int width = 0, height = 0;
    bool rgb8 = false;
    EXPECT_EQ(readPng(dir / "wave.png", width, height, rgb8),
              std::vector<Pixel>(c.data(), c.data() + 23 * 17));
    EXPECT_EQ((std::vector<int>{width, height, rgb8}), (std::vector<int>{23, 17, 1}));
    EXPECT_EQ(folder(dir), (std::vector<std::string>{"wave.png"}));  // no temporary left
}

TEST(PngWriter, FailuresSaySoAndLeaveWhatWasThere) {
    TempDir dir;
    writeBytes(dir / "old.png", {1, 2, 3});
    std::filesystem::create_directory(dir / "sub");
    // libpng refuses a picture wider than its limit of a million pixels.
    const Canvas ok(4, 4), tooWide(1000001, 1), empty(0, 5);
    const std::string prefix = "Cannot write the picture \"" + dir.path();
    const struct { const Canvas* canvas; std::string name, text; } rows[] = {
        {&tooWide, "/old.png", "/old.png\": Invalid IHDR data."},
        {&empty, "/old.png", "/old.png\": it has no pixels."},
        {&ok, "/none/x.png", "/none/x.png\": No such file or directory."},
        {&ok, "/sub", "/sub\": Is a directory."},
    };
    for (const auto& row : rows) {
        std::string error;
        EXPECT_FALSE(writePng(*row.canvas, dir.path() + row.name, error));
        EXPECT_EQ(error, prefix + row.text);
    }
    EXPECT_EQ(readBytes(dir / "old.png"), (Bytes{1, 2, 3}));
    EXPECT_EQ(folder(dir), (std::vector<std::string>{"old.png", "sub"}));
    EXPECT_TRUE(std::filesystem::is_empty(dir / "sub"));
}

}  // namespace
}  // namespace orv
