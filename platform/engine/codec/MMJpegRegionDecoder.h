#pragma once
#include "MMOrientation.h"
#include <QByteArray>
#include <QImage>
#include <QRect>
#include <functional>

class MMRunProgress;

// Decodes part of a 1- or 3-component JPEG through the libjpeg API: rows
// above the part are skipped (entropy-decoded only), columns beside it are
// not reconstructed, nothing below it is read, optionally at 1/2, 1/4 or
// 1/8 scale. The pixels are turned while they are copied out of small
// bands, so no second full frame is ever held. A large baseline picture is
// decoded by two threads, each on its own run of rows, a large progressive
// one by two threads, one on luma's scans and one on chroma's; a
// progressive picture's coefficients are kept whole only for the rows the
// region needs. A whole progressive picture at 1/8 scale is read only until its DC
// coefficients are whole. Pixels equal those of a full decode at the same
// scale. Any libjpeg warning but "extraneous
// bytes" fails the decode, as damaged data must not be saved as whole.
class MMJpegRegionDecoder
{
public:
    // rect is in units of the scaled decode; storedSize must match the
    // stream's frame. format is RGB32 or RGB888 (grey files come out as
    // Grayscale8 either way). A valid shrinkTo (the turned result's size,
    // no larger than the turned rect) filters the decoded pixels down to
    // it while decoding (MMLanczosScaler), so the full-size rect is never
    // held. inputRead, when given, is called once a progressive stream
    // has been read whole (before its pixels are made): nothing reads jpeg
    // after that, so the caller may free it. progress, when given, gets
    // the rows read and put out (its step's units are set here), and a
    // cancel stops the decode. Null on any failure.
    static QImage decode(const QByteArray &jpeg, const QSize &storedSize, int scaleDenom, const QRect &rect,
                         const MMOrientation &orientation, QImage::Format format, const QSize &shrinkTo = QSize(),
                         const std::function<void()> &inputRead = nullptr, MMRunProgress *progress = nullptr);
};
