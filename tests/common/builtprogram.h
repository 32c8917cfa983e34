#pragma once
// Starts a program of this build (the demo host) from a test. In a cross
// build the tests run under qemu-user, which cannot start a program of the
// target's instruction set by itself: the emulator ctest runs the test with
// (VO_TEST_EMULATOR) goes in front of it.
#include <QProcess>
#include <QString>
#include <QStringList>

namespace builtprogram {

// Under emulation a program of this build runs several times slower.
inline bool emulated() { return !qEnvironmentVariableIsEmpty("VO_TEST_EMULATOR"); }

inline void start(QProcess &process, const QString &program, const QStringList &arguments)
{
    QStringList emulator = qEnvironmentVariable("VO_TEST_EMULATOR").split(' ', Qt::SkipEmptyParts);
    if (emulator.isEmpty()) {
        process.start(program, arguments);
        return;
    }
    const QString qemu = emulator.takeFirst();
    process.start(qemu, emulator + QStringList{program} + arguments);
}

} // namespace builtprogram
