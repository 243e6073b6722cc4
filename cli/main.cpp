// orvasto-cli: runs the document commands on WAV files from scripts (see docs/cli.md).
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include <unistd.h>

#include "cli/console.h"
#include "cli/runner.h"
#include "cli/script.h"
#include "cli/watch.h"

int main(int argc, char** argv) {
    using namespace orv::cli;
    std::ios::sync_with_stdio(false);
    Console console(stderr);
    PlatformScope scope(console);

    std::vector<std::string> args(argv + 1, argv + argc);
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
    const int status = runWatched(runner, steps, console, ::isatty(STDERR_FILENO) == 1);
    std::cout.flush();
    return status;
}
