// vo-bench: one image job per process, through the code the editor runs, so
// that whole-process time and peak memory can be measured from outside like
// those of any other command-line tool.
//
//   vo-bench preview IN OUT                 the editor's screen preview (fit 480 x 640)
//   vo-bench save IN OUT --rotate DEG       a save with one rotation
//   vo-bench save IN OUT --crop-centre-half a save with the centre half kept
//   vo-bench save IN OUT --resize-half      a save at half the width and height
//   vo-bench save IN OUT --chain            rotate 90, mirror, crop centre half, resize 50 %
//   vo-bench phases IN OUT OPTION           a save replayed step by step, each step's cost printed
//
// With VO_BENCH_PHASES=1 a preview or save prints to stderr how long start-up,
// the header read and the job itself took.
// Exit status: 0 done, 1 the job failed, 2 bad arguments.

#include "BenchJob.h"
#include "BenchPhases.h"
#include "ImgSvcResizeCtl.h"
#include "MMCommandRunner.h"
#include "MMImageInfo.h"
#include "MMImageSource.h"
#include "VOUtility.h"

#include <QSize>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

// The size of the editor's preview screen.
constexpr int kScreenWidth = 480;
constexpr int kScreenHeight = 640;

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// CPU time spent before main(): loading and relocating the shared libraries
// and static constructors, which a short job pays in full.
double cpuMillisecondsSoFar()
{
    timespec ts{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return ts.tv_sec * 1000.0 + ts.tv_nsec / 1.0e6;
}

bool phasesWanted()
{
    const char *value = std::getenv("VO_BENCH_PHASES");
    return value && *value && std::strcmp(value, "0") != 0;
}

// The editor's preview: fit the upright size to the screen, then let the
// resize control write the reduced copy.
int runPreview(MMImageSource &input, MMImageSource &output, int w, int h)
{
    VOUtility::fitScreen(w, h, kScreenWidth, kScreenHeight);
    ImgSvcResizeCtl control;
    control.setInput(&input);
    control.setOutput(&output);
    control.setTargetSize(QSize(w, h));
    return control.process();
}

} // namespace

int main(int argc, char **argv)
{
    const double preMainCpu = cpuMillisecondsSoFar();
    const Clock::time_point start = Clock::now();

    BenchJob job(argc, argv);
    if (job.mode() == BenchJob::Invalid) {
        std::fputs(BenchJob::usage(), stderr);
        return 2;
    }
    if (job.mode() == BenchJob::Phases)
        return BenchPhases::run(job);

    MMImageSource input;
    input.setFile(job.input());
    MMImageSource output;
    output.setFile(job.output());

    const Clock::time_point headerStart = Clock::now();
    MMImageInfo info;
    if (input.getImageInfo(info) != 0) {
        std::fprintf(stderr, "vo-bench: cannot read %s\n", job.input().c_str());
        return 1;
    }
    const double headerMs = millisecondsSince(headerStart);

    const Clock::time_point jobStart = Clock::now();
    int result = -1;
    if (job.mode() == BenchJob::Preview) {
        result = runPreview(input, output, info.width, info.height);
    } else {
        if (!job.buildCommands(info.width, info.height)) {
            std::fputs(BenchJob::usage(), stderr);
            return 2;
        }
        result = MMCommandRunner::run(input, output, job.commands());
    }
    const double jobMs = millisecondsSince(jobStart);

    if (phasesWanted()) {
        std::fprintf(stderr,
                     "vo-bench phases: pre-main-cpu %.1f ms, header %.1f ms, job %.1f ms, main total %.1f ms\n",
                     preMainCpu, headerMs, jobMs, millisecondsSince(start));
    }
    if (result != 0) {
        std::fprintf(stderr, "vo-bench: %s failed\n", job.mode() == BenchJob::Preview ? "preview" : job.name().c_str());
        return 1;
    }
    return 0;
}
