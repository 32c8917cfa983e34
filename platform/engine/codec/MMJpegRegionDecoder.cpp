#include "MMJpegRegionDecoder.h"
#include "MMJpegErrorJump.h"
#include "MMJpegKeptRows.h"
#include "MMJpegProgressHook.h"
#include "MMJpegReaders.h"
#include "MMJpegScanSplitter.h"
#include "MMLanczosScaler.h"
#include <csetjmp>
#include <sys/mman.h>
#include <cstdio>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

namespace {
const int kBandRows = 16;
// Below this many pixels a second decoder is not worth its start.
const qint64 kSplitPixels = 1 << 20;
// Share of the rows the first of two parts decodes (see decode()); less
// when rows are turned as they are placed, which costs both parts alike per
// row decoded but nothing per row skipped.
const double kFirstPartShare = 0.62;
const double kFirstPartShareTurned = 0.57;

// Everything that must outlive a longjmp out of libjpeg; no object with a
// destructor lives in a frame that libjpeg can jump over.
struct Decoder
{
    jpeg_decompress_struct cinfo;
    MMJpegErrorJump error;
    std::vector<unsigned char> band;
    std::vector<unsigned char> shrunk;
    std::unique_ptr<MMLanczosScaler> scaler;
    MMJpegKeptRows keptRows;
    bool arrived = false; // said to job.readers that the stream is read
    MMJpegProgressHook hook;
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
    if (p.stepX == -Bpp) {
        // Mirrored rows (half turns, flips): still row by row.
        for (int r = 0; r < rows; ++r) {
            unsigned char *dst = p.origin + (firstRow + r) * p.stepY;
            const unsigned char *s = src + r * srcStride;
            for (int x = 0; x < width; ++x, dst -= Bpp, s += Bpp)
                std::memcpy(dst, s, Bpp);
        }
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

// Copies Y rows (1 byte a pixel) or the Cb and Cr of YCbCr rows (3 bytes
// a pixel) into their bytes of the turned result's pixels, Y, Cb, Cr in
// that order; the other part of the decode fills the rest.
void placeChannels(const Placement &p, int bpp, const unsigned char *src, ptrdiff_t stride, int firstRow, int rows,
                   int width, bool luma)
{
    const int srcBpp = luma ? 1 : 3;
    auto copy = [&](unsigned char *dst, const unsigned char *s) {
        if (luma) {
            dst[0] = s[0];
        } else {
            dst[1] = s[1];
            dst[2] = s[2];
        }
    };
    if (p.stepX == bpp || p.stepX == -bpp) {
        for (int r = 0; r < rows; ++r) {
            unsigned char *dst = p.origin + (firstRow + r) * p.stepY;
            const unsigned char *s = src + r * stride;
            for (int x = 0; x < width; ++x, dst += p.stepX, s += srcBpp)
                copy(dst, s);
        }
        return;
    }
    for (int x = 0; x < width; ++x) {
        unsigned char *dst = p.origin + x * p.stepX + firstRow * p.stepY;
        const unsigned char *s = src + x * srcBpp;
        for (int r = 0; r < rows; ++r, dst += p.stepY, s += stride)
            copy(dst, s);
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

// What every part of one decode shares; read-only while the parts run.
struct Job
{
    const QByteArray *jpeg;
    QSize storedSize;
    int denom;
    QRect rect;          // in units of the scaled decode
    QSize target;        // rect.size(), or smaller when shrinking while decoding
    J_COLOR_SPACE space;
    int bpp;
    Placement where;     // into the turned result, in target pixels
    bool dcOnly = false; // progressive at 1/8: stop reading once DC is whole
    MMJpegScanSplitter *streams = nullptr; // set when luma and chroma are decoded apart
    MMJpegReaders *readers = nullptr;      // set when the bytes may go once read
    MMRunProgress *progress = nullptr;     // set when a save follows: rows read and put out
};

// One decoder's share of a job: target rows [firstOut, endOut), and when the
// job's stream is split, which part it reads (its channels of the YCbCr
// result: Y, or Cb and Cr).
struct Share
{
    int firstOut;
    int endOut;
    MMJpegScanSplitter::Part part = MMJpegScanSplitter::Luma;
};

// Opens the stream and starts a decompression as every part of job does it.
// False when the stream is not the picture the header promised.
bool start(jpeg_decompress_struct &cinfo, const Job &job, const Share &share)
{
    if (job.streams)
        job.streams->attach(&cinfo, share.part);
    else
        jpeg_mem_src(&cinfo, reinterpret_cast<const unsigned char *>(job.jpeg->constData()),
                     (unsigned long)job.jpeg->size());
    if (jpeg_read_header(&cinfo, TRUE) != JPEG_HEADER_OK)
        return false;
    if (int(cinfo.image_width) != job.storedSize.width() || int(cinfo.image_height) != job.storedSize.height())
        return false;
    const bool grey = cinfo.jpeg_color_space == JCS_GRAYSCALE && cinfo.num_components == 1;
    if (!grey && cinfo.num_components != 3)
        return false;
    if ((job.space == JCS_GRAYSCALE) != grey)
        return false;
    cinfo.scale_num = 1;
    cinfo.scale_denom = (unsigned int)job.denom;
    cinfo.out_color_space = job.space;
    if (job.streams) {
        // Each part lacks the other's AC scans; smoothing would invent them
        // (a whole stream is never smoothed: every coefficient is known).
        // Luma's part asks for grey: libjpeg then reconstructs Y alone.
        cinfo.out_color_space = share.part == MMJpegScanSplitter::Luma ? JCS_GRAYSCALE : JCS_YCbCr;
        cinfo.do_block_smoothing = FALSE;
    }
    return true;
}

// At 1/8 scale a pixel is its block's DC coefficient alone, so a
// progressive stream need only be read until every component's DC is
// whole; the AC refinement scans after that (the largest) are not read.
// Block smoothing would guess AC from neighbours and is off.
bool consumeUntilDcWhole(jpeg_decompress_struct &cinfo)
{
    for (;;) {
        const int status = jpeg_consume_input(&cinfo);
        if (status == JPEG_SUSPENDED)
            return false;
        if (status == JPEG_REACHED_EOI)
            break;
        if (status == JPEG_SCAN_COMPLETED) {
            bool whole = true;
            for (int c = 0; c < cinfo.num_components; ++c)
                whole = whole && cinfo.coef_bits[c][0] == 0;
            if (whole)
                break;
        }
    }
    return jpeg_start_output(&cinfo, cinfo.input_scan_number) == TRUE;
}

// Decodes target rows [firstOut, endOut) of job (all of the rect's rows when
// not shrinking) and places them. Runs on its own decompressor, so that two
// parts can run at once.
bool runPart(Decoder &d, const Job &job, const Share &share)
{
    const int firstOut = share.firstOut, endOut = share.endOut;
    jpeg_decompress_struct &cinfo = d.cinfo;
    if (!start(cinfo, job, share))
        return false;
    // Only when every component is reduced to 1 x 1 blocks: libjpeg may
    // scale subsampled chroma by a larger inverse DCT instead of upsampling,
    // and that reads AC coefficients.
    bool dcOnly = job.dcOnly;
    if (dcOnly) {
        jpeg_calc_output_dimensions(&cinfo);
        for (int c = 0; c < cinfo.num_components; ++c)
            dcOnly = dcOnly && cinfo.comp_info[c].DCT_scaled_size == 1;
    }
    if (dcOnly) {
        cinfo.buffered_image = TRUE;
        cinfo.do_block_smoothing = FALSE;
    }
    const bool shrink = job.target != job.rect.size();
    int first = firstOut, end = endOut;
    if (shrink)
        MMLanczosScaler::sourceRows(job.rect.height(), job.target.height(), firstOut, endOut, &first, &end);
    if (!dcOnly) {
        // A progressive picture's blocks are kept whole only for the rows
        // this part puts out, and two iMCU rows around them (the context
        // of upsampling and of skipping).
        jpeg_calc_output_dimensions(&cinfo);
        const int iMcu = cinfo.max_v_samp_factor * cinfo.min_DCT_scaled_size;
        const unsigned all = (1u << cinfo.num_components) - 1;
        const unsigned mine = !job.streams ? all : share.part == MMJpegScanSplitter::Luma ? 1u : all & ~1u;
        d.keptRows.install(&cinfo, mine, (job.rect.y() + first) / iMcu - 2, (job.rect.y() + end - 1) / iMcu + 3);
    }
    // Reading a progressive stream counts as much as putting its rows out.
    d.hook.attach(&cinfo, job.progress, cinfo.progressive_mode && !dcOnly ? end - first : 0);
    jpeg_start_decompress(&cinfo);
    if (dcOnly && !consumeUntilDcWhole(cinfo))
        return false;
    d.hook.doneReading();
    if (job.readers) {
        d.arrived = true;
        job.readers->arrive(true);
    }
    const QRect all(0, 0, int(cinfo.output_width), int(cinfo.output_height));
    const QRect &rect = job.rect;
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
    const int bpp = job.bpp;
    const int column = (rect.x() - int(xoffset)) * cinfo.output_components;
    const size_t stride = size_t(cinfo.output_width) * cinfo.output_components;
    d.band.resize(stride * kBandRows);
    JSAMPROW rows[kBandRows];
    for (int i = 0; i < kBandRows; ++i)
        rows[i] = d.band.data() + i * stride;

    const size_t outStride = size_t(job.target.width()) * bpp;
    int pending = 0, pendingFirst = firstOut; // shrunk rows waiting in d.shrunk
    if (shrink) {
        d.scaler = std::make_unique<MMLanczosScaler>(rect.size(), job.target, bpp, firstOut, endOut);
        d.shrunk.resize(outStride * kBandRows);
    }

    int row = rect.y() + first;
    if (row > 0 && int(jpeg_skip_scanlines(&cinfo, JDIMENSION(row))) != row)
        return false;
    const int stop = rect.y() + end;
    while (row < stop) {
        const int want = qMin(kBandRows, stop - row);
        int got = 0;
        while (got < want) {
            const int n = int(jpeg_read_scanlines(&cinfo, rows + got, JDIMENSION(want - got)));
            if (n <= 0)
                return false;
            got += n;
        }
        if (job.streams) {
            placeChannels(job.where, bpp, d.band.data() + column, ptrdiff_t(stride), row - rect.y(), got,
                          rect.width(), share.part == MMJpegScanSplitter::Luma);
        } else if (!shrink) {
            placeBand(job.where, bpp, d.band.data() + column, ptrdiff_t(stride), row - rect.y(), got, rect.width());
        } else {
            for (int i = 0; i < got; ++i) {
                d.scaler->push(row - rect.y() + i, rows[i] + column, [&](int j) {
                    if (pending == kBandRows) {
                        placeBand(job.where, bpp, d.shrunk.data(), ptrdiff_t(outStride), pendingFirst, pending,
                                  job.target.width());
                        pendingFirst = j;
                        pending = 0;
                    }
                    return d.shrunk.data() + outStride * size_t(pending++);
                });
            }
        }
        row += got;
        if (job.progress) {
            job.progress->advance(got);
            if (job.progress->isCancelled())
                return false;
        }
    }
    if (pending > 0)
        placeBand(job.where, bpp, d.shrunk.data(), ptrdiff_t(outStride), pendingFirst, pending, job.target.width());
    // Read to the end only when the part reaches it, so that a warning
    // there is still seen; rows below a region are of no concern.
    if (dcOnly)
        return jpeg_finish_output(&cinfo) == TRUE;
    if (row == all.height())
        jpeg_finish_decompress(&cinfo);
    return true;
}

// Runs body on d's fresh decompressor; false when body does or libjpeg
// gives up. body must not own anything a longjmp out of it would leak.
template <class Body> bool withDecoder(Decoder &d, Body body)
{
    return d.error.decompress(d.cinfo, body);
}

// Runs part of job on a decompressor of its own, out of reach of a longjmp
// from any other.
bool decodePart(const Job &job, const Share &share)
{
    Decoder d;
    const bool ok = withDecoder(d, [&] { return runPart(d, job, share); });
    if (job.readers && !d.arrived)
        job.readers->arrive(false);
    return ok;
}

// YCbCr to RGB exactly as libjpeg converts (the same fixed-point tables and
// rounding), so that a picture decoded in two parts equals one decoded whole.
struct YccTables
{
    int crR[256], cbB[256], crG[256], cbG[256];
    YccTables()
    {
        auto fix = [](double v) { return int(v * 65536.0 + 0.5); };
        for (int i = 0; i < 256; ++i) {
            const int x = i - 128;
            crR[i] = (fix(1.40200) * x + 32768) >> 16;
            cbB[i] = (fix(1.77200) * x + 32768) >> 16;
            crG[i] = -fix(0.71414) * x;
            cbG[i] = -fix(0.34414) * x + 32768;
        }
    }
};

unsigned char clampByte(int v)
{
    return (unsigned char)(v < 0 ? 0 : v > 255 ? 255 : v);
}

// Turns rows [first, end) of out, holding Y, Cb, Cr in its first three bytes
// of each pixel, into out's own RGB layout.
void yccToRgb(QImage &out, int first, int end)
{
    static const YccTables t;
    const int bpp = out.format() == QImage::Format_RGB888 ? 3 : 4;
    for (int y = first; y < end; ++y) {
        unsigned char *p = out.scanLine(y);
        for (int x = 0; x < out.width(); ++x, p += bpp) {
            const int l = p[0], cb = p[1], cr = p[2];
            const unsigned char r = clampByte(l + t.crR[cr]), g = clampByte(l + ((t.cbG[cb] + t.crG[cr]) >> 16)),
                                b = clampByte(l + t.cbB[cb]);
            if (bpp == 3) {
                p[0] = r, p[1] = g, p[2] = b;
            } else {
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
                p[0] = b, p[1] = g, p[2] = r, p[3] = 0xFF;
#else
                p[0] = 0xFF, p[1] = r, p[2] = g, p[3] = b;
#endif
            }
        }
    }
}

// A turned picture is written across all of its rows at once, a few bytes
// to each row per band; with 4 KiB pages nearly every write misses the TLB.
// Large pages, where the system offers them, make that cost disappear.
void preferLargePages(QImage &out)
{
#ifdef MADV_HUGEPAGE
    const uintptr_t large = uintptr_t(2) << 20;
    const auto from = (uintptr_t(out.bits()) + large - 1) & ~(large - 1);
    const auto to = (uintptr_t(out.bits()) + uintptr_t(out.sizeInBytes())) & ~(large - 1);
    if (to > from)
        madvise(reinterpret_cast<void *>(from), to - from, MADV_HUGEPAGE);
#else
    Q_UNUSED(out);
#endif
}

// Reads the header as the parts will: whether the picture is grey and
// whether it is progressive. False when it is neither grey nor 3-component.
bool probe(Job &job, bool *grey, bool *progressive, bool *ycc)
{
    Decoder d;
    return withDecoder(d, [&] {
        jpeg_mem_src(&d.cinfo, reinterpret_cast<const unsigned char *>(job.jpeg->constData()),
                     (unsigned long)job.jpeg->size());
        if (jpeg_read_header(&d.cinfo, TRUE) != JPEG_HEADER_OK)
            return false;
        *grey = d.cinfo.jpeg_color_space == JCS_GRAYSCALE && d.cinfo.num_components == 1;
        *progressive = d.cinfo.progressive_mode;
        *ycc = d.cinfo.jpeg_color_space == JCS_YCbCr;
        return *grey || d.cinfo.num_components == 3;
    });
}
}

QImage MMJpegRegionDecoder::decode(const QByteArray &jpeg, const QSize &storedSize, int scaleDenom, const QRect &rect,
                                   const MMOrientation &orientation, QImage::Format format, const QSize &shrinkTo,
                                   const std::function<void()> &inputRead, MMRunProgress *progress)
{
    if (jpeg.isEmpty() || (scaleDenom != 1 && scaleDenom != 2 && scaleDenom != 4 && scaleDenom != 8)
        || rect.isEmpty())
        return QImage();
    Job job{ &jpeg, storedSize, scaleDenom, rect, rect.size(), JCS_UNKNOWN, 0, {} };
    if (shrinkTo.isValid()) {
        // The turned size the caller wants, in stored orientation.
        job.target = orientation.map(shrinkTo);
        if (job.target.isEmpty() || job.target.width() > rect.width() || job.target.height() > rect.height())
            return QImage();
    }
    bool grey = false, progressive = false, ycc = false;
    if (!probe(job, &grey, &progressive, &ycc))
        return QImage();
    if (grey) {
        job.space = JCS_GRAYSCALE;
        format = QImage::Format_Grayscale8;
        job.bpp = 1;
    } else if (format == QImage::Format_RGB888) {
        job.space = JCS_EXT_RGB;
        job.bpp = 3;
    } else {
        format = QImage::Format_RGB32;
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
        job.space = JCS_EXT_BGRX;
#else
        job.space = JCS_EXT_XRGB;
#endif
        job.bpp = 4;
    }
    QImage out(orientation.map(job.target), format);
    if (out.isNull())
        return QImage();
    preferLargePages(out);
    job.where = placement(out, orientation, job.target, job.bpp);
    job.dcOnly = progressive && scaleDenom == 8
        && rect == QRect(0, 0, (storedSize.width() + 7) / 8, (storedSize.height() + 7) / 8);

    // A baseline stream splits in two by rows: the second part entropy-
    // decodes the first part's rows only to skip them (about half the cost of
    // decoding them), so it gets fewer rows and both finish together. Every
    // scan of a progressive stream covers the whole picture, so it splits by
    // component instead: one part reads luma's scans, the other chroma's,
    // and the two YCbCr halves are converted to RGB once joined.
    const int rows = job.target.height();
    const bool large = std::thread::hardware_concurrency() > 1
        && qint64(rect.width()) * rect.height() >= kSplitPixels && rows >= 4 * kBandRows;
    MMJpegScanSplitter streams;
    job.progress = progress;
    // Each part holds the coefficients of its own components only: the two
    // together hold what one decoder of the whole stream would.
    const bool split = large && progressive && ycc && !job.dcOnly && job.target == rect.size() && streams.split(jpeg);
    if (progress) {
        // The source rows each part decodes, once read and once put out.
        int first = 0, end = rows;
        if (job.target != rect.size())
            MMLanczosScaler::sourceRows(rect.height(), job.target.height(), 0, rows, &first, &end);
        progress->setUnits(qint64(end - first) * (progressive && !job.dcOnly ? 2 : 1) * (split ? 2 : 1));
    }
    if (split) {
        job.streams = &streams;
        MMJpegReaders readers(2, inputRead);
        job.readers = &readers;
        bool chromaOk = false;
        std::thread worker([&] { chromaOk = decodePart(job, { 0, rows, MMJpegScanSplitter::Chroma }); });
        const bool lumaOk = decodePart(job, { 0, rows, MMJpegScanSplitter::Luma });
        worker.join();
        if (!lumaOk || !chromaOk)
            return QImage();
        const int half = out.height() / 2;
        std::thread converter([&] { yccToRgb(out, half, out.height()); });
        yccToRgb(out, 0, half);
        converter.join();
        return out;
    }
    if (progressive && !job.dcOnly) {
        MMJpegReaders readers(1, inputRead);
        job.readers = &readers;
        return decodePart(job, { 0, rows }) ? out : QImage();
    }
    if (!large || progressive)
        return decodePart(job, { 0, rows }) ? out : QImage();
    const bool turned = job.where.stepX != job.bpp && job.where.stepX != -job.bpp;
    const int middle = int(rows * (turned ? kFirstPartShareTurned : kFirstPartShare));
    bool second = false;
    std::thread worker([&] { second = decodePart(job, { middle, rows }); });
    const bool firstOk = decodePart(job, { 0, middle });
    worker.join();
    return firstOk && second ? out : QImage();
}
