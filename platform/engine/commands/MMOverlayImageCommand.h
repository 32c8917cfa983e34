#pragma once
#include "MMCommand.h"
#include "MMImageSource.h"
#include "MMRect.h"

// Draws an image (with its alpha) scaled into a rectangle of the picture.
class MMOverlayImageCommand : public MMCommand
{
public:
    void setData(const MMRect &rect, const MMImageSource &image);
    void getData(MMRect &rect, MMImageSource &image) const;
    CommandType type() const override { return CMD_OVERLAY; }
    int apply(QImage &image) const override;

private:
    MMRect m_rect;
    MMImageSource m_image{MMImageSource::SOURCE_ELEMENT};
};
