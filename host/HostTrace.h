#pragma once
#include <QElapsedTimer>
#include <QFile>
#include <QObject>
#include <QSet>

class QFileSystemWatcher;
class QWidget;

// Writes a time-stamped line for what a person would notice, so that
// latencies can be read off a whole keypad session: every key the script
// sends (and when its handling returned), every window shown, the first
// paint of each shown window, the first paint after a key of each window
// already up ("updated"), windows hidden, and each time the picture file
// changes on disk. Times are milliseconds since the trace began.
class HostTrace : public QObject
{
    Q_OBJECT
public:
    HostTrace(const QString &logPath, const QString &pictureFile, QObject *parent = nullptr);
    bool isOpen() const { return m_log.isOpen(); }

    void log(const QString &what);
    // A key about to be sent.
    void logKey(const QString &name);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void checkPicture();

    QElapsedTimer m_clock;
    QFile m_log;
    QString m_picture;
    QByteArray m_signature;
    QFileSystemWatcher *m_watcher;
    QSet<QWidget *> m_awaitingPaint;
    QSet<QWidget *> m_awaitingUpdate;
};
