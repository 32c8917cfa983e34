#include "ImgSvcCropCtl.h"
#include "MMCropCommand.h"
#include "MMCommandRunner.h"
#include "MMImageSource.h"
#include "ImgSvcCtlEvent.h"
#include <QtGlobal>
#include <climits>

namespace {
// The share of the picture a new selection covers, each way.
constexpr double kStartShare = 0.8;
}

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
    const QSize size = m_size.isEmpty() ? QSize(1, 1) : QSize(qMax(1, int(m_size.width() * kStartShare)),
                                                               qMax(1, int(m_size.height() * kStartShare)));
    QRect r(QPoint(0, 0), size);
    r.moveCenter(p);
    m_rect = fitted(r);
    m_handle = SecondCorner;
    emit rectChanged();
}

QPoint ImgSvcCropCtl::activeCorner() const
{
    switch (m_handle) {
    case FirstCorner:
        return m_rect.topLeft();
    case Whole:
        return m_rect.center();
    default:
        return m_rect.bottomRight();
    }
}

void ImgSvcCropCtl::switchCorner()
{
    m_handle = Handle((m_handle + 1) % 3);
    emit rectChanged();
}

int ImgSvcCropCtl::minimumSide() const
{
    // A twentieth of the shorter side: still a picture, and it can not
    // vanish under a few presses of a key held too long.
    return m_size.isEmpty() ? 1 : qMax(1, qMin(m_size.width(), m_size.height()) / 20);
}

void ImgSvcCropCtl::moveActiveCorner(int dx, int dy)
{
    QRect r = m_rect;
    const int min = minimumSide();
    const int maxX = m_size.isEmpty() ? INT_MAX / 2 : m_size.width() - 1;
    const int maxY = m_size.isEmpty() ? INT_MAX / 2 : m_size.height() - 1;
    switch (m_handle) {
    case Whole:
        r.translate(qBound(-r.left(), dx, maxX - r.right()), qBound(-r.top(), dy, maxY - r.bottom()));
        break;
    case FirstCorner:
        r.setLeft(qBound(0, r.left() + dx, qMax(0, r.right() - min + 1)));
        r.setTop(qBound(0, r.top() + dy, qMax(0, r.bottom() - min + 1)));
        break;
    case SecondCorner:
        r.setRight(qBound(qMin(maxX, r.left() + min - 1), r.right() + dx, maxX));
        r.setBottom(qBound(qMin(maxY, r.top() + min - 1), r.bottom() + dy, maxY));
        break;
    }
    if (r == m_rect)
        return;
    m_rect = r;
    emit rectChanged();
}

void ImgSvcCropCtl::refresh(bool reload)
{
    // The base emits inputChanged, which re-reads the size and refits.
    ImgSvcCtlInterface::refresh(reload);
}

QRect ImgSvcCropCtl::fitted(QRect r) const
{
    if (m_size.isEmpty())
        return QRect(QPoint(qMax(0, r.left()), qMax(0, r.top())), r.size());
    const QRect picture(QPoint(0, 0), m_size);
    const int min = minimumSide();
    r.setWidth(qBound(min, r.width(), m_size.width()));
    r.setHeight(qBound(min, r.height(), m_size.height()));
    r.moveLeft(qBound(0, r.left(), m_size.width() - r.width()));
    r.moveTop(qBound(0, r.top(), m_size.height() - r.height()));
    return r.intersected(picture);
}

void ImgSvcCropCtl::inputSizeChanged()
{
    const QSize old = m_size;
    m_size = getInputSize();
    // A new picture gets a new selection; the same one keeps the user's.
    if (old != m_size && !m_size.isEmpty())
        set1stPoint(QPoint(m_size.width() / 2, m_size.height() / 2));
    m_rect = fitted(m_rect);
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
