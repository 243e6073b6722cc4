#include "document/import_origin.h"

#include <cstring>
#include <sys/stat.h>

#include "core/platform.h"
#include "fileio/wav_file.h"

namespace orv {

namespace {

bool sameSamples(const Wave* a, const Wave* b) {
    if (!a || !b || a->getValues() != b->getValues()) return false;
    return a->getValues() == 0 ||
           std::memcmp(a->data(), b->data(), std::size_t(a->getValues()) * sizeof(WaveVal)) == 0;
}

// Whether our reader opens `fileName` as an 8-bit or 16-bit wave with exactly the samples of
// `imported`. Quiet: a failure here is no news to the user.
bool readsAsPlainCopy(const std::string& fileName, const Sound& imported) {
    class Quiet final : public Platform {
    public:
        void showMessage(std::string_view, std::string_view, MessageIcon) override {}
    } quiet;
    Platform* previous = setPlatform(&quiet);
    SoundPtr read;
    int width = 0;
    const char* message = nullptr;
    const bool ok = readWaveFile(fileName, read, width, message);
    setPlatform(previous);
    if (!ok || (width != 1 && width != 2)) return false;
    if (read->MoSt != imported.MoSt || read->Freq != imported.Freq) return false;
    if (!sameSamples(read->GetLeftWave(), imported.GetLeftWave())) return false;
    return imported.MoSt != 2 || sameSamples(read->GetRightWave(), imported.GetRightWave());
}

}  // namespace

ImportOrigin importOrigin(const std::string& fileName, const Sound& imported) {
    ImportOrigin origin;
    origin.file = fileName;
    struct stat st;
    if (::stat(fileName.c_str(), &st) == 0) {
        origin.identified = true;
        origin.device = st.st_dev;
        origin.inode = st.st_ino;
    }
    origin.plainCopy = readsAsPlainCopy(fileName, imported);
    return origin;
}

std::optional<std::string> importOverwriteRefusal(const ImportOrigin& origin,
                                                  const std::string& target) {
    if (origin.plainCopy || !origin.identified) return std::nullopt;
    struct stat st;
    if (::stat(target.c_str(), &st) != 0) return std::nullopt;  // a new file replaces nothing
    if (st.st_dev != origin.device || st.st_ino != origin.inode) return std::nullopt;
    return "This wave was imported from \"" + origin.file +
           "\"; saving it over that file would replace the original. Save it under another "
           "name.";
}

}  // namespace orv
