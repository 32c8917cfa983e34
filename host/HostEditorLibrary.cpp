#include "HostEditorLibrary.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <dlfcn.h>

HostEditorLibrary::~HostEditorLibrary()
{
    // The library stays loaded: Qt keeps meta-objects of it until exit.
}

bool HostEditorLibrary::load()
{
    QStringList candidates;
    const QByteArray fromEnv = qgetenv("VO_IMAGEEDITOR_LIB");
    if (!fromEnv.isEmpty())
        candidates << QString::fromLocal8Bit(fromEnv);
    const QString appDir = QCoreApplication::applicationDirPath();
    candidates << QDir(appDir).filePath(QStringLiteral("../lib/libvoimageeditor.so.1"))
               << QStringLiteral("libvoimageeditor.so.1");

    for (const QString &candidate : candidates) {
        if (candidate.contains(QLatin1Char('/')) && !QFileInfo::exists(candidate))
            continue;
        m_handle = dlopen(QFile::encodeName(candidate).constData(), RTLD_NOW | RTLD_LOCAL);
        if (m_handle)
            break;
        m_error = QString::fromLocal8Bit(dlerror());
    }
    if (!m_handle) {
        if (m_error.isEmpty())
            m_error = QStringLiteral("libvoimageeditor.so.1 not found");
        return false;
    }
    m_launch = reinterpret_cast<LaunchFn>(dlsym(m_handle, "launchImageEditor"));
    m_release = reinterpret_cast<ReleaseFn>(dlsym(m_handle, "releaseImageEditor"));
    if (!m_launch || !m_release) {
        m_error = QStringLiteral("the editor library lacks its entry points");
        return false;
    }
    return true;
}

QWidget *HostEditorLibrary::launch(const QString &file, QWidget *parent)
{
    return m_launch ? m_launch(file, parent, nullptr) : nullptr;
}

void HostEditorLibrary::release()
{
    if (m_release)
        m_release();
}
