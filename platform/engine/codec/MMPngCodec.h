#pragma once
#include <QByteArray>
#include <QImage>
#include <QList>
#include <QPair>

// What is carried from a file to the one written from it.
struct MMPngChunks
{
    int colorType = -1; // PNG_COLOR_TYPE_*; -1: choose from the picture
    int bitDepth = 8;
    bool hasGamma = false;
    double gamma = 0;
    bool hasChrm = false;
    double chrm[8] = {};
    int srgbIntent = -1;
    QByteArray iccName, icc;
    // keyword, text
    QList<QPair<QByteArray, QByteArray>> texts;
    bool hasPhys = false;
    quint32 physX = 0, physY = 0;
    int physUnit = 0;
};

// PNG through libpng, kept as the file had it: its bit depth and colour
// type (16-bit, palette, grey, grey with alpha), its transparency, and its
// colour chunks (gamma, chromaticities, sRGB, ICC) and text chunks. The
// picture is held at its own depth (three bytes a pixel for 8-bit RGB,
// one for grey or palette, eight for 16-bit) and written a row at a time.
class MMPngCodec
{
public:
    using Chunks = MMPngChunks;

    // The picture at its own depth: Grayscale8/16, Indexed8, RGB888,
    // ARGB32, RGBA64. Null on a damaged file.
    static QImage decode(const QByteArray &data, Chunks *chunks = nullptr);
    static bool readChunks(const QByteArray &data, Chunks &chunks);
    // In chunks' colour type and depth when given (a picture with more
    // colours than a palette holds is quantised), else as the picture is.
    static QByteArray encode(const QImage &image, const Chunks &chunks = Chunks());
};
