#pragma once
#include <QSize>
#include <QtGlobal>

class MMJpegHeader;

// What a picture may cost to decode, decided from its header before any
// pixel is decoded. A picture over budget is refused as a whole: the editor
// saves at full size, so one it could only show at reduced scale is one it
// could not save.
//
// The handset has about 128 MB of RAM for everything; the editor may spend
// 96 MiB on the one decoded picture a save works on. At 4 bytes a pixel
// (the 32-bit image the edits run on) that is 24 Mi pixels: a 24-megapixel
// camera photo (6000 x 4000) still opens, a 50- or 100-megapixel bomb does
// not. libjpeg's progressive (and multi-scan) decode keeps every DCT
// coefficient of the picture, 2 bytes a sample, even at reduced scale, so
// such a file must fit that memory too; a PNG has no scaled decode at all
// and is always decoded whole. Refusing by header costs no decode work.
class MMDecodeBudget
{
public:
    static constexpr qint64 MaxBytes = 96LL * 1024 * 1024;
    static constexpr qint64 MaxPixels = MaxBytes / 4;
    // An animation is edited a frame at a time, each on a whole canvas:
    // memory is one canvas, but the work grows with frames times canvas.
    static constexpr int MaxFrames = 2000;
    static constexpr qint64 MaxAnimationPixels = 4 * MaxPixels;
    // Largest side any of our formats can carry.
    static constexpr int MaxSide = 65535;

    // Sides within 1..MaxSide and at most MaxPixels.
    static bool allowsSize(const QSize &size);
    // The canvas, and frames times canvas within the work bound.
    static bool allowsAnimation(const QSize &canvas, int frames);
    // The frame size, and the coefficient memory when libjpeg buffers the
    // whole picture.
    static bool allowsJpeg(const MMJpegHeader &jpeg);
    // Bytes of DCT coefficients of the whole picture (all components at
    // their sampling, padded to whole 16 x 16 blocks).
    static qint64 coefficientBytes(const MMJpegHeader &jpeg);
    // Whether memory beyond the budget may be spent to go faster (a second
    // decoder's buffers): only when the system reports at least four times
    // that much available. Never on a handset short of memory, nor where
    // the system does not say.
    static bool canSpareExtra(qint64 bytes);
};
