#include "MMJpegCodec.h"
#include "MMJpegCoefficientRange.h"
#include "MMJpegLosslessTurner.h"
#include "MMJpegProgressiveEncoder.h"
#include "MMJpegStripEncoder.h"
#include <QPainter>
#include <limits>
#include <turbojpeg.h>

namespace {
// Frees the handle however we leave.
struct TjHandle
{
    explicit TjHandle(tjhandle h) : handle(h) {}
    ~TjHandle() { if (handle) tjDestroy(handle); }
    TjHandle(const TjHandle &) = delete;
    TjHandle &operator=(const TjHandle &) = delete;
    tjhandle handle;
};

QByteArray takeBuffer(unsigned char *buffer, unsigned long size)
{
    QByteArray out(reinterpret_cast<const char *>(buffer), int(size));
    tjFree(buffer);
    return out;
}

bool isGrey(const QImage &image)
{
    return image.format() == QImage::Format_Grayscale8 || image.allGray();
}

// Refuses a turned row of blocks holding a coefficient 8-bit coding cannot
// carry (libjpeg reads such values without a warning). Each encoder writes
// it its own way, from garbage to a term whose pixels each IDCT's overflow
// makes differently once turned: the picture saved would not be the one
// shown. Rows past the picture's last block are padding no encoder writes.
int refuseOutOfRange(short *coeffs, tjregion arrayRegion, tjregion planeRegion, int, int, tjtransform *)
{
    if (arrayRegion.y >= planeRegion.h)
        return 0;
    bool fits = true;
    for (int b = 0; b < arrayRegion.w / 8; ++b, coeffs += 64)
        fits &= MMJpegCoefficientRange::fits(coeffs);
    return fits ? 0 : -1;
}

int transformOp(const MMOrientation &orientation)
{
    switch (orientation.exifValue()) {
    case 2: return TJXOP_HFLIP;
    case 3: return TJXOP_ROT180;
    case 4: return TJXOP_VFLIP;
    case 5: return TJXOP_TRANSPOSE;
    case 6: return TJXOP_ROT90;
    case 7: return TJXOP_TRANSVERSE;
    case 8: return TJXOP_ROT270;
    default: return TJXOP_NONE;
    }
}
}

QImage MMJpegCodec::decode(const QByteArray &jpeg)
{
    TjHandle tj(tjInitDecompress());
    if (!tj.handle || jpeg.isEmpty())
        return QImage();
    const auto *data = reinterpret_cast<const unsigned char *>(jpeg.constData());
    int width = 0, height = 0, subsampling = 0, colourspace = 0;
    if (tjDecompressHeader3(tj.handle, data, jpeg.size(), &width, &height, &subsampling, &colourspace) != 0
        || width <= 0 || height <= 0 || colourspace == TJCS_CMYK || colourspace == TJCS_YCCK)
        return QImage();
    const bool grey = colourspace == TJCS_GRAY;
    QImage image(width, height, grey ? QImage::Format_Grayscale8 : QImage::Format_RGB32);
    if (image.isNull())
        return QImage();
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
    const int pixelFormat = grey ? TJPF_GRAY : TJPF_BGRX;
#else
    const int pixelFormat = grey ? TJPF_GRAY : TJPF_XRGB;
#endif
    auto attempt = [&](int flags) {
        return tjDecompress2(tj.handle, data, jpeg.size(), image.bits(), width, int(image.bytesPerLine()), height,
                             pixelFormat, flags);
    };
    auto harmless = [&] {
        return tjGetErrorCode(tj.handle) == TJERR_WARNING
            && QByteArray(tjGetErrorStr2(tj.handle)).contains("extraneous bytes");
    };
    if (attempt(TJFLAG_STOPONWARNING) == 0)
        return image;
    // Stray bytes between segments are common in camera files and harm
    // nothing; decode again past them, still refusing any other warning.
    if (!harmless() || (attempt(0) != 0 && !harmless()))
        return QImage();
    return image;
}

