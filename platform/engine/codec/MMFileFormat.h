#pragma once
#include "MMImageInfo.h"
#include <QByteArray>
#include <QString>

// Names image formats the way Qt's readers and writers do ("jpeg", "png",
// ...), and picks the format a file is written in.
class MMFileFormat
{
public:
    static MMImageFormat fromQtName(const QByteArray &qtName);
    // The format a path's extension names ("jpg" and "jpeg" give "jpeg");
    // empty for no extension or one we do not know.
    static QByteArray fromExtension(const QString &path);
    static bool isWritable(const QByteArray &qtName);
    // The format to write path in: its extension's when we can write that,
    // else the source's, else PNG (Qt reads GIF but cannot write it).
    static QByteArray forOutput(const QString &path, const QByteArray &sourceQtName);
};
