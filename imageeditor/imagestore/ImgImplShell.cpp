#include "ImgImplShell.h"

#include <cstdlib>
#include <sys/wait.h>

QByteArray ImgImplShell::quotePath(const QString &path)
{
    QByteArray bytes = path.toUtf8();
    if (bytes.startsWith('-'))
        bytes.prepend("./");
    QByteArray quoted;
    quoted.reserve(bytes.size() + 2);
    quoted.append('\'');
    for (char c : bytes) {
        if (c == '\'')
            quoted.append("'\\''");
        else
            quoted.append(c);
    }
    quoted.append('\'');
    return quoted;
}

QByteArray ImgImplShell::copyCommand(const QString &source, const QString &destination, const char *separator)
{
    return QByteArray("cp -fa") + separator + quotePath(source) + ' ' + quotePath(destination);
}

int ImgImplShell::run(const QByteArray &command)
{
    const int status = std::system(command.constData());
    if (status == -1)
        return -1;
    if (WIFEXITED(status) && WEXITSTATUS(status) != 0)
        return -1;
    return 0;
}
