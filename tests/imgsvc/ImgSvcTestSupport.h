#pragma once
// Shared by the image-service tests: a receiver that records the reports of
// the controls, a generated picture, and keypad input.
#include "ImgSvcCtlEvent.h"
#include "MMImageSource.h"
#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QTest>

using Keys = QList<int>;
// A control's report: (type, result).
using Reports = QList<QPoint>;

class ReportRecorder : public QObject
{
public:
    Reports received;
    // What has arrived once the posted reports are delivered.
    Reports delivered()
    {
        QCoreApplication::sendPostedEvents(this);
        return received;
    }

protected:
    void customEvent(QEvent *event) override
    {
        if (auto *e = dynamic_cast<ImgSvcCtlEvent *>(event))
            received.append(QPoint(e->type(), e->getResult()));
    }
};

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

inline void writeSource(MMImageSource &source, const QString &path, const QImage &img)
{
    QVERIFY(img.save(path));
    source.setFile(path.toStdString());
}

// In a Keys list: an auto-repeated press, as the handset sends while a key is held.
constexpr int Held = 0x40000000;

// Sent without QTest's ASCII lookup, which asserts on keys that have no
// character (the soft keys, Select).
inline void sendKeys(QWidget *w, const Keys &keys)
{
    for (int k : keys) {
        if (k & Held)
            QTest::simulateEvent(w, true, k & ~Held, Qt::NoModifier, QString(), true);
        else
            QTest::sendKeyEvent(QTest::Click, w, Qt::Key(k), QString(), Qt::NoModifier);
    }
}
