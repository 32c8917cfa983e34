// vo-bench: one image save per process, through the code the editor runs, so
// that whole-process time and peak memory can be measured from outside like
// those of any other command-line tool. It links the image engine only (no
// widgets): a one-job process pays for every library it loads.
//
//   vo-bench save IN OUT --rotate DEG       a save with one rotation
//   vo-bench save IN OUT --crop-centre-half a save with the centre half kept
//   vo-bench save IN OUT --resize-half      a save at half the width and height
//   vo-bench save IN OUT --chain            rotate 90, mirror, crop centre half, resize 50 %
//   vo-bench phases IN OUT OPTION           a save replayed step by step, each step's cost printed
//
// The preview is vo-bench-preview. With VO_BENCH_PHASES=1 a save prints to
// stderr how long start-up, the header read and the job itself took.
// Exit status: 0 done, 1 the job failed, 2 bad arguments.

#include "BenchClock.h"
#include "BenchJob.h"
#include "BenchPhases.h"
#include "MMCommandRunner.h"
#include "MMImageInfo.h"
#include "MMImageSource.h"

#include <cstdio>

int main(int argc, char **argv)
{
    using namespace BenchClock;
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
    if (!job.buildCommands(info.width, info.height)) {
        std::fputs(BenchJob::usage(), stderr);
        return 2;
    }
    const int result = MMCommandRunner::run(input, output, job.commands());
    const double jobMs = millisecondsSince(jobStart);

    printPhases("vo-bench", preMainCpu, headerMs, jobMs, start);
    if (result != 0) {
        std::fprintf(stderr, "vo-bench: %s failed\n", job.name().c_str());
        return 1;
    }
    return 0;
}
