#pragma once

// Every durable I/O step of a save (a chunk written, an fsync, an owner,
// mode or attribute copy, a rename) passes through here. The seam is always
// compiled in and costs one branch: it stays inert unless a test arms it,
// through arm() or the environment (VO_IO_STOP_AFTER=N stops the process
// dead with _exit right after step N; VO_IO_FAIL_AT=N makes step N fail
// with VO_IO_FAIL_ERRNO, ENOSPC when unset). That is how crash and
// fault-injection tests reach every step of every path.
class ImgImplIoStep
{
public:
    enum Mode { Off, StopAfter, FailAt };
    // Exit status of a process stopped by the seam.
    static constexpr int StopExitCode = 86;

    // Before a step: false (errno set) when the armed fault hits this step.
    static bool begin();
    // After a step that happened: never returns when armed to stop here.
    static void end();

    static void arm(Mode mode, int step, int error = 0);
    static void disarm();
    // Steps begun since the last arm() or disarm().
    static int count();
};
