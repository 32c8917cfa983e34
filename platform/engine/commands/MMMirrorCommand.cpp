#include "MMMirrorCommand.h"
#include "MMOrientation.h"

int MMMirrorCommand::apply(QImage &image) const
{
    if (image.isNull())
        return -1;
    image = MMOrientation::mirror(m_horizontal).apply(std::move(image));
    return 0;
}
