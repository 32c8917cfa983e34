#include "ImgSvcElementFactory.h"
#include "MMImageWriter.h"
#include "VOUtility.h"
#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>

// Element files are drawn no larger than this on their long side.
static constexpr int MaxFileSide = 1600;

static void drawStar(QPainter &p, const QRectF &r)
{
    const QPointF c = r.center();
    const double outer = qMin(r.width(), r.height()) / 2 * 0.94, inner = outer * 0.42;
    QPolygonF star;
    for (int i = 0; i < 10; ++i) {
        const double a = qDegreesToRadians(-90.0 + i * 36.0);
        const double rad = i % 2 ? inner : outer;
        star << c + QPointF(rad * std::cos(a), rad * std::sin(a));
    }
    p.setPen(QPen(QColor(160, 80, 0), qMax(1.0, outer / 14), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(QColor(255, 205, 40));
    p.drawPolygon(star);
}

static void drawHeart(QPainter &p, const QRectF &r)
{
    const double s = qMin(r.width(), r.height()) * 0.94;
    const QRectF b(r.center().x() - s / 2, r.center().y() - s / 2, s, s);
    QPainterPath heart;
    heart.moveTo(b.center().x(), b.top() + s * 0.28);
    heart.cubicTo(b.left() + s * 0.38, b.top() - s * 0.02, b.left() - s * 0.02, b.top() + s * 0.18, b.left() + s * 0.04, b.top() + s * 0.42);
    heart.cubicTo(b.left() + s * 0.10, b.top() + s * 0.64, b.left() + s * 0.36, b.top() + s * 0.80, b.center().x(), b.bottom() - s * 0.02);
    heart.cubicTo(b.right() - s * 0.36, b.top() + s * 0.80, b.right() - s * 0.10, b.top() + s * 0.64, b.right() - s * 0.04, b.top() + s * 0.42);
    heart.cubicTo(b.right() + s * 0.02, b.top() + s * 0.18, b.right() - s * 0.38, b.top() - s * 0.02, b.center().x(), b.top() + s * 0.28);
    p.setPen(QPen(QColor(120, 0, 20), qMax(1.0, s / 28), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(QColor(225, 30, 60));
    p.drawPath(heart);
}

static void drawFrame(QPainter &p, const QRectF &r)
{
    const double band = qMax(2.0, qMin(r.width(), r.height()) / 18);
    QPainterPath border;
    border.setFillRule(Qt::OddEvenFill);
    border.addRect(r);
    border.addRect(r.adjusted(band, band, -band, -band));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(245, 240, 225));
    p.drawPath(border);
    // A thin dark line inside the band, as a mat would have.
    const double line = qMax(1.0, band / 6);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(70, 50, 30), line));
    p.drawRect(r.adjusted(band - line / 2, band - line / 2, -band + line / 2, -band + line / 2));
}

static void drawText(QPainter &p, const QRectF &r, const QString &text, const QColor &fill, const QColor &edge)
{
    QFont f = p.font();
    f.setBold(true);
    f.setPixelSize(qMax(4, int(r.height() * 0.75)));
    const double width = QFontMetricsF(f).horizontalAdvance(text);
    if (width > r.width() * 0.92)
        f.setPixelSize(qMax(4, int(f.pixelSize() * r.width() * 0.92 / width)));
    const QFontMetricsF fm(f);
    QPainterPath path;
    const QPointF at(r.center().x() - fm.horizontalAdvance(text) / 2, r.center().y() + (fm.ascent() - fm.descent()) / 2);
    path.addText(at, f, text);
    if (edge.alpha() == 0)
        p.setPen(Qt::NoPen);
    else
        p.setPen(QPen(edge, qMax(1.0, f.pixelSize() / 9.0), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(fill);
    p.drawPath(path);
}

static void drawBubble(QPainter &p, const QRectF &r)
{
    const double pen = qMax(1.0, qMin(r.width(), r.height()) / 30);
    const QRectF body = r.adjusted(pen, pen, -pen, -r.height() * 0.25);
    QPainterPath bubble;
    bubble.addEllipse(body);
    QPainterPath tail;
    tail.moveTo(body.left() + body.width() * 0.30, body.bottom() - body.height() * 0.15);
    tail.lineTo(body.left() + body.width() * 0.18, r.bottom() - pen);
    tail.lineTo(body.left() + body.width() * 0.48, body.bottom() - body.height() * 0.08);
    tail.closeSubpath();
    bubble = bubble.united(tail);
    p.setPen(QPen(Qt::black, pen, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::white);
    p.drawPath(bubble);
    const QRectF textBox = body.adjusted(body.width() * 0.2, body.height() * 0.28, -body.width() * 0.2, -body.height() * 0.28);
    drawText(p, textBox, QCoreApplication::translate("ImgSvcElementFactory", "Hi!"), Qt::black, Qt::transparent);
}

QString ImgSvcElementFactory::name(int element)
{
    switch (element) {
    case Star:
        return QCoreApplication::translate("ImgSvcElementFactory", "Star");
    case Heart:
        return QCoreApplication::translate("ImgSvcElementFactory", "Heart");
    case Frame:
        return QCoreApplication::translate("ImgSvcElementFactory", "Frame");
    case DateStamp:
        return QCoreApplication::translate("ImgSvcElementFactory", "Date");
    case Bubble:
        return QCoreApplication::translate("ImgSvcElementFactory", "Speech bubble");
    default:
        return QString();
    }
}

QSize ImgSvcElementFactory::elementSize(int element, const QSize &imageSize)
{
    if (imageSize.isEmpty() || element < 0 || element >= ElementCount)
        return QSize();
    if (element == Frame)
        return imageSize;
    const int side = qMax(1, qMin(imageSize.width(), imageSize.height()) / 4);
    QSize s(side, side);
    if (element == Bubble)
        s = QSize(side * 3 / 2, side);
    else if (element == DateStamp)
        s = QSize(side * 2, qMax(1, side / 2));
    return s.boundedTo(imageSize);
}

QImage ImgSvcElementFactory::render(int element, const QSize &size, const QDate &date)
{
    if (size.isEmpty() || element < 0 || element >= ElementCount)
        return QImage();
    QImage img(size, QImage::Format_ARGB32_Premultiplied);
    img.fill(Qt::transparent);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r(QPointF(0, 0), QSizeF(size));
    switch (element) {
    case Star:
        drawStar(p, r);
        break;
    case Heart:
        drawHeart(p, r);
        break;
    case Frame:
        drawFrame(p, r);
        break;
    case DateStamp:
        // The look of a camera's date imprint: orange digits, dark edge. ISO
        // order reads the same in every country.
        drawText(p, r, (date.isValid() ? date : QDate::currentDate()).toString(Qt::ISODate), QColor(255, 140, 20), QColor(60, 20, 0));
        break;
    case Bubble:
        drawBubble(p, r);
        break;
    }
    return img;
}

QString ImgSvcElementFactory::writeTempFile(int element, const QSize &placedSize, const QDate &date)
{
    QSize drawn = placedSize;
    if (drawn.width() > MaxFileSide || drawn.height() > MaxFileSide)
        drawn.scale(MaxFileSide, MaxFileSide, Qt::KeepAspectRatio);
    const QImage img = render(element, drawn.expandedTo(QSize(1, 1)), date);
    if (img.isNull())
        return QString();
    // Created exclusively with its extension, so the name written is ours.
    const QString path = QString::fromStdString(VOUtility::genTempFileName(QDir::tempPath().toStdString() + '/', ".png"));
    if (path.isEmpty())
        return QString();
    if (MMImageWriter::write(img, path) == 0)
        return path;
    QFile::remove(path);
    return QString();
}
