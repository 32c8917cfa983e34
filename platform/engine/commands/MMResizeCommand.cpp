#include "MMResizeCommand.h"
#include "MMDecodeBudget.h"
#include <QImage>

int MMResizeCommand::apply(QImage &image) const
{
    // A result we could not open again (a side past 65535, or over the
    // budget) is refused, not written.
    const QSize target(m_size.width, m_size.height);
    if (image.isNull() || !MMDecodeBudget::allowsSize(target))
        return -1;
    if (image.size() == target)
        return 0;
    // Qt's smooth scaling averages whole source areas when reducing.
    const QImage scaled = image.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (scaled.isNull())
        return -1;
    image = scaled;
    return 0;
}
