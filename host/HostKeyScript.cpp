#include "HostKeyScript.h"

#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QMetaEnum>
#include <algorithm>
#include <QPainter>
#include <QTimer>
#include <QWidget>

namespace {
int keyFromName(const QString &name)
{
    const QMetaEnum keys = QMetaEnum::fromType<Qt::Key>();
    bool ok = false;
    const int key = keys.keyToValue(("Key_" + name.toLatin1()).constData(), &ok);
    return ok ? key : -1;
}

QWidget *keyTarget(const QHash<QWidget *, int> &shownOrder)
{
    if (QWidget *w = QApplication::activePopupWidget())
        return w;
    if (QWidget *w = QApplication::activeModalWidget())
        return w->focusWidget() ? w->focusWidget() : w;
    if (QWidget *w = QApplication::focusWidget())
        return w;
    if (QWidget *w = QApplication::activeWindow())
        return w;
    // Without a window manager nothing may be active: take the visible
    // window shown last.
    QWidget *newest = nullptr;
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (w->isVisible() && (!newest || shownOrder.value(w) > shownOrder.value(newest)))
            newest = w;
    }
    return newest;
}
} // namespace

HostKeyScript::HostKeyScript(const QString &script, int delayMs, const QString &shotDir, QObject *parent)
    : QObject(parent), m_delay(delayMs), m_shotDir(shotDir)
{
    m_steps = script.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    qApp->installEventFilter(this);
}

bool HostKeyScript::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show && watched->isWidgetType()) {
        auto *w = static_cast<QWidget *>(watched);
        if (w->isWindow())
            m_shownOrder.insert(w, ++m_showCounter);
    }
    return QObject::eventFilter(watched, event);
}

bool HostKeyScript::parse(QString *error)
{
    for (const QString &s : m_steps) {
        if (s.startsWith(QLatin1String("text:")))
            continue;
        if (s.startsWith(QLatin1String("wait:"))) {
            bool ok = false;
            s.mid(5).toInt(&ok);
            if (!ok) {
                *error = QStringLiteral("bad wait step: ") + s;
                return false;
            }
            continue;
        }
        if (keyFromName(s) < 0) {
            *error = QStringLiteral("unknown key: ") + s;
            return false;
        }
    }
    return true;
}

void HostKeyScript::start()
{
    QTimer::singleShot(m_delay, this, &HostKeyScript::step);
}

void HostKeyScript::step()
{
    if (m_next >= m_steps.size()) {
        emit finished();
        return;
    }
    const QString s = m_steps.at(m_next++);
    int pause = m_delay;
    if (s.startsWith(QLatin1String("wait:"))) {
        pause = s.mid(5).toInt();
    } else {
        // The screen as the first key finds it, then one shot after each key.
        if (!m_keySent) {
            m_keySent = true;
            takeShot();
        }
        if (s.startsWith(QLatin1String("text:"))) {
            for (const QChar c : s.mid(5))
                sendKey(Qt::Key_unknown, QString(c));
        } else {
            emit keyPressing(s);
            sendKey(keyFromName(s), QString());
            emit keyReturned(s);
        }
        // Let the key's consequences (posted events, repaints) settle first.
        ++m_pendingShots;
        QTimer::singleShot(shotDelay(), this, [this] {
            takeShot();
            --m_pendingShots;
        });
    }
    QTimer::singleShot(pause, this, &HostKeyScript::step);
}

int HostKeyScript::shotDelay() const
{
    return qMax(50, m_delay / 2);
}

void HostKeyScript::sendKey(int key, const QString &text)
{
    QWidget *target = keyTarget(m_shownOrder);
    if (!target)
        return;
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(target, &press);
    target = keyTarget(m_shownOrder);
    if (!target)
        return;
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(target, &release);
}

QString HostKeyScript::takeShot()
{
    if (m_shotDir.isEmpty())
        return QString();
    // Compose the visible windows in the order they were last shown: a
    // window shown later lies over the earlier ones.
    QWidgetList all = QApplication::topLevelWidgets();
    std::stable_sort(all.begin(), all.end(), [this](QWidget *a, QWidget *b) {
        return m_shownOrder.value(a, 0) < m_shownOrder.value(b, 0);
    });
    QSize size(240, 320);
    for (QWidget *w : all) {
        if (w->isVisible() && w->isWindow())
            size = size.expandedTo(QSize(w->geometry().right() + 1, w->geometry().bottom() + 1));
    }
    QImage shot(size, QImage::Format_RGB32);
    shot.fill(Qt::black);
    QPainter painter(&shot);
    for (QWidget *w : all) {
        if (!w->isVisible() || !w->isWindow())
            continue;
        painter.drawPixmap(w->geometry().topLeft(), w->grab());
    }
    painter.end();
    QDir().mkpath(m_shotDir);
    const QString path = QDir(m_shotDir).filePath(QStringLiteral("%1.png").arg(m_shotCount++, 3, 10, QLatin1Char('0')));
    if (!shot.save(path)) {
        m_failed = true;
        return QString();
    }
    return path;
}
