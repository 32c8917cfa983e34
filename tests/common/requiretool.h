#pragma once
// What a test needs from the machine: a reference tool (jpegtran,
// ImageMagick, exiftool, ...) or a sample file that scripts/install-deps.sh
// installs. Missing on a developer's machine, the test is skipped with the
// reason; missing in CI (the variable CI is set), it fails, so that a run
// can not pass while leaving a reference check undone.
#include <QFile>
#include <QStandardPaths>
#include <QString>
#include <QtTest>

#define VO_REQUIRE(present, what)                                                                                  \
    do {                                                                                                           \
        if (!(present)) {                                                                                          \
            const QString vo_missing_ = QString(what) + QStringLiteral(" is not installed");                       \
            if (qEnvironmentVariableIsSet("CI"))                                                                   \
                QFAIL(qPrintable(vo_missing_ + QStringLiteral(" (CI: scripts/install-deps.sh installs it)")));     \
            QSKIP(qPrintable(vo_missing_));                                                                        \
        }                                                                                                          \
    } while (false)

// A program on PATH.
#define VO_REQUIRE_TOOL(program)                                                                                   \
    VO_REQUIRE(!QStandardPaths::findExecutable(QStringLiteral(program)).isEmpty(),                                 \
               QStringLiteral("reference tool " program))

// A file that a package brings.
#define VO_REQUIRE_FILE(path) VO_REQUIRE(QFile::exists(path), QString("sample file %1").arg(path))
