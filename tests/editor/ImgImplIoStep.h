#pragma once
#include "ImgImplFileOps.h"

#include <cerrno>
#include <csignal>
#include <unistd.h>

// The tests' watch on every durable step of a save (a chunk written, an
// fsync, an owner, mode or attribute copy, a rename): it makes step N fail
// with an errno, or stops the process dead with _exit right after step N,
// so crash and fault tests reach every step of every path. It lives only in
// the tests; the library itself carries no switch that could stop a host.
class ImgImplIoStep : public ImgImplFileOps::StepHooks
{
public:
    // KillAfter: SIGKILL right after step N, as a user's kill would.
    enum Mode { Off, StopAfter, KillAfter, FailAt };
    // Exit status of a process stopped here.
    static constexpr int StopExitCode = 86;

    static void arm(Mode mode, int step, int error = 0)
    {
        ImgImplIoStep &s = self();
        s.mode = mode;
        s.step = step;
        s.error = error ? error : ENOSPC;
        s.counted = 0;
        ImgImplFileOps::setStepHooks(&s);
    }
    static void disarm() { arm(Off, 0); }
    // Steps begun since the last arm() or disarm().
    static int count() { return self().counted; }

    bool begin() override
    {
        ++counted;
        if (mode == FailAt && counted == step) {
            errno = error;
            return false;
        }
        return true;
    }
    void end() override
    {
        if (mode == StopAfter && counted == step)
            _exit(StopExitCode);
        if (mode == KillAfter && counted == step)
            ::kill(::getpid(), SIGKILL);
    }

private:
    static ImgImplIoStep &self()
    {
        static ImgImplIoStep s;
        return s;
    }
    Mode mode = Off;
    int step = 0;
    int error = ENOSPC;
    int counted = 0;
};
