#include "ImgImplIoStep.h"

#include <cerrno>
#include <cstdlib>
#include <unistd.h>

namespace {
struct Armed {
    ImgImplIoStep::Mode mode = ImgImplIoStep::Off;
    int step = 0;
    int error = ENOSPC;
    int count = 0;
    bool fromEnvironment = false;
};

Armed &armed()
{
    static Armed a;
    if (!a.fromEnvironment) {
        a.fromEnvironment = true;
        if (const char *stop = getenv("VO_IO_STOP_AFTER")) {
            a.mode = ImgImplIoStep::StopAfter;
            a.step = atoi(stop);
        } else if (const char *fail = getenv("VO_IO_FAIL_AT")) {
            a.mode = ImgImplIoStep::FailAt;
            a.step = atoi(fail);
            if (const char *err = getenv("VO_IO_FAIL_ERRNO"))
                a.error = atoi(err);
        }
    }
    return a;
}
} // namespace

bool ImgImplIoStep::begin()
{
    Armed &a = armed();
    ++a.count;
    if (a.mode == FailAt && a.count == a.step) {
        errno = a.error;
        return false;
    }
    return true;
}

void ImgImplIoStep::end()
{
    const Armed &a = armed();
    if (a.mode == StopAfter && a.count == a.step)
        _exit(StopExitCode);
}

void ImgImplIoStep::arm(Mode mode, int step, int error)
{
    Armed &a = armed();
    a.mode = mode;
    a.step = step;
    a.error = error ? error : ENOSPC;
    a.count = 0;
}

void ImgImplIoStep::disarm() { arm(Off, 0); }

int ImgImplIoStep::count() { return armed().count; }
