#pragma once
// Small helpers shared by the tests: pictures made at run time, file bytes.
#include <QByteArray>
#include <QColor>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QString>

namespace testimages {

// A picture with a distinct colour in each quadrant and a diagonal, so that
// any rotation, mirror or crop changes it visibly.
inline QImage pattern(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter p(&image);
    p.fillRect(0, 0, width / 2, height / 2, QColor(200, 30, 30));
    p.fillRect(width / 2, 0, width - width / 2, height / 2, QColor(30, 200, 30));
    p.fillRect(0, height / 2, width / 2, height - height / 2, QColor(30, 30, 200));
    p.setPen(QColor(250, 250, 0));
    p.drawLine(0, 0, width - 1, height - 1);
    return image;
}

inline bool write(const QString &path, int width, int height, const char *format = nullptr, int quality = 90)
{
    return pattern(width, height).save(path, format, quality);
}

inline QByteArray bytes(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline bool writeBytes(const QString &path, const QByteArray &data)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(data) == data.size();
}

} // namespace testimages
