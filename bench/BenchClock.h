#pragma once
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

// Timing helpers shared by the benchmark programs.
namespace BenchClock {

using Clock = std::chrono::steady_clock;

inline double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// CPU time spent so far; read first thing in main(), it is what loading and
// relocating the shared libraries and static constructors cost.
inline double cpuMillisecondsSoFar()
{
    timespec ts{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return ts.tv_sec * 1000.0 + ts.tv_nsec / 1.0e6;
}

// VO_BENCH_PHASES=1 asks for start-up, header and job times on stderr.
inline bool phasesWanted()
{
    const char *value = std::getenv("VO_BENCH_PHASES");
    return value && *value && std::strcmp(value, "0") != 0;
}

// Prints, when asked for, where a one-job process spent its time.
inline void printPhases(const char *program, double preMainCpu, double headerMs, double jobMs, Clock::time_point start)
{
    if (phasesWanted())
        std::fprintf(stderr, "%s phases: pre-main-cpu %.1f ms, header %.1f ms, job %.1f ms, main total %.1f ms\n",
                     program, preMainCpu, headerMs, jobMs, millisecondsSince(start));
}

} // namespace BenchClock
