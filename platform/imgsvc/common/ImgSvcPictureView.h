#pragma once
#include "ImgSvcFitMapper.h"
#include <QImage>
#include <QWidget>

class MMImageSource;
class QPainter;

// A picture fitted into the widget on black. The picture may be a reduced
// decode of a larger image; the mapper works in that image's pixels so that
// subclasses draw their marks in the coordinates the controls use.
class ImgSvcPictureView : public QWidget
{
    Q_OBJECT
public:
    explicit ImgSvcPictureView(QWidget *parent = nullptr);
    ~ImgSvcPictureView() override;

    // imageSize: the size of the image the picture stands for; the picture's
    // own size when left empty.
    void setPicture(const QImage &picture, const QSize &imageSize = QSize());
    QImage picture() const { return m_picture; }
    QSize imageSize() const { return m_imageSize; }
    ImgSvcFitMapper mapper() const;

    // The image of source decoded small enough for the screen; null when
    // there is no readable source.
    static QImage decodeForScreen(const MMImageSource *source);

protected:
    void paintEvent(QPaintEvent *event) override;
    // Drawn over the picture.
    virtual void paintMarks(QPainter &painter, const ImgSvcFitMapper &map);

private:
    QImage m_picture;
    QSize m_imageSize;
};
