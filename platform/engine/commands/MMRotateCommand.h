#pragma once
#include "MMCommand.h"

// Clockwise rotation in degrees; a multiple of 90 (negative turns left).
class MMRotateCommand : public MMCommand
{
public:
    void setDegree(int degree) { m_degree = degree; }
    int getDegree() const { return m_degree; }
    CommandType type() const override { return CMD_ROTATE; }
    int apply(QImage &image) const override;

private:
    int m_degree = 0;
};
