#include "ImgSvcCropView.h"
#include "ImgSvcCropCtl.h"
#include "ZGlobal.h"
#include <QPainter>
#include <QPainterPath>

ImgSvcCropView::ImgSvcCropView(ImgSvcCropCtl *ctl, QWidget *parent) : ImgSvcPictureView(parent), m_ctl(ctl)
{
    connect(m_ctl, &ImgSvcCropCtl::rectChanged, this, qOverload<>(&QWidget::update));
    connect(m_ctl, &ImgSvcCtlInterface::inputChanged, this, &ImgSvcCropView::reload);
    reload();
}

ImgSvcCropView::~ImgSvcCropView() = default;

void ImgSvcCropView::reload()
{
    setPicture(decodeForScreen(m_ctl->getInput()), m_ctl->getInputSize());
}

void ImgSvcCropView::paintMarks(QPainter &painter, const ImgSvcFitMapper &map)
{
    const QRectF sel = map.toArea(m_ctl->getCropRect());
    if (sel.isEmpty())
        return;
    painter.setRenderHint(QPainter::Antialiasing, false);

    QPainterPath outside;
    outside.addRect(map.displayRect());
    outside.addRect(sel);
    painter.fillPath(outside, QColor(0, 0, 0, 150)); // odd-even fill: the selection stays clear

    // A dark line under the bright one keeps the frame visible on light pictures.
    const QRectF frame = sel.adjusted(0, 0, -1, -1);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0, 0, 0, 160), 1));
    painter.drawRect(frame.adjusted(-1, -1, 1, 1));
    painter.setPen(QPen(Qt::white, 1));
    painter.drawRect(frame);

    // Sized for the screen: a larger screen has smaller pixels.
    const double side = 7 * qMax(1.0, ZGlobal::screenSize().width() / 240.0);
    const QPoint c = m_ctl->activeCorner();
    const QPointF at = map.toArea(QRect(c, c)).center();
    const QRectF mark(at.x() - side / 2, at.y() - side / 2, side, side);
    painter.setPen(QPen(Qt::black, 1));
    painter.setBrush(QColor(255, 200, 0));
    painter.drawRect(mark);
}
