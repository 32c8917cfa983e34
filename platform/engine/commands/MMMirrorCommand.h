#pragma once
#include "MMCommand.h"

// Horizontal mirror (true) swaps left and right; vertical (false) swaps top
// and bottom.
class MMMirrorCommand : public MMCommand
{
public:
    void setMirrorType(bool horizontal) { m_horizontal = horizontal; }
    bool getMirrorType() const { return m_horizontal; }
    CommandType type() const override { return CMD_MIRROR; }
    int apply(QImage &image) const override;

private:
    bool m_horizontal = true;
};
