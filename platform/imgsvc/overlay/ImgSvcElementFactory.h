#pragma once
#include <QDate>
#include <QImage>
#include <QSize>
#include <QString>

// The built-in overlay elements, drawn at run time so that nothing has to be
// shipped: stamps, a frame, a date stamp and a speech bubble, each on a
// transparent background.
class ImgSvcElementFactory
{
public:
    enum Element { Star = 0, Heart, Frame, DateStamp, Bubble, ElementCount };

    static QString name(int element);
    // The frame covers the whole picture; everything else is placed and moved.
    static bool isMovable(int element) { return element != Frame; }
    // Size of the element on an image of imageSize, in the image's pixels:
    // about a quarter of its shorter side, never larger than the image.
    static QSize elementSize(int element, const QSize &imageSize);
    // The element drawn at size; null for an unknown element or an empty size.
    // The date stamp shows date, or today's when it is not valid.
    static QImage render(int element, const QSize &size, const QDate &date = QDate());
    // Writes the element for a placement of placedSize into a new PNG in the
    // temporary directory and returns its path; empty on failure. Very large
    // placements are drawn smaller: the overlay scales them up.
    static QString writeTempFile(int element, const QSize &placedSize, const QDate &date = QDate());
};
