#include "ImgSvcPictureView.h"
#include "MMImageDecoder.h"
#include "MMImageSource.h"
#include "ZGlobal.h"
#include <QPainter>

ImgSvcPictureView::ImgSvcPictureView(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    // Keys belong to the screen; the view only shows.
    setFocusPolicy(Qt::NoFocus);
}

ImgSvcPictureView::~ImgSvcPictureView() = default;

void ImgSvcPictureView::setPicture(const QImage &picture, const QSize &imageSize)
{
    m_picture = picture;
    m_imageSize = imageSize.isEmpty() ? picture.size() : imageSize;
    update();
}

ImgSvcFitMapper ImgSvcPictureView::mapper() const
{
    return ImgSvcFitMapper(m_imageSize, rect());
}

QImage ImgSvcPictureView::decodeForScreen(const MMImageSource *source)
{
    if (!source)
        return QImage();
    return MMImageDecoder::decodeFitting(QString::fromStdString(source->getFileName()), ZGlobal::screenSize());
}

void ImgSvcPictureView::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    QPainter p(this);
    p.fillRect(rect(), Qt::black);
    if (m_picture.isNull())
        return;
    const ImgSvcFitMapper map = mapper();
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.drawImage(map.displayRect(), m_picture);
    paintMarks(p, map);
}

void ImgSvcPictureView::paintMarks(QPainter &painter, const ImgSvcFitMapper &map)
{
    Q_UNUSED(painter)
    Q_UNUSED(map)
}
