#pragma once
#include "ImgSvcCtlInterface.h"
#include <QPoint>
#include <QRect>

// Crop control: the selection rectangle in input-image pixels (inclusive
// edges), the active corner and the step sizes of the five-way key.
class ImgSvcCropCtl : public ImgSvcCtlInterface
{
    Q_OBJECT
public:
    explicit ImgSvcCropCtl(QObject *parent = nullptr);
    ~ImgSvcCropCtl() override;

    void setCropMoveStep(int smallStep, int largeStep);
    int smallStep() const { return m_small; }
    int largeStep() const { return m_large; }

    // Steps are in input-image pixels.
    // Starts a selection at p: both corners there, the second corner active.
    // That is a valid 1 x 1 selection; moving the active corner grows it.
    void set1stPoint(const QPoint &p);
    QRect getCropRect() const; // normalised, clipped to the input
    bool secondCornerActive() const { return m_second; }
    QPoint activeCorner() const { return m_second ? m_p2 : m_p1; }
    void switchCorner();
    // Moves the active corner by (dx, dy) pixels, clipped to the input.
    void moveActiveCorner(int dx, int dy);

    void refresh(bool reload) override;

signals:
    void rectChanged();

protected:
    void writeResult() override;

private:
    QPoint clamped(const QPoint &p) const;
    void inputSizeChanged();

    QSize m_size; // of the input, cached: every key press asks for it
    QPoint m_p1, m_p2;
    bool m_second = true;
    int m_small = 1, m_large = 15;
};
