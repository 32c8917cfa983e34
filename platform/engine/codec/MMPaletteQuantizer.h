#pragma once
#include <QImage>
#include <QVector>
#include <QtGlobal>

// Turns a 32-bit picture into at most 256 indexed colours for formats that
// carry a palette (GIF). A picture that has few enough colours keeps them
// exactly (a turn, flip or crop changes no colour); otherwise a median-cut
// palette, refined by a few k-means passes, is applied with Floyd-Steinberg
// error diffusion, which hides the banding a bare nearest-colour map shows
// on gradients. Pixels under half alpha become the transparent index.
class MMPaletteQuantizer
{
public:
    struct Result
    {
        // Indexed8 pixels; colorTable has at most 256 entries.
        QImage indexed;
        QVector<QRgb> colorTable;
        // -1 when no pixel is transparent.
        int transparentIndex = -1;
    };

    static Result quantize(const QImage &image);
};
