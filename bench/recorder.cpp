// SPDX-License-Identifier: MIT

// What a recording costs: memory and processor time a point, bare and with three extras, replay,
// thinning and release. Prints one line a measurement; exit status 1 when a bar is missed.

#include <Pelluvia/model/NullReceiver.h>
#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

using namespace pelluvia;

namespace {

constexpr std::size_t pointCount = 5'000'000;

/// Counts the points of a replay, so that the replay costs only itself.
class Nothing : public NullReceiver {
  public:
    void trackPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override { ++points; }

    std::size_t points = 0;
};

/// Resident memory of this process, in bytes.
double residentBytes() {
    long pages = 0;
    if (std::FILE *file = std::fopen("/proc/self/statm", "r")) {
        long total = 0;
        if (std::fscanf(file, "%ld %ld", &total, &pages) != 2) {
            pages = 0;
        }
        std::fclose(file);
    }
    return static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// Seconds of processor time of this process so far: what else the machine does hardly shows.
double seconds() {
    timespec now{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

bool failed = false;

void report(std::string_view what, double value, std::string_view unit, double bar, bool atMost) {
    const bool met = atMost ? value <= bar : value >= bar;
    failed = failed || !met;
    std::printf("%-34.*s %9.1f %-16.*s bar %s %.0f  %s\n", static_cast<int>(what.size()),
                what.data(), value, static_cast<int>(unit.size()), unit.data(),
                atMost ? "<=" : ">=", bar, met ? "pass" : "FAIL");
}

GPSPoint pointAt(std::size_t i) {
    GPSPoint point;
    // A ride with a bend at every point, so that thinning has something to decide.
    point.latitude = 47.0 + static_cast<double>(i) * 1e-6;
    point.longitude = 8.5 + static_cast<double>(i % 7) * 3e-4;
    point.altitude = 400.0;
    point.time = 1'600'000'000 + static_cast<std::int64_t>(i);
    return point;
}

struct Run {
    double bytes;
    double appendRate;
    double replayRate;
    double releaseRate;
};

Run run(const Dictionary *extra, bool minimize) {
    constexpr double million = 1e6;
    const double before = residentBytes();
    auto recorder = RecordingGPSOutput::recorder();
    recorder->setMinimizeTracks(minimize);
    recorder->startTransfer(nullptr, transferKind::tracks, nullptr);
    recorder->newTrack(nullptr);
    const double start = seconds();
    for (std::size_t i = 0; i < pointCount; ++i) {
        recorder->trackPoint(pointAt(i), extra);
    }
    const double appended = seconds();
    recorder->endTransfer(transferKind::tracks);
    const double bytes = residentBytes() - before;
    Nothing nothing;
    const double replay = seconds();
    recorder->pushAllDataToOutput(nothing);
    const double replayed = seconds();
    recorder.reset();
    const double released = seconds();
    const auto points = static_cast<double>(pointCount);
    return {bytes / points, points / (appended - start) / million,
            static_cast<double>(nothing.points) / (replayed - replay) / million,
            points / (released - replayed) / million};
}

/// Measures in a process of its own, so that memory freed by one run does not serve the next.
Run runApart(const Dictionary *extra, bool minimize) {
    int ends[2] = {-1, -1};
    Run result{};
    if (pipe(ends) != 0) {
        return result;
    }
    if (const pid_t child = fork(); child == 0) {
        result = run(extra, minimize);
        const bool written = write(ends[1], &result, sizeof result) == sizeof result;
        _exit(written ? EXIT_SUCCESS : EXIT_FAILURE);
    } else if (child > 0) {
        if (read(ends[0], &result, sizeof result) != sizeof result) {
            result = Run{};
        }
        waitpid(child, nullptr, 0);
    }
    close(ends[0]);
    close(ends[1]);
    return result;
}

} // namespace

int main() {
    Dictionary three;
    three.set(extras::hr, Value(140));
    three.set(extras::cadence, Value(85));
    three.set(extras::temp, Value(21.5F));

    const Run bare = runApart(nullptr, false);
    report("bare: memory", bare.bytes, "bytes/point", 88, true);
    report("bare: append", bare.appendRate, "million/s", 10, false);
    report("bare: replay", bare.replayRate, "million/s", 10, false);
    report("bare: release", bare.releaseRate, "million/s", 1, false);
    const Run full = runApart(&three, false);
    report("three extras: memory", full.bytes, "bytes/point", 128, true);
    report("three extras: append", full.appendRate, "million/s", 1, false);
    report("three extras: replay", full.replayRate, "million/s", 10, false);
    const Run thinned = runApart(nullptr, true);
    report("bare, thinned: append", thinned.appendRate, "million/s", 10, false);
    return failed ? EXIT_FAILURE : EXIT_SUCCESS;
}
