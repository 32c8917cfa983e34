#include "ZSkinService.h"
#include "ZTheme.h"
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>
#include <QtMath>

namespace {
enum class Turn { Clockwise, Anticlockwise };

QImage clockwiseIcon(int size, bool pressed)
{
    QImage img(size, size, QImage::Format_ARGB32_Premultiplied);
    img.fill(Qt::transparent);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);

    const QRectF face(0.5, 0.5, size - 1.0, size - 1.0);
    QLinearGradient g(face.topLeft(), face.bottomLeft());
    if (pressed) {
        g.setColorAt(0, ZTheme::accent().lighter(125));
        g.setColorAt(1, ZTheme::accentDark());
    } else {
        g.setColorAt(0, QColor(0x5a, 0x60, 0x6a));
        g.setColorAt(1, QColor(0x26, 0x29, 0x2e));
    }
    p.setPen(QPen(pressed ? QColor(Qt::white) : QColor(0x9a, 0xa0, 0xa8), qMax(1.0, size / 22.0)));
    p.setBrush(g);
    p.drawEllipse(face);

    // Angles in Qt's convention: degrees, counter-clockwise from 3 o'clock.
    const QPointF c(size / 2.0, size / 2.0);
    const double r = size * 0.27;
    const double startDeg = 235;
    const double sweepDeg = -265; // clockwise on screen
    const double pen = qMax(1.5, size * 0.09);
    QPainterPath arc;
    const QRectF circle(c.x() - r, c.y() - r, 2 * r, 2 * r);
    arc.arcMoveTo(circle, startDeg);
    arc.arcTo(circle, startDeg, sweepDeg);
    const QColor ink = pressed ? QColor(Qt::white) : QColor(0xf0, 0xf0, 0xf0);
    p.setPen(QPen(ink, pen, Qt::SolidLine, Qt::RoundCap));
    p.setBrush(Qt::NoBrush);
    p.drawPath(arc);

    const double endRad = qDegreesToRadians(startDeg + sweepDeg);
    const QPointF end(c.x() + r * qCos(endRad), c.y() - r * qSin(endRad));
    const QPointF dir(qSin(endRad), qCos(endRad)); // clockwise tangent, screen coordinates
    const QPointF normal(-dir.y(), dir.x());
    const double head = size * 0.16;
    QPolygonF tip;
    tip << end + dir * head * 1.1 << end + normal * head - dir * head * 0.3 << end - normal * head - dir * head * 0.3;
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    p.drawPolygon(tip);
    return img;
}

// The anticlockwise icon is the clockwise one mirrored pixel for pixel, so the
// pair always matches (antialiasing is not exactly symmetric when redrawn).
QPixmap rotateIcon(int size, Turn turn, bool pressed)
{
    const QImage clockwise = clockwiseIcon(size, pressed);
    return QPixmap::fromImage(turn == Turn::Clockwise ? clockwise : clockwise.mirrored(true, false));
}

QPixmap errorIcon(int size)
{
    QPixmap pm(size, size);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF face(0.5, 0.5, size - 1.0, size - 1.0);
    QRadialGradient g(face.center() - QPointF(size * 0.15, size * 0.15), size * 0.7);
    g.setColorAt(0, QColor(0xf2, 0x4b, 0x3c));
    g.setColorAt(1, QColor(0xa8, 0x12, 0x0c));
    p.setPen(QPen(QColor(0x6a, 0x08, 0x05), qMax(1.0, size / 24.0)));
    p.setBrush(g);
    p.drawEllipse(face);

    // A white cross, the usual "error" mark.
    const double d = size * 0.2;
    const QPointF c = face.center();
    p.setPen(QPen(Qt::white, qMax(2.0, size * 0.13), Qt::SolidLine, Qt::RoundCap));
    p.drawLine(c + QPointF(-d, -d), c + QPointF(d, d));
    p.drawLine(c + QPointF(d, -d), c + QPointF(-d, d));
    return pm;
}

QPixmap drawIcon(const QString &name, int size)
{
    if (name == QLatin1String("mp_vid_rot_90_rt_p_nav"))
        return rotateIcon(size, Turn::Clockwise, true);
    if (name == QLatin1String("mp_vid_rot_90_rt_unp_nav"))
        return rotateIcon(size, Turn::Clockwise, false);
    if (name == QLatin1String("mp_vid_rot_90_lft_p_nav"))
        return rotateIcon(size, Turn::Anticlockwise, true);
    if (name == QLatin1String("mp_vid_rot_90_lft_unp_nav"))
        return rotateIcon(size, Turn::Anticlockwise, false);
    if (name == QLatin1String("error_pop"))
        return errorIcon(size);
    return QPixmap();
}
} // namespace

QPixmap ZSkinService::getPixmap(const QString &resourceName)
{
    // Pixmaps need a GUI application; without one there is nothing to draw on.
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return QPixmap();
    // QPixmapCache rather than a static container: it is torn down with the
    // GUI application. Keyed by size too, as the screen size may change.
    const int size = qMax(16, ZTheme::scaled(24));
    const QString key = QLatin1String("zskin:") + resourceName + QLatin1Char('@') + QString::number(size);
    QPixmap pm;
    if (QPixmapCache::find(key, &pm))
        return pm;
    pm = drawIcon(resourceName, size);
    if (!pm.isNull())
        QPixmapCache::insert(key, pm);
    return pm;
}
