#pragma once
#include <QObject>
#include <QHash>
#include <QPointer>
#include <QStringList>

class QWidget;

// Feeds a script of key presses to whatever window has the keyboard, one
// step per event-loop turn, and saves a screenshot after each key.
//   names of Qt keys without "Key_" (Context1, Select, Up, F1, ...),
//   text:STRING types STRING, wait:MS pauses.
class HostKeyScript : public QObject
{
    Q_OBJECT
public:
    HostKeyScript(const QString &script, int delayMs, const QString &shotDir, QObject *parent = nullptr);

    // False with a message when a step cannot be understood.
    bool parse(QString *error);
    void start();
    bool failed() const { return m_failed; }

    // Saves the screen as shotDir/NNN.png; returns the path or an empty string.
    QString takeShot();
    // Screenshots still due, and how long one takes to come due.
    int pendingShots() const { return m_pendingShots; }
    int shotDelay() const;

signals:
    void finished();
    // Around each key sent: before its press, and once its release has
    // been handled (a key whose work runs inside its handler returns late).
    void keyPressing(const QString &name);
    void keyReturned(const QString &name);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void step();
    void sendKey(int key, const QString &text);

    QStringList m_steps;
    int m_next = 0;
    int m_delay;
    QString m_shotDir;
    int m_shotCount = 0;
    int m_pendingShots = 0;
    bool m_keySent = false;
    bool m_failed = false;
    QHash<QWidget *, int> m_shownOrder;
    int m_showCounter = 0;
};
