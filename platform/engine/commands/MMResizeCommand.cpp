#include "MMResizeCommand.h"
#include "MMImageDecoder.h"
#include <QImage>

int MMResizeCommand::apply(QImage &image) const
{
    if (image.isNull() || m_size.width <= 0 || m_size.height <= 0
        || qint64(m_size.width) * m_size.height > MMImageDecoder::MaxPixels)
        return -1;
    const QSize target(m_size.width, m_size.height);
    if (image.size() == target)
        return 0;
    // Qt's smooth scaling averages whole source areas when reducing.
    const QImage scaled = image.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (scaled.isNull())
        return -1;
    image = scaled;
    return 0;
}