QByteArray MMJpegCodec::encode(const QImage &image, int quality, MMJpegHeader::Subsampling subsampling,
                               bool progressive)
{
    if (image.isNull() || image.width() > 65500 || image.height() > 65500)
        return QByteArray();
    QImage pixels;
    int pixelFormat;
    if (subsampling == MMJpegHeader::SubGray && !isGrey(image))
        subsampling = MMJpegHeader::Sub420;
    if (subsampling == MMJpegHeader::SubGray && image.format() == QImage::Format_Grayscale8) {
        pixels = image;
        pixelFormat = TJPF_GRAY;
    } else if (image.format() == QImage::Format_RGB888) {
        pixels = image;
        pixelFormat = TJPF_RGB;
    } else {
        if (image.hasAlphaChannel()) {
            pixels = QImage(image.size(), QImage::Format_RGB32);
            pixels.fill(Qt::white);
            QPainter(&pixels).drawImage(0, 0, image);
        } else {
            pixels = image.convertToFormat(QImage::Format_RGB32);
        }
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
        pixelFormat = TJPF_BGRX;
#else
        pixelFormat = TJPF_XRGB;
#endif
    }
    if (pixels.isNull())
        return QByteArray();

    if (progressive && pixelFormat != TJPF_GRAY) {
        // Large progressive pictures: luma and chroma scans on two threads.
        QByteArray joined = MMJpegProgressiveEncoder::encode(pixels, qBound(1, quality, 100), int(subsampling));
        if (!joined.isEmpty())
            return joined;
    }
    if (!progressive) {
        // Large baseline pictures: two threads, each on its own strips.
        QByteArray joined = MMJpegStripEncoder::encode(pixels.constBits(), pixels.width(), int(pixels.bytesPerLine()),
                                                       pixels.height(), pixelFormat, int(subsampling),
                                                       qBound(1, quality, 100));
        if (!joined.isEmpty())
            return joined;
    }
    TjHandle tj(tjInitCompress());
    if (!tj.handle)
        return QByteArray();
    unsigned char *buffer = nullptr;
    unsigned long size = 0;
    const int flags = progressive ? TJFLAG_PROGRESSIVE : 0;
    if (tjCompress2(tj.handle, pixels.constBits(), pixels.width(), int(pixels.bytesPerLine()), pixels.height(),
                    pixelFormat, &buffer, &size, int(subsampling), qBound(1, quality, 100), flags) != 0) {
        tjFree(buffer);
        return QByteArray();
    }
    return takeBuffer(buffer, size);
}

QByteArray MMJpegCodec::transform(const QByteArray &jpeg, const MMOrientation &orientation, bool keepMarkers,
                                  bool progressive)
{
    if (!progressive) {
        // Whole-MCU pictures: one decode, the result coded on both cores.
        bool damaged = false;
        QByteArray turned = MMJpegLosslessTurner::transform(jpeg, orientation, keepMarkers, &damaged);
        if (!turned.isEmpty() || damaged)
            return turned;
    }
    TjHandle tj(tjInitTransform());
    if (!tj.handle || jpeg.isEmpty())
        return QByteArray();
    tjtransform t = {};
    t.op = transformOp(orientation);
    t.options = TJXOPT_PERFECT;
    t.customFilter = refuseOutOfRange;
    if (!keepMarkers)
        t.options |= TJXOPT_COPYNONE;
    if (progressive)
        t.options |= TJXOPT_PROGRESSIVE;
    // Written straight into the result: the compressed picture cannot
    // outgrow TurboJPEG's bound for its size, and the copied markers cannot
    // outgrow the source. Pages past the end are never touched.
    const auto *source = reinterpret_cast<const unsigned char *>(jpeg.constData());
    int width = 0, height = 0, subsampling = 0, colourspace = 0;
    if (tjDecompressHeader3(tj.handle, source, jpeg.size(), &width, &height, &subsampling, &colourspace) != 0)
        return QByteArray();
    if (orientation.swapsAxes())
        std::swap(width, height);
    const unsigned long bound = tjBufSize(width, height, subsampling < 0 ? TJSAMP_444 : subsampling);
    if (bound == (unsigned long)-1 || bound + jpeg.size() > unsigned(std::numeric_limits<int>::max()))
        return QByteArray();
    QByteArray out(int(bound + jpeg.size()), Qt::Uninitialized);
    auto *buffer = reinterpret_cast<unsigned char *>(out.data());
    unsigned long size = (unsigned long)out.size();
    // A warning or a refused block means damaged data; a transform of it
    // would save damage.
    if (tjTransform(tj.handle, source, jpeg.size(), 1, &buffer, &size, &t, TJFLAG_STOPONWARNING | TJFLAG_NOREALLOC) != 0
        || buffer != reinterpret_cast<unsigned char *>(out.data()))
        return QByteArray();
    out.resize(int(size));
    return out;
}
