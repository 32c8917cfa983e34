#include "MMJpegRegionDecoder.h"
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <vector>
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on

namespace {
const int kBandRows = 16;

struct ErrorManager
{
    jpeg_error_mgr pub;
    std::jmp_buf jump;
};

[[noreturn]] void onError(j_common_ptr cinfo)
{
    std::longjmp(reinterpret_cast<ErrorManager *>(cinfo->err)->jump, 1);
}

void onMessage(j_common_ptr cinfo, int level)
{
    // Stray bytes between segments are common in camera files and harm nothing.
    if (level < 0 && cinfo->err->msg_code != JWRN_EXTRANEOUS_DATA)
        std::longjmp(reinterpret_cast<ErrorManager *>(cinfo->err)->jump, 1);
}

// Everything that must outlive a longjmp out of libjpeg; no object with a
// destructor lives in a frame that libjpeg can jump over.
struct Decoder
{
    jpeg_decompress_struct cinfo;
    ErrorManager error;
    std::vector<unsigned char> band;
    QImage out;
};

// Where pixel (x, y) of the decoded region goes: out + x * stepX + y * stepY.
struct Placement
{
    unsigned char *origin;
    ptrdiff_t stepX;
    ptrdiff_t stepY;
};

Placement placement(QImage &out, const MMOrientation &orientation, const QSize &size, int bpp)
{
    const QPoint o = orientation.mapRect(QRect(0, 0, 1, 1), size).topLeft();
    // Unit steps do not depend on the size; a 2x2 picture has both.
    const QPoint a = orientation.mapRect(QRect(0, 0, 1, 1), QSize(2, 2)).topLeft();
    const QPoint dx = orientation.mapRect(QRect(1, 0, 1, 1), QSize(2, 2)).topLeft() - a;
    const QPoint dy = orientation.mapRect(QRect(0, 1, 1, 1), QSize(2, 2)).topLeft() - a;
    const ptrdiff_t bpl = out.bytesPerLine();
    return { out.bits() + o.y() * bpl + o.x() * bpp, dx.x() * bpp + dx.y() * bpl, dy.x() * bpp + dy.y() * bpl };
}

template <int Bpp>
void place(const Placement &p, const unsigned char *src, ptrdiff_t srcStride, int firstRow, int rows, int width)
{
    if (p.stepX == Bpp) {
        for (int r = 0; r < rows; ++r)
            std::memcpy(p.origin + (firstRow + r) * p.stepY, src + r * srcStride, size_t(width) * Bpp);
        return;
    }
    // Column by column: each source column of the band lands as a short
    // run of neighbouring destination pixels, which keeps turned writes
    // within a few cache lines.
    for (int x = 0; x < width; ++x) {
        unsigned char *dst = p.origin + x * p.stepX + firstRow * p.stepY;
        const unsigned char *s = src + x * Bpp;
        for (int r = 0; r < rows; ++r, dst += p.stepY, s += srcStride)
            std::memcpy(dst, s, Bpp);
    }
}

void placeBand(const Placement &p, int bpp, const unsigned char *src, ptrdiff_t stride, int firstRow, int rows,
               int width)
{
    switch (bpp) {
    case 1: place<1>(p, src, stride, firstRow, rows, width); break;
    case 3: place<3>(p, src, stride, firstRow, rows, width); break;
    default: place<4>(p, src, stride, firstRow, rows, width); break;
    }
}

bool run(Decoder &d, const QByteArray &jpeg, const QSize &storedSize, int denom, const QRect &rect,
         const MMOrientation &orientation, QImage::Format format)
{
    jpeg_decompress_struct &cinfo = d.cinfo;
    jpeg_mem_src(&cinfo, reinterpret_cast<const unsigned char *>(jpeg.constData()), (unsigned long)jpeg.size());
    if (jpeg_read_header(&cinfo, TRUE) != JPEG_HEADER_OK)
        return false;
    if (int(cinfo.image_width) != storedSize.width() || int(cinfo.image_height) != storedSize.height())
        return false;
    const bool grey = cinfo.jpeg_color_space == JCS_GRAYSCALE && cinfo.num_components == 1;
    if (!grey && cinfo.num_components != 3)
        return false;
    cinfo.scale_num = 1;
    cinfo.scale_denom = (unsigned int)denom;
    int bpp;
    if (grey) {
        cinfo.out_color_space = JCS_GRAYSCALE;
        format = QImage::Format_Grayscale8;
        bpp = 1;
    } else if (format == QImage::Format_RGB888) {
        cinfo.out_color_space = JCS_EXT_RGB;
        bpp = 3;
    } else {
        format = QImage::Format_RGB32;
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
        cinfo.out_color_space = JCS_EXT_BGRX;
#else
        cinfo.out_color_space = JCS_EXT_XRGB;
#endif
        bpp = 4;
    }
    jpeg_start_decompress(&cinfo);
    const QRect all(0, 0, int(cinfo.output_width), int(cinfo.output_height));
    if (rect.isEmpty() || !all.contains(rect))
        return false;

    // One column of margin each side: fancy upsampling of subsampled chroma
    // treats the first and last decoded columns as picture edges. libjpeg
    // widens the columns further to whole blocks. (Skipped rows keep their
    // context, so rows need no margin.)
    JDIMENSION xoffset = JDIMENSION(qMax(rect.x() - 1, 0));
    JDIMENSION width = JDIMENSION(qMin(rect.x() + rect.width() + 1, all.width())) - xoffset;
    if (width < cinfo.output_width)
        jpeg_crop_scanline(&cinfo, &xoffset, &width);
    const int column = (rect.x() - int(xoffset)) * bpp;

    d.out = QImage(orientation.map(rect.size()), format);
    if (d.out.isNull())
        return false;
    const Placement where = placement(d.out, orientation, rect.size(), bpp);
    const size_t stride = size_t(cinfo.output_width) * cinfo.output_components;
    d.band.resize(stride * kBandRows);
    JSAMPROW rows[kBandRows];
    for (int i = 0; i < kBandRows; ++i)
        rows[i] = d.band.data() + i * stride;

    int row = rect.y();
    if (row > 0 && int(jpeg_skip_scanlines(&cinfo, JDIMENSION(row))) != row)
        return false;
    const int end = rect.y() + rect.height();
    while (row < end) {
        const int want = qMin(kBandRows, end - row);
        int got = 0;
        while (got < want) {
            const int n = int(jpeg_read_scanlines(&cinfo, rows + got, JDIMENSION(want - got)));
            if (n <= 0)
                return false;
            got += n;
        }
        placeBand(where, bpp, d.band.data() + column, ptrdiff_t(stride), row - rect.y(), got, rect.width());
        row += got;
    }
    // Read to the end only when the region reaches it, so that a warning
    // there is still seen; rows below a region are of no concern.
    if (row == all.height())
        jpeg_finish_decompress(&cinfo);
    return true;
}
}

QImage MMJpegRegionDecoder::decode(const QByteArray &jpeg, const QSize &storedSize, int scaleDenom, const QRect &rect,
                                   const MMOrientation &orientation, QImage::Format format)
{
    if (jpeg.isEmpty() || (scaleDenom != 1 && scaleDenom != 2 && scaleDenom != 4 && scaleDenom != 8))
        return QImage();
    Decoder d;
    d.cinfo.err = jpeg_std_error(&d.error.pub);
    d.error.pub.error_exit = onError;
    d.error.pub.emit_message = onMessage;
    jpeg_create_decompress(&d.cinfo);
    if (setjmp(d.error.jump)) {
        jpeg_destroy_decompress(&d.cinfo);
        return QImage();
    }
    const bool ok = run(d, jpeg, storedSize, scaleDenom, rect, orientation, format);
    jpeg_destroy_decompress(&d.cinfo);
    return ok ? std::move(d.out) : QImage();
}
