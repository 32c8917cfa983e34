#pragma once
#include <QByteArray>
#include <QString>

// Builds shell command text for the file copies run through system().
class ImgImplShell
{
public:
    // One shell word that stands for exactly this path, whatever it holds:
    // single-quoted, each embedded single quote written as '\''. A relative
    // path that starts with '-' gets "./" so the command cannot take it for
    // an option.
    static QByteArray quotePath(const QString &path);
    // "cp -fa" + separator + source + " " + destination, each path quoted.
    static QByteArray copyCommand(const QString &source, const QString &destination,
                                  const char *separator = " ");
    // Runs a command through system(): 0 when it ran and exited 0 or was
    // ended by a signal; -1 when system() failed or the exit status was not 0.
    static int run(const QByteArray &command);
};
