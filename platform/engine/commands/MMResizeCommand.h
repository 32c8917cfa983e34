#pragma once
#include "MMCommand.h"
#include "MMSize.h"

// Scales the image to the target size (smooth; area-averaging when reducing).
class MMResizeCommand : public MMCommand
{
public:
    void setTargetSize(const MMSize &size) { m_size = size; }
    MMSize getTargetSize() const { return m_size; }
    CommandType type() const override { return CMD_RESIZE; }
    int apply(QImage &image) const override;

private:
    MMSize m_size;
};
