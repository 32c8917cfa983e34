#include "HostTrace.h"
#include <QApplication>
#include <QEvent>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QWidget>
#include <sys/stat.h>

namespace {
// Changes whether the file is replaced (a new inode) or rewritten in place.
QByteArray signatureOf(const QString &path)
{
    struct stat st;
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return QByteArray();
    return QByteArray::number(qint64(st.st_ino)) + ' ' + QByteArray::number(qint64(st.st_size)) + ' '
        + QByteArray::number(qint64(st.st_mtim.tv_sec)) + '.' + QByteArray::number(qint64(st.st_mtim.tv_nsec));
}
}

HostTrace::HostTrace(const QString &logPath, const QString &pictureFile, QObject *parent)
    : QObject(parent), m_log(logPath), m_picture(pictureFile), m_watcher(new QFileSystemWatcher(this))
{
    m_clock.start();
    if (!m_log.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        return;
    m_signature = signatureOf(m_picture);
    m_watcher->addPath(QFileInfo(m_picture).absolutePath());
    m_watcher->addPath(m_picture);
    connect(m_watcher, &QFileSystemWatcher::directoryChanged, this, &HostTrace::checkPicture);
    connect(m_watcher, &QFileSystemWatcher::fileChanged, this, &HostTrace::checkPicture);
    qApp->installEventFilter(this);
    log(QStringLiteral("start"));
}

void HostTrace::log(const QString &what)
{
    if (!m_log.isOpen())
        return;
    m_log.write(QString::asprintf("%.1f ", m_clock.nsecsElapsed() / 1.0e6).toUtf8() + what.toUtf8() + '\n');
    m_log.flush();
}

void HostTrace::logKey(const QString &name)
{
    log(QStringLiteral("key ") + name);
    // What a window on the screen paints next is its answer to the key.
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (w->isVisible() && !m_awaitingPaint.contains(w))
            m_awaitingUpdate.insert(w);
    }
}

void HostTrace::checkPicture()
{
    const QByteArray signature = signatureOf(m_picture);
    if (signature == m_signature || signature.isEmpty())
        return;
    m_signature = signature;
    log(QStringLiteral("changed"));
    m_watcher->addPath(m_picture); // a replaced file's watch went with the old inode
}

bool HostTrace::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::Show || type == QEvent::Hide || type == QEvent::Paint) {
        QWidget *widget = qobject_cast<QWidget *>(watched);
        if (widget && type == QEvent::Hide && widget->isWindow()) {
            m_awaitingPaint.remove(widget);
            m_awaitingUpdate.remove(widget);
            log(QStringLiteral("hidden %1").arg(QString::fromLatin1(widget->metaObject()->className())));
        } else if (widget && type == QEvent::Show && widget->isWindow()) {
            m_awaitingPaint.insert(widget);
            m_awaitingUpdate.remove(widget);
            log(QStringLiteral("shown %1").arg(QString::fromLatin1(widget->metaObject()->className())));
        } else if (widget && type == QEvent::Paint && m_awaitingPaint.remove(widget->window())) {
            log(QStringLiteral("painted %1").arg(QString::fromLatin1(widget->window()->metaObject()->className())));
        } else if (widget && type == QEvent::Paint && m_awaitingUpdate.remove(widget->window())) {
            log(QStringLiteral("updated %1").arg(QString::fromLatin1(widget->window()->metaObject()->className())));
        }
    }
    return QObject::eventFilter(watched, event);
}
