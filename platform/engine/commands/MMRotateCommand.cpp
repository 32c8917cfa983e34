#include "MMRotateCommand.h"
#include "MMOrientation.h"

int MMRotateCommand::apply(QImage &image) const
{
    if (image.isNull() || m_degree % 90 != 0)
        return -1;
    image = MMOrientation::rotation(m_degree).apply(std::move(image));
    return 0;
}
