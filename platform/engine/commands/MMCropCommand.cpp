#include "MMCropCommand.h"
#include <QImage>

int MMCropCommand::apply(QImage &image) const
{
    if (image.isNull() || m_rect.width <= 0 || m_rect.height <= 0)
        return -1;
    // 64-bit edges: a rectangle near INT_MAX must not wrap round.
    const qint64 left = qMax<qint64>(m_rect.x, 0);
    const qint64 top = qMax<qint64>(m_rect.y, 0);
    const qint64 right = qMin<qint64>(qint64(m_rect.x) + m_rect.width, image.width());
    const qint64 bottom = qMin<qint64>(qint64(m_rect.y) + m_rect.height, image.height());
    if (right <= left || bottom <= top)
        return -1;
    const QRect r(int(left), int(top), int(right - left), int(bottom - top));
    if (r != image.rect())
        image = image.copy(r);
    return 0;
}
