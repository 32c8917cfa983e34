#pragma once
#include "ImgSvcPictureView.h"
#include <QDate>
#include <QRect>
#include <vector>

// The picture with the elements placed so far and the one being placed,
// all in image pixels. The current element is outlined: dashed while it is
// being chosen, solid while it is being moved.
class ImgSvcOverlayView : public ImgSvcPictureView
{
    Q_OBJECT
public:
    explicit ImgSvcOverlayView(QWidget *parent = nullptr);
    ~ImgSvcOverlayView() override;

    void addPlaced(int element, const QRect &rect);
    int placedCount() const { return int(m_placed.size()); }
    // element -1 shows none.
    void setCurrent(int element, const QRect &rect, bool moving);
    // The date the date stamp shows; invalid: today's.
    void setStampDate(const QDate &date) { m_stampDate = date; update(); }

protected:
    void paintMarks(QPainter &painter, const ImgSvcFitMapper &map) override;

private:
    struct Placed
    {
        int element;
        QRect rect;
    };
    void drawElement(QPainter &painter, int element, const QRectF &at) const;

    std::vector<Placed> m_placed;
    int m_current = -1;
    QRect m_currentRect;
    bool m_moving = false;
    QDate m_stampDate;
};
