#pragma once
#include "ImgSvcCtlInterface.h"
#include <QPoint>
#include <QRect>

// Crop control: the selection rectangle in input-image pixels (inclusive
// edges) and what the five-way key moves: the bottom-right corner, the
// top-left corner or the whole rectangle. The corners never cross and the
// rectangle never shrinks below a small part of the picture, so a confirmed
// crop is always a picture the user can see framed.
class ImgSvcCropCtl : public ImgSvcCtlInterface
{
    Q_OBJECT
public:
    enum Handle { SecondCorner = 0, FirstCorner, Whole };

    explicit ImgSvcCropCtl(QObject *parent = nullptr);
    ~ImgSvcCropCtl() override;

    void setCropMoveStep(int smallStep, int largeStep);
    int smallStep() const { return m_small; }
    int largeStep() const { return m_large; }

    // Starts a selection centred on p covering 80 % of the picture each
    // way, clipped to it, the bottom-right corner active.
    void set1stPoint(const QPoint &p);
    QRect getCropRect() const { return m_rect; }
    Handle activeHandle() const { return m_handle; }
    bool secondCornerActive() const { return m_handle == SecondCorner; }
    // The corner a press moves; the centre while the whole rectangle moves.
    QPoint activeCorner() const;
    // Bottom-right corner, then top-left corner, then the whole rectangle.
    void switchCorner();
    // Moves what is active by (dx, dy) pixels, kept inside the picture.
    void moveActiveCorner(int dx, int dy);
    // The shortest side a selection may have.
    int minimumSide() const;

    void refresh(bool reload) override;

signals:
    void rectChanged();

protected:
    void writeResult() override;

private:
    void inputSizeChanged();
    // Pulls the rectangle back into the picture and up to the minimum size.
    QRect fitted(QRect r) const;

    QSize m_size; // of the input, cached: every key press asks for it
    QRect m_rect;
    Handle m_handle = SecondCorner;
    int m_small = 1, m_large = 15;
};
