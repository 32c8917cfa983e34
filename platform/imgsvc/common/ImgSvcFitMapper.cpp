#include "ImgSvcFitMapper.h"
#include <QtGlobal>
#include <cmath>

ImgSvcFitMapper::ImgSvcFitMapper(const QSize &imageSize, const QRect &area) : m_image(imageSize)
{
    if (imageSize.isEmpty() || area.isEmpty())
        return;
    m_scale = qMin(double(area.width()) / imageSize.width(), double(area.height()) / imageSize.height());
    // Whole pixels, so that the picture is not drawn with blurred edges.
    const double w = qMax(1.0, std::round(imageSize.width() * m_scale));
    const double h = qMax(1.0, std::round(imageSize.height() * m_scale));
    m_display = QRectF(area.x() + std::floor((area.width() - w) / 2), area.y() + std::floor((area.height() - h) / 2), w, h);
}

QPointF ImgSvcFitMapper::toArea(const QPointF &imagePoint) const
{
    if (!isValid())
        return QPointF();
    return QPointF(m_display.x() + imagePoint.x() * m_display.width() / m_image.width(),
                   m_display.y() + imagePoint.y() * m_display.height() / m_image.height());
}

QRectF ImgSvcFitMapper::toArea(const QRect &imageRect) const
{
    if (!isValid() || imageRect.isEmpty())
        return QRectF();
    return QRectF(toArea(QPointF(imageRect.left(), imageRect.top())),
                  toArea(QPointF(imageRect.right() + 1, imageRect.bottom() + 1)));
}

QPoint ImgSvcFitMapper::toImage(const QPointF &areaPoint) const
{
    if (!isValid())
        return QPoint();
    const double x = (areaPoint.x() - m_display.x()) * m_image.width() / m_display.width();
    const double y = (areaPoint.y() - m_display.y()) * m_image.height() / m_display.height();
    return QPoint(qBound(0, int(std::floor(x)), m_image.width() - 1), qBound(0, int(std::floor(y)), m_image.height() - 1));
}
