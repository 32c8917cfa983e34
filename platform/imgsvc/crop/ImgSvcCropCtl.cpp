#include "ImgSvcCropCtl.h"
#include "MMCropCommand.h"
#include "MMCommandRunner.h"
#include "MMImageSource.h"
#include "ImgSvcCtlEvent.h"
#include <QtGlobal>

ImgSvcCropCtl::ImgSvcCropCtl(QObject *parent) : ImgSvcCtlInterface(CTL_EVENT_CROP, parent)
{
    connect(this, &ImgSvcCtlInterface::inputChanged, this, &ImgSvcCropCtl::inputSizeChanged);
}

ImgSvcCropCtl::~ImgSvcCropCtl() = default;

void ImgSvcCropCtl::setCropMoveStep(int smallStep, int largeStep)
{
    m_small = qMax(1, smallStep);
    m_large = qMax(m_small, largeStep);
}

void ImgSvcCropCtl::set1stPoint(const QPoint &p)
{
    m_p1 = m_p2 = clamped(p);
    m_second = true;
    emit rectChanged();
}

QRect ImgSvcCropCtl::getCropRect() const
{
    // Built from the extremes rather than QRect::normalized(), which leaves
    // a rectangle whose corners are one pixel apart in the wrong order empty.
    const QRect r(QPoint(qMin(m_p1.x(), m_p2.x()), qMin(m_p1.y(), m_p2.y())),
                  QPoint(qMax(m_p1.x(), m_p2.x()), qMax(m_p1.y(), m_p2.y())));
    return m_size.isEmpty() ? r : r.intersected(QRect(QPoint(0, 0), m_size));
}

void ImgSvcCropCtl::switchCorner()
{
    m_second = !m_second;
    emit rectChanged();
}

void ImgSvcCropCtl::moveActiveCorner(int dx, int dy)
{
    QPoint &corner = m_second ? m_p2 : m_p1;
    const QPoint moved = clamped(corner + QPoint(dx, dy));
    if (moved == corner)
        return;
    corner = moved;
    emit rectChanged();
}

void ImgSvcCropCtl::refresh(bool reload)
{
    // The base emits inputChanged, which re-reads the size and clips the corners.
    ImgSvcCtlInterface::refresh(reload);
}

QPoint ImgSvcCropCtl::clamped(const QPoint &p) const
{
    if (m_size.isEmpty())
        return QPoint(qMax(0, p.x()), qMax(0, p.y()));
    return QPoint(qBound(0, p.x(), m_size.width() - 1), qBound(0, p.y(), m_size.height() - 1));
}

void ImgSvcCropCtl::inputSizeChanged()
{
    m_size = getInputSize();
    m_p1 = clamped(m_p1);
    m_p2 = clamped(m_p2);
    emit rectChanged();
}

void ImgSvcCropCtl::writeResult()
{
    const QRect r = getCropRect();
    MMCropCommand crop;
    crop.setRect(MMRect(r.x(), r.y(), r.width(), r.height()));
    std::list<MMCommand *> commands{&crop};
    MMCommandRunner::run(*getInput(), *getOutput(), commands);
}
