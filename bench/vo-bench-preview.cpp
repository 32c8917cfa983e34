// vo-bench-preview: the editor's screen preview of one picture per process
// (fit 480 x 640, written by the resize control), timed from outside like
// any other command-line tool. It is apart from vo-bench because it needs
// the image services and their widgets, which a save does not load.
//
//   vo-bench-preview IN OUT
//
// Exit status: 0 done, 1 the job failed, 2 bad arguments.

#include "BenchClock.h"
#include "ImgSvcResizeCtl.h"
#include "MMImageInfo.h"
#include "MMImageSource.h"
#include "VOUtility.h"

#include <QSize>

#include <cstdio>

namespace {
// The size of the editor's preview screen.
constexpr int kScreenWidth = 480;
constexpr int kScreenHeight = 640;
}

int main(int argc, char **argv)
{
    using namespace BenchClock;
    const double preMainCpu = cpuMillisecondsSoFar();
    const Clock::time_point start = Clock::now();
    if (argc != 3) {
        std::fputs("usage: vo-bench-preview IN OUT\n", stderr);
        return 2;
    }
    MMImageSource input;
    input.setFile(argv[1]);
    MMImageSource output;
    output.setFile(argv[2]);

    const Clock::time_point headerStart = Clock::now();
    MMImageInfo info;
    if (input.getImageInfo(info) != 0) {
        std::fprintf(stderr, "vo-bench-preview: cannot read %s\n", argv[1]);
        return 1;
    }
    const double headerMs = millisecondsSince(headerStart);

    const Clock::time_point jobStart = Clock::now();
    int w = info.width, h = info.height;
    VOUtility::fitScreen(w, h, kScreenWidth, kScreenHeight);
    ImgSvcResizeCtl control;
    control.setInput(&input);
    control.setOutput(&output);
    control.setTargetSize(QSize(w, h));
    const int result = control.process();
    const double jobMs = millisecondsSince(jobStart);

    printPhases("vo-bench-preview", preMainCpu, headerMs, jobMs, start);
    if (result != 0) {
        std::fputs("vo-bench-preview: preview failed\n", stderr);
        return 1;
    }
    return 0;
}
