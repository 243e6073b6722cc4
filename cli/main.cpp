// orvasto-cli: runs the document commands on WAV files from scripts (see docs/cli.md).
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "cli/console.h"
#include "cli/runner.h"
#include "cli/script.h"
#include "cli/watch.h"

int main(int argc, char** argv) {
    using namespace orv::cli;
    std::ios::sync_with_stdio(false);
    // Our messages go through a descriptor of their own, so that what codec libraries print
    // on stderr during an import can be thrown away without losing them.
    const int errFd = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    std::FILE* err = errFd >= 0 ? ::fdopen(errFd, "w") : nullptr;
    Console console(err ? err : stderr);
    PlatformScope scope(console);

    std::vector<std::string> args(argv + 1, argv + argc);
    if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
        std::cout << helpText();
        return kExitOk;
    }
    if (args.size() == 1 && args[0] == "--version") {
        std::cout << "orvasto-cli " << ORVASTO_VERSION << "\n";
        return kExitOk;
    }
    if (args.empty()) {
        std::fputs("Usage: orvasto-cli STEP [STEP ...]; orvasto-cli help lists the steps.\n",
                   stderr);
        return kExitUsage;
    }
    std::vector<Step> steps;
    if (auto error = parseScript(args, steps)) {
        orv::showMessage(orv::kUsageErrorCaption, error->text);
        return kExitUsage;
    }
    ScriptRunner runner(std::cout);
    runner.setQuietCodecs(true);
    const int status = runWatched(runner, steps, console, ::isatty(STDERR_FILENO) == 1);
    std::cout.flush();
    return status;
}
