#pragma once
#include "MMOrientation.h"
#include "MMYuvPlanes.h"
#include <QByteArray>
#include <functional>

class MMRunProgress;

// Decodes a sequential or progressive YCbCr (or grey) JPEG into its sample
// planes, turned or flipped on the way: no chroma upsampling and no colour
// conversion, so a turn re-encoded from them keeps the file's own chroma
// samples. The sampling turns with the planes (4:2:2 becomes 4:4:0 when the
// axes swap). A large sequential picture is decoded by two threads, each on
// its own run of rows; a large progressive one by two threads, one on
// luma's scans and one on chroma's.
// Any libjpeg warning but "extraneous bytes" fails the decode, as damaged
// data must not be saved as whole.
class MMJpegPlaneDecoder
{
public:
    enum Result { Decoded, Unsuited, Failed };

    // Unsuited (nothing decoded) when the stream is sequential but not
    // interleaved (it buffers the whole picture), is not 1-component grey or 3-component YCbCr with
    // 4:4:4, 4:2:2, 4:2:0 or 4:4:0 sampling, or a side the orientation
    // reverses is not whole chroma samples (the turned chroma would be off
    // by a part of a sample). Failed on damage or when memory runs out.
    //
    // When luma and chroma are decoded apart, chromaDone is called on
    // chroma's thread as soon as the Cb and Cr planes are whole, while Y is
    // still being written: it must read only those two. planes is filled
    // in place; after Failed it holds nothing of use.
    //
    // inputRead, when given, is called once a progressive stream has been
    // read whole (before its planes are made): nothing reads jpeg after
    // that, so the caller may free it. progress, when given, gets the rows
    // read and put out (its step's units are set here), and a cancel stops
    // the decode (Failed).
    using ChromaDone = std::function<void(const MMYuvPlanes &)>;
    static Result decode(const QByteArray &jpeg, const MMOrientation &orientation, MMYuvPlanes *planes,
                         const ChromaDone &chromaDone = ChromaDone(),
                         const std::function<void()> &inputRead = nullptr, MMRunProgress *progress = nullptr);
};
