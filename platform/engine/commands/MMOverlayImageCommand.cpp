#include "MMOverlayImageCommand.h"
#include "MMImageDecoder.h"
#include <QPainter>

void MMOverlayImageCommand::setData(const MMRect &rect, const MMImageSource &image)
{
    m_rect = rect;
    m_image = image;
}

void MMOverlayImageCommand::getData(MMRect &rect, MMImageSource &image) const
{
    rect = m_rect;
    image = m_image;
}

int MMOverlayImageCommand::apply(QImage &image) const
{
    if (image.isNull() || m_rect.width <= 0 || m_rect.height <= 0)
        return -1;
    QImage element = MMImageDecoder::decode(QString::fromStdString(m_image.getFileName()));
    if (element.isNull())
        return -1;
    // 64-bit edges and a floating-point target: a rectangle near INT_MAX
    // must not wrap round (QRect's right edge would overflow).
    if (qint64(m_rect.x) + m_rect.width <= 0 || qint64(m_rect.y) + m_rect.height <= 0 || m_rect.x >= image.width()
        || m_rect.y >= image.height())
        return 0; // nothing of it would show
    const QRectF target(m_rect.x, m_rect.y, m_rect.width, m_rect.height);
    const QSize size(m_rect.width, m_rect.height);
    // Shrinking is done beforehand, where Qt averages areas; growing is left
    // to the painter, which only fills the part that lands on the picture.
    const bool shrink = size.width() <= element.width() && size.height() <= element.height();
    if (shrink && element.size() != size)
        element = element.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (element.isNull())
        return -1;

    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
        break;
    default:
        // Grey and palette images cannot take a coloured, blended element.
        image = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
        break;
    }
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, element);
    painter.end();
    return 0;
}
