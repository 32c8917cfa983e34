#pragma once
// Shared by the image-service tests: a receiver that records the reports of
// the controls, and small generated pictures.
#include "ImgSvcCtlEvent.h"
#include <QColor>
#include <QCoreApplication>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPainter>
#include <QString>
#include <QTest>

class ReportRecorder : public QObject
{
public:
    struct Report
    {
        int type;
        int result;
        bool operator==(const Report &o) const { return type == o.type && result == o.result; }
    };
    QList<Report> reports;

protected:
    void customEvent(QEvent *event) override
    {
        if (auto *e = dynamic_cast<ImgSvcCtlEvent *>(event))
            reports.append({int(e->type()), e->getResult()});
    }
};

inline QList<ReportRecorder::Report> deliveredReports(ReportRecorder &rec)
{
    QCoreApplication::sendPostedEvents(&rec);
    return rec.reports;
}

// Four quadrants of distinct colours, so that any turn or flip shows.
inline QImage quadrantImage(int w, int h)
{
    QImage img(w, h, QImage::Format_RGB32);
    QPainter p(&img);
    p.fillRect(0, 0, w / 2, h / 2, QColor(220, 30, 30));
    p.fillRect(w / 2, 0, w - w / 2, h / 2, QColor(30, 200, 30));
    p.fillRect(0, h / 2, w / 2, h - h / 2, QColor(30, 30, 220));
    p.fillRect(w / 2, h / 2, w - w / 2, h - h / 2, QColor(240, 240, 40));
    return img;
}

inline QString writeImage(const QString &path, const QImage &img)
{
    return img.save(path) ? path : QString();
}

// Keypad keys, sent the way QTest would but without its ASCII lookup, which
// asserts on keys that have no character (the soft keys, Select).
inline void clickKey(QWidget *w, int key)
{
    QTest::sendKeyEvent(QTest::Click, w, Qt::Key(key), QString(), Qt::NoModifier);
}

inline void pressKey(QWidget *w, int key)
{
    QTest::sendKeyEvent(QTest::Press, w, Qt::Key(key), QString(), Qt::NoModifier);
}

inline void releaseKey(QWidget *w, int key)
{
    QTest::sendKeyEvent(QTest::Release, w, Qt::Key(key), QString(), Qt::NoModifier);
}

// A key press the handset sends while a key is held.
inline void pressRepeated(QWidget *w, Qt::Key key)
{
    QTest::simulateEvent(w, true, key, Qt::NoModifier, QString(), true);
}
