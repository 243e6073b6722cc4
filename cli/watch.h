// Runs a script on a worker thread while the calling thread watches it: Ctrl-C (SIGINT)
// interrupts the script (the running command's cancel flag is raised, no further step runs,
// the status is 130), and on a terminal a progress line shows how long the step has run and
// how many samples it has walked.
#pragma once

#include <vector>

#include "cli/console.h"
#include "cli/runner.h"
#include "cli/script.h"

namespace orv::cli {

// The signal handler only writes a byte into a pipe; everything else happens here. A second
// Ctrl-C while the first is still being honoured ends the program at once.
int runWatched(ScriptRunner& runner, const std::vector<Step>& steps, Console& console,
               bool showProgress);

// The progress line: "Volume: 2.5 s, 11.0 M samples".
std::string progressLine(std::string_view step, double seconds, long long samples);

}  // namespace orv::cli
