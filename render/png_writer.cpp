#include "render/png_writer.h"

#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <cstring>
#include <new>
#include <vector>

#include "fileio/safe_file_writer.h"

namespace orv {

namespace {

// Where libpng's output and its complaint go.
struct PngSink {
    std::vector<unsigned char> bytes;
    std::string error;
};

void onError(png_structp png, png_const_charp message) {
    static_cast<PngSink*>(png_get_error_ptr(png))->error = message;
    png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp) {}

void onWrite(png_structp png, png_bytep data, png_size_t length) {
    auto* sink = static_cast<PngSink*>(png_get_io_ptr(png));
    bool grown = true;
    try {
        sink->bytes.insert(sink->bytes.end(), data, data + length);
    } catch (const std::bad_alloc&) {
        grown = false;
    }
    if (!grown) png_error(png, "out of memory");
}

void onFlush(png_structp) {}

// The encoding proper. Nothing with a destructor is made between setjmp and a possible
// longjmp, so jumping back skips no clean-up.
bool encode(const Canvas& canvas, std::vector<png_byte>& row, PngSink& sink) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &sink, onError, onWarning);
    if (!png) {
        sink.error = "out of memory";
        return false;
    }
    png_infop info = png_create_info_struct(png);
    if (!info) {
        png_destroy_write_struct(&png, nullptr);
        sink.error = "out of memory";
        return false;
    }
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_set_write_fn(png, &sink, onWrite, onFlush);
    png_set_IHDR(png, info, png_uint_32(canvas.width()), png_uint_32(canvas.height()), 8,
                 PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (int y = 0; y < canvas.height(); ++y) {
        const Pixel* p = canvas.data() + std::size_t(y) * std::size_t(canvas.width());
        for (int x = 0; x < canvas.width(); ++x) {
            row[std::size_t(x) * 3] = redOf(p[x]);
            row[std::size_t(x) * 3 + 1] = greenOf(p[x]);
            row[std::size_t(x) * 3 + 2] = blueOf(p[x]);
        }
        png_write_row(png, row.data());
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

// The writer's own words for its failure where it keeps them, else the system's for
// `error`; one sentence with its full stop.
template <class Writer>
std::string failureText(const Writer& file, int error) {
    if constexpr (requires { file.failureReason(); })
        if (!file.failureReason().empty()) return file.failureReason();
    return error != 0 ? std::string(std::strerror(error)) + "." : "the file system refused it.";
}

}  // namespace

bool writePng(const Canvas& canvas, const std::string& path, std::string& error) {
    const std::string prefix = "Cannot write the picture \"" + path + "\": ";
    if (canvas.width() <= 0 || canvas.height() <= 0) {
        error = prefix + "it has no pixels.";
        return false;
    }
    PngSink sink;
    try {
        std::vector<png_byte> row(std::size_t(canvas.width()) * 3);
        if (!encode(canvas, row, sink)) {
            error = prefix + sink.error + ".";
            return false;
        }
    } catch (const std::bad_alloc&) {
        error = prefix + "out of memory.";
        return false;
    }
    SafeFileWriter file;
    errno = 0;
    if (!file.open(path)) {
        error = prefix + failureText(file, errno);
        return false;
    }
    errno = 0;
    if (!file.write(sink.bytes.data(), sink.bytes.size()) || !file.commit()) {
        const int e = errno;
        file.abandon();
        error = prefix + failureText(file, e);
        return false;
    }
    return true;
}

}  // namespace orv
