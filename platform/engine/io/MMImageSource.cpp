#include "MMImageSource.h"
#include "MMImageHeader.h"

MMImageSource::MMImageSource(ImageSourceType type)
    : m_type(type)
{
}

MMImageSource::~MMImageSource() = default;

int MMImageSource::setFile(const std::string &utf8Path)
{
    m_path = utf8Path;
    return 0;
}

int MMImageSource::getImageInfo(MMImageInfo &info) const
{
    info = MMImageInfo();
    const MMImageHeader header = MMImageHeader::read(QString::fromStdString(m_path));
    if (!header.isValid())
        return -1;
    const QSize upright = header.uprightSize();
    info.width = upright.width();
    info.height = upright.height();
    info.format = header.format();
    info.orientation = header.exifOrientation();
    info.frames = header.frames();
    return 0;
}
