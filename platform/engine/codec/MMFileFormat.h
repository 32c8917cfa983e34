#pragma once
#include "MMImageInfo.h"
#include <QByteArray>
#include <QString>

// Names image formats the way Qt's readers and writers do ("jpeg", "png",
// ..., and ours: "gif", "webp", "heif"), and picks the format a file is
// written in.
class MMFileFormat
{
public:
    static MMImageFormat fromQtName(const QByteArray &qtName);
    // The format a path's extension names ("jpg" and "jpeg" give "jpeg",
    // "heic" gives "heif"); empty for no extension or one we do not know.
    static QByteArray fromExtension(const QString &path);
    // The usual extension of a format ("jpg", "heic", ...).
    static QString extensionFor(const QByteArray &qtName);
    static bool isWritable(const QByteArray &qtName);
    // The format to write path in, given the format the picture has (from
    // its content). Writing over the picture itself (sameFile), or to a
    // name that names no format, keeps the picture's own format; another
    // name asks for its own. Empty when that format cannot be written: the
    // caller fails rather than put other bytes under the name.
    static QByteArray forOutput(const QString &path, const QByteArray &sourceQtName, bool sameFile = false);

    // Whether the picture in path, judged by its content, can be written
    // back as it is (its format, and all its frames).
    static bool canWriteBack(const QString &path);
    // The extension a new name for the picture in path should carry: its
    // own when its format can be written back, else one that keeps the
    // most (PNG for pictures with few colours or transparency, JPEG for
    // photos).
    static QString saveSuffixFor(const QString &path);
};
