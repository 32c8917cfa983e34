#pragma once
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>

// Maps between the pixels of an image and the area it is shown in: the image
// fitted into the area, aspect kept, centred (enlarged too, so that small
// pictures stay workable). Image rectangles are inclusive, as QRect's are.
class ImgSvcFitMapper
{
public:
    ImgSvcFitMapper() = default;
    ImgSvcFitMapper(const QSize &imageSize, const QRect &area);

    bool isValid() const { return m_scale > 0; }
    double scale() const { return m_scale; }
    // Where the whole image lies in the area.
    QRectF displayRect() const { return m_display; }

    QPointF toArea(const QPointF &imagePoint) const;
    // The area covered by the image pixels of rect (edges included).
    QRectF toArea(const QRect &imageRect) const;
    // The image pixel under an area point, clipped to the image.
    QPoint toImage(const QPointF &areaPoint) const;

private:
    QSize m_image;
    QRectF m_display;
    double m_scale = 0;
};
