#include "ImgSvcOverlayView.h"
#include "ImgSvcElementFactory.h"
#include <QPainter>

ImgSvcOverlayView::ImgSvcOverlayView(QWidget *parent) : ImgSvcPictureView(parent)
{
}

ImgSvcOverlayView::~ImgSvcOverlayView() = default;

void ImgSvcOverlayView::addPlaced(int element, const QRect &rect)
{
    m_placed.push_back({element, rect});
    update();
}

void ImgSvcOverlayView::setCurrent(int element, const QRect &rect, bool moving)
{
    m_current = element;
    m_currentRect = rect;
    m_moving = moving;
    update();
}

void ImgSvcOverlayView::paintMarks(QPainter &painter, const ImgSvcFitMapper &map)
{
    for (const Placed &p : m_placed)
        drawElement(painter, p.element, map.toArea(p.rect));
    if (m_current < 0)
        return;
    const QRectF at = map.toArea(m_currentRect);
    drawElement(painter, m_current, at);
    // Dark under light, so the outline shows on any picture.
    const QRectF box = at.adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::black, 1));
    painter.drawRect(box);
    painter.setPen(QPen(m_moving ? QColor(255, 200, 0) : Qt::white, 1, m_moving ? Qt::SolidLine : Qt::DashLine));
    painter.drawRect(box);
}

void ImgSvcOverlayView::drawElement(QPainter &painter, int element, const QRectF &at) const
{
    // Drawn afresh at screen size: a few small images per key press, and
    // always as sharp as the screen allows.
    const QRect target = at.toAlignedRect();
    const QImage img = ImgSvcElementFactory::render(element, target.size(), m_stampDate);
    if (!img.isNull())
        painter.drawImage(target.topLeft(), img);
}
