// Preloaded into test programs run under qemu-user (see tests/CMakeLists.txt).
//
// qemu-user before 8.0 passes waitid(P_PIDFD, ...) through to the host kernel,
// which accepts it, but refuses clone(CLONE_PIDFD) with EINVAL. Qt's QProcess
// probes the first to decide whether to use the second, so under such a qemu
// every QProcess fails to start ("fork failure: Invalid argument"). This
// answers the probe as a kernel without pidfd support would; Qt then starts
// processes with a plain fork and SIGCHLD, which qemu emulates.
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <dlfcn.h>
#include <sys/syscall.h>

namespace {
constexpr long kPidfdIdType = 3; // P_PIDFD
using SyscallFn = long (*)(long, ...);
}

extern "C" long syscall(long number, ...)
{
    va_list ap;
    va_start(ap, number);
    long a[6];
    for (long &arg : a)
        arg = va_arg(ap, long);
    va_end(ap);
    if (number == SYS_waitid && a[0] == kPidfdIdType) {
        errno = EINVAL;
        return -1;
    }
    static const SyscallFn real = reinterpret_cast<SyscallFn>(dlsym(RTLD_NEXT, "syscall"));
    return real(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

// The host tools a test starts (jpegtran, convert, ...) are native programs:
// the preload is for the emulated test only. qemu sets it again for every
// emulated program a test starts (QEMU_SET_ENV).
__attribute__((constructor)) static void dropPreload() { unsetenv("LD_PRELOAD"); }
