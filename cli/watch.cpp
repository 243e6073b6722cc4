#include "cli/watch.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "core/cancel.h"

namespace orv::cli {

namespace {

int signalPipe[2] = {-1, -1};

extern "C" void onInterrupt(int) {
    const int saved = errno;
    const char byte = 1;
    [[maybe_unused]] ssize_t n = ::write(signalPipe[1], &byte, 1);
    errno = saved;
}

// How long a step runs before its progress line appears, and how often it is redrawn.
constexpr auto kProgressDelay = std::chrono::milliseconds(400);
constexpr int kTickMs = 50;

}  // namespace

std::string progressLine(std::string_view step, double seconds, long long samples) {
    char text[160];
    if (samples >= 1000000)
        std::snprintf(text, sizeof text, "%.*s: %.1f s, %.1f M samples", int(step.size()),
                      step.data(), seconds, double(samples) / 1e6);
    else
        std::snprintf(text, sizeof text, "%.*s: %.1f s, %lld samples", int(step.size()),
                      step.data(), seconds, samples);
    return text;
}

int runWatched(ScriptRunner& runner, const std::vector<Step>& steps, Console& console,
               bool showProgress) {
    if (::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) signalPipe[0] = signalPipe[1] = -1;
    struct sigaction action {};
    struct sigaction previous {};
    const bool handled = signalPipe[1] >= 0;
    if (handled) {
        action.sa_handler = onInterrupt;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_RESETHAND;  // the second Ctrl-C is the system's
        ::sigaction(SIGINT, &action, &previous);
    }

    std::atomic<bool> done{false};
    int status = kExitOk;
    std::thread worker([&] {
        status = runner.run(steps);
        done.store(true);
        if (signalPipe[1] >= 0) {
            const char wake = 0;
            [[maybe_unused]] ssize_t n = ::write(signalPipe[1], &wake, 1);
        }
    });

    const Step* shown = nullptr;
    auto since = std::chrono::steady_clock::now();
    long long walkedAtStart = 0;
    while (!done.load()) {
        if (signalPipe[0] >= 0) {
            pollfd p{signalPipe[0], POLLIN, 0};
            if (::poll(&p, 1, kTickMs) > 0) {
                char bytes[16];
                const ssize_t n = ::read(signalPipe[0], bytes, sizeof bytes);
                for (ssize_t i = 0; i < n; ++i)
                    if (bytes[i] == 1) runner.interrupt();
            }
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(kTickMs));
        }
        // A command clears its flag as it begins: keep raising it until the step is over.
        if (runner.interrupted()) runner.interrupt();
        if (!showProgress) continue;
        const Step* now = runner.currentStep();
        if (now != shown) {
            shown = now;
            since = std::chrono::steady_clock::now();
            walkedAtStart = samplesWalked.load();
            console.clearProgress();
        }
        const auto elapsed = std::chrono::steady_clock::now() - since;
        if (now && elapsed >= kProgressDelay)
            console.showProgress(progressLine(
                now->word, std::chrono::duration<double>(elapsed).count(),
                samplesWalked.load() - walkedAtStart));
    }
    worker.join();
    console.clearProgress();

    if (handled) ::sigaction(SIGINT, &previous, nullptr);
    for (int& fd : signalPipe) {
        if (fd >= 0) ::close(fd);
        fd = -1;
    }
    return status;
}

}  // namespace orv::cli
