#pragma once
#include "MMCommand.h"
#include "MMRect.h"

// Keeps the pixels inside the rectangle (clipped to the image).
class MMCropCommand : public MMCommand
{
public:
    void setRect(const MMRect &rect) { m_rect = rect; }
    MMRect getRect() const { return m_rect; }
    CommandType type() const override { return CMD_CROP; }
    int apply(QImage &image) const override;

private:
    MMRect m_rect;
};
