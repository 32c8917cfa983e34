#include "MMJpegPlaneDecoder.h"
#include "MMJpegErrorJump.h"
#include "MMJpegProgressHook.h"
#include "MMJpegReaders.h"
#include "MMJpegScanSplitter.h"
#include "MMTurnedPlane.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <thread>
#include <vector>

namespace {
// Luma rows a band holds: two to four iMCU rows. A turned band writes a run
// of this many samples to each turned row, and the longer the runs the fewer
// the cache misses; 64 was no quicker than 32.
const int kBandRows = 32;
// Below this many pixels a second decoder is not worth its start.
const qint64 kSplitPixels = 1 << 20;
// Share of the iMCU rows the first of two parts decodes. It reads raw planes;
// the second entropy-decodes the first part's rows only to skip them (libjpeg
// cannot skip in raw mode), then reads rows with replicated chroma and picks
// the samples out, which costs more a row.
const double kFirstPartShare = 0.66;

// The stream as every part sees it; read-only while the parts run.
struct Layout
{
    const QByteArray *jpeg = nullptr;
    QSize size;
    int count = 0;
    int h[3] = {}, v[3] = {};
    int hMax = 1, vMax = 1;
    int iMcuRows = 0;
    bool progressive = false;
    // Set when luma's and chroma's scans are decoded apart.
    MMJpegScanSplitter *streams = nullptr;
    // Set when the bytes may go once read.
    MMJpegReaders *readers = nullptr;
    // Set when a save follows the decode: rows read and put out.
    MMRunProgress *progress = nullptr;
    // Each plane's samples in stored orientation; luma's only where the
    // picture is (TurboJPEG pads it to whole chroma samples).
    QSize plane[3];
    std::vector<MMTurnedPlane> where;
};

// What one part owns. It lives outside the frames a longjmp out of libjpeg
// skips, so its buffers are freed however the part ends.
struct Part
{
    jpeg_decompress_struct cinfo;
    MMJpegErrorJump error;
    std::vector<unsigned char> band[3];
    std::vector<unsigned char> rows;
    // Where a part's unwanted components are read to: one row, reused.
    std::vector<unsigned char> scratch;
    std::vector<JSAMPROW> scratchRows;
    std::vector<JSAMPROW> pointers[3];
    bool arrived = false; // said to the layout's readers that the stream is read
    MMJpegProgressHook hook;
};

// Reads the header of the whole stream or, when it is split, of part's;
// false when the stream is not the picture layout says.
bool open(jpeg_decompress_struct &cinfo, const Layout &l, MMJpegScanSplitter::Part part = MMJpegScanSplitter::Luma)
{
    if (l.streams)
        l.streams->attach(&cinfo, part);
    else
        jpeg_mem_src(&cinfo, reinterpret_cast<const unsigned char *>(l.jpeg->constData()),
                     (unsigned long)l.jpeg->size());
    if (jpeg_read_header(&cinfo, TRUE) != JPEG_HEADER_OK)
        return false;
    return int(cinfo.image_width) == l.size.width() && int(cinfo.image_height) == l.size.height()
        && cinfo.num_components == l.count;
}

// Fills l from the header when the planes path suits the stream.
bool probe(jpeg_decompress_struct &cinfo, const QByteArray &jpeg, Layout &l)
{
    jpeg_mem_src(&cinfo, reinterpret_cast<const unsigned char *>(jpeg.constData()), (unsigned long)jpeg.size());
    // A progressive stream buffers every coefficient whatever is done, so
    // raw output costs nothing more; a sequential one must be interleaved.
    if (jpeg_read_header(&cinfo, TRUE) != JPEG_HEADER_OK
        || (!cinfo.progressive_mode && cinfo.comps_in_scan != cinfo.num_components))
        return false;
    const bool grey = cinfo.num_components == 1 && cinfo.jpeg_color_space == JCS_GRAYSCALE;
    if (!grey && (cinfo.num_components != 3 || cinfo.jpeg_color_space != JCS_YCbCr))
        return false;
    l.jpeg = &jpeg;
    l.size = QSize(int(cinfo.image_width), int(cinfo.image_height));
    l.count = cinfo.num_components;
    l.progressive = cinfo.progressive_mode;
    for (int c = 0; c < l.count; ++c) {
        l.h[c] = cinfo.comp_info[c].h_samp_factor;
        l.v[c] = cinfo.comp_info[c].v_samp_factor;
    }
    // Luma at 1 or 2 each way, chroma at 1: the layouts TurboJPEG codes.
    if (!grey && (l.h[1] != 1 || l.v[1] != 1 || l.h[2] != 1 || l.v[2] != 1 || l.h[0] > 2 || l.v[0] > 2))
        return false;
    // A grey stream's one component sets its iMCU rows, whatever its factors.
    l.hMax = l.h[0];
    l.vMax = l.v[0];
    return true;
}

// Fills luma's padding (a last column or row past the picture, where a side
// is not whole chroma samples) with the picture's edge, as an encoder pads
// a block, so that the coded result does not depend on stale memory.
void padLuma(MMYuvPlanes &planes)
{
    const QSize size = planes.size(), plane = planes.planeSize(0);
    unsigned char *y = planes.plane(0);
    for (int row = 0; row < size.height(); ++row)
        std::memset(y + row * plane.width() + size.width(), y[row * plane.width() + size.width() - 1],
                    size_t(plane.width() - size.width()));
    for (int row = size.height(); row < plane.height(); ++row)
        std::memcpy(y + row * plane.width(), y + (size.height() - 1) * plane.width(), size_t(plane.width()));
}

MMJpegHeader::Subsampling subsamplingOf(int count, int h, int v)
{
    if (count == 1)
        return MMJpegHeader::SubGray;
    if (h == 2)
        return v == 2 ? MMJpegHeader::Sub420 : MMJpegHeader::Sub422;
    return v == 2 ? MMJpegHeader::Sub440 : MMJpegHeader::Sub444;
}

// Places stored rows [first, first + rows) of plane c from its band.
void place(const Layout &l, int c, const std::vector<unsigned char> &band, ptrdiff_t stride, int first, int rows)
{
    rows = std::min(rows, l.plane[c].height() - first);
    if (rows > 0)
        l.where[size_t(c)].place(band.data(), stride, first, rows, l.plane[c].width());
}

// Adds rows put out to the save's progress; false once it is cancelled.
bool reportRows(const Layout &l, int rows)
{
    if (!l.progress)
        return true;
    l.progress->advance(rows);
    return !l.progress->isCancelled();
}

// Components 0 to 2 as bits.
const unsigned kAll = 7, kLumaOnly = 1, kChromaOnly = 6;

// Decodes iMCU rows [0, end) as raw planes and places those of the
// components in keep; the others are not reconstructed at all. part names
// the stream when it is split.
bool decodeRaw(Part &p, const Layout &l, int end, unsigned keep = kAll,
               MMJpegScanSplitter::Part part = MMJpegScanSplitter::Luma)
{
    jpeg_decompress_struct &cinfo = p.cinfo;
    if (!open(cinfo, l, part))
        return false;
    cinfo.raw_data_out = TRUE;
    // Each part of a split stream lacks the other's AC scans; smoothing
    // would invent them (a whole stream is never smoothed: all are known).
    if (l.streams)
        cinfo.do_block_smoothing = FALSE;
    p.hook.attach(&cinfo, l.progress, l.progressive ? l.size.height() : 0);
    jpeg_start_decompress(&cinfo);
    p.hook.doneReading();
    if (l.readers) {
        p.arrived = true;
        l.readers->arrive(true);
    }
    const int perBand = std::max(1, kBandRows / (8 * l.vMax));
    ptrdiff_t stride[3];
    for (int c = 0; c < l.count; ++c) {
        stride[c] = ptrdiff_t(cinfo.comp_info[c].width_in_blocks) * DCTSIZE;
        if (!(keep & (1u << c))) {
            // Read but never reconstructed: libjpeg skips the inverse DCT of
            // a component not needed, so these rows are not even written.
            cinfo.comp_info[c].component_needed = FALSE;
            p.scratch.resize(std::max(p.scratch.size(), size_t(stride[c])));
            p.scratchRows.assign(size_t(l.vMax * DCTSIZE), p.scratch.data());
            continue;
        }
        const int rows = perBand * l.v[c] * DCTSIZE;
        p.band[c].resize(size_t(stride[c]) * size_t(rows));
        p.pointers[c].resize(size_t(rows));
        for (int r = 0; r < rows; ++r)
            p.pointers[c][size_t(r)] = p.band[c].data() + r * stride[c];
    }
    for (int row = 0; row < end; row += perBand) {
        const int n = std::min(perBand, end - row);
        for (int k = 0; k < n; ++k) {
            JSAMPARRAY planes[3];
            for (int c = 0; c < l.count; ++c)
                planes[c] = keep & (1u << c) ? p.pointers[c].data() + k * l.v[c] * DCTSIZE : p.scratchRows.data();
            if (jpeg_read_raw_data(&cinfo, planes, JDIMENSION(l.vMax * DCTSIZE)) == 0)
                return false;
        }
        for (int c = 0; c < l.count; ++c) {
            if (keep & (1u << c))
                place(l, c, p.band[c], stride[c], row * l.v[c] * DCTSIZE, n * l.v[c] * DCTSIZE);
        }
        if (!reportRows(l, std::min(n * l.vMax * DCTSIZE, l.size.height() - row * l.vMax * DCTSIZE)))
            return false;
    }
    // Read to the end only when the part reaches it, so that a warning
    // there is still seen.
    if (end == l.iMcuRows)
        jpeg_finish_decompress(&cinfo);
    return true;
}

// Decodes iMCU rows [first, end of picture) as YCbCr rows after skipping
// the ones above, and places their samples. Without fancy upsampling each
// chroma sample is only repeated, so picking one of each group gives back
// exactly the sample a raw decode gives.
bool decodeRows(Part &p, const Layout &l, int first)
{
    jpeg_decompress_struct &cinfo = p.cinfo;
    if (!open(cinfo, l))
        return false;
    cinfo.out_color_space = l.count == 1 ? JCS_GRAYSCALE : JCS_YCbCr;
    cinfo.do_fancy_upsampling = FALSE;
    jpeg_start_decompress(&cinfo);
    int row = first * l.vMax * DCTSIZE;
    if (row > 0 && int(jpeg_skip_scanlines(&cinfo, JDIMENSION(row))) != row)
        return false;
    const int width = l.size.width(), height = l.size.height();
    const ptrdiff_t stride = ptrdiff_t(width) * l.count;
    p.rows.resize(size_t(stride) * kBandRows);
    JSAMPROW pointers[kBandRows];
    for (int i = 0; i < kBandRows; ++i)
        pointers[i] = p.rows.data() + i * stride;
    for (int c = 0; l.count > 1 && c < 3; ++c)
        p.band[c].resize(size_t(l.plane[c].width()) * kBandRows);
    while (row < height) {
        const int want = std::min(kBandRows, height - row);
        int got = 0;
        while (got < want) {
            const int n = int(jpeg_read_scanlines(&cinfo, pointers + got, JDIMENSION(want - got)));
            if (n <= 0)
                return false;
            got += n;
        }
        if (l.count == 1) {
            if (!reportRows(l, got))
                return false;
            place(l, 0, p.rows, stride, row, got);
            row += got;
            continue;
        }
        for (int i = 0; i < got; ++i) {
            const unsigned char *s = pointers[i];
            unsigned char *y = p.band[0].data() + i * width;
            for (int x = 0; x < width; ++x)
                y[x] = s[3 * x];
            for (int c = 1; c < 3; ++c) {
                const int down = l.vMax / l.v[c], across = 3 * (l.hMax / l.h[c]);
                if (i % down != 0)
                    continue;
                unsigned char *out = p.band[c].data() + (i / down) * l.plane[c].width();
                const unsigned char *in = s + c;
                for (int x = 0; x < l.plane[c].width(); ++x, in += across)
                    out[x] = *in;
            }
        }
        if (!reportRows(l, got))
            return false;
        place(l, 0, p.band[0], width, row, got);
        for (int c = 1; c < 3; ++c) {
            const int down = l.vMax / l.v[c];
            place(l, c, p.band[c], l.plane[c].width(), row / down, (got + down - 1) / down);
        }
        row += got;
    }
    jpeg_finish_decompress(&cinfo);
    return true;
}
}

MMJpegPlaneDecoder::Result MMJpegPlaneDecoder::decode(const QByteArray &jpeg, const MMOrientation &orientation,
                                                      MMYuvPlanes *planes, const ChromaDone &chromaDone,
                                                      const std::function<void()> &inputRead,
                                                      MMRunProgress *progress)
{
    Layout l;
    {
        Part p;
        if (jpeg.isEmpty() || !p.error.decompress(p.cinfo, [&] { return probe(p.cinfo, jpeg, l); }))
            return Unsuited;
    }
    // A reversed side must end on a whole chroma sample, or the partial one
    // at its end would come first and every chroma sample would be off.
    if (l.count > 1
        && ((MMTurnedPlane::reversesX(orientation) && l.size.width() % l.hMax != 0)
            || (MMTurnedPlane::reversesY(orientation) && l.size.height() % l.vMax != 0)))
        return Unsuited;
    const bool swap = orientation.swapsAxes();
    // Filled in place: chromaDone's reader may hold on to it.
    *planes = MMYuvPlanes(orientation.map(l.size),
                          subsamplingOf(l.count, swap ? l.vMax : l.hMax, swap ? l.hMax : l.vMax));
    MMYuvPlanes &out = *planes;
    if (out.isNull())
        return Failed;
    for (int c = 0; c < l.count; ++c) {
        l.plane[c] = c == 0 ? l.size : orientation.map(out.planeSize(c));
        l.where.emplace_back(out.plane(c), out.planeSize(c).width(), l.plane[c], orientation);
    }
    l.iMcuRows = (l.size.height() + l.vMax * DCTSIZE - 1) / (l.vMax * DCTSIZE);

    const bool large = std::thread::hardware_concurrency() > 1
        && qint64(l.size.width()) * l.size.height() >= kSplitPixels && l.iMcuRows >= 4;
    bool ok = false;
    MMJpegScanSplitter streams;
    l.progress = progress;
    const bool split = l.progressive && large && l.count == 3 && streams.split(jpeg);
    // Rows read (a progressive stream's, by libjpeg's estimate) and put
    // out, by every part.
    if (progress)
        progress->setUnits(qint64(l.size.height()) * (l.progressive ? 2 : 1) * (split ? 2 : 1));
    if (split) {
        // Every scan covers the whole picture, so the two parts split by
        // component: one reads luma's scans, the other chroma's, each
        // holding its own components' coefficients.
        l.streams = &streams;
        // Chroma's part does not wait for luma's to have read the stream:
        // its planes, and their encoder, start sooner.
        MMJpegReaders readers(2, inputRead, false);
        l.readers = &readers;
        bool chromaOk = false;
        std::thread worker([&] {
            {
                Part p;
                chromaOk = p.error.decompress(
                    p.cinfo, [&] { return decodeRaw(p, l, l.iMcuRows, kChromaOnly, MMJpegScanSplitter::Chroma); });
                if (!p.arrived)
                    readers.arrive(false);
            }
            // Luma's scans take longer to read: chroma's thread goes on
            // with the chroma planes meanwhile.
            if (chromaOk && chromaDone)
                chromaDone(out);
        });
        Part p;
        const bool lumaOk = p.error.decompress(
            p.cinfo, [&] { return decodeRaw(p, l, l.iMcuRows, kLumaOnly, MMJpegScanSplitter::Luma); });
        if (!p.arrived)
            readers.arrive(false);
        worker.join();
        ok = lumaOk && chromaOk;
    } else if (!large || l.progressive) {
        MMJpegReaders readers(1, inputRead);
        l.readers = l.progressive ? &readers : nullptr;
        Part p;
        ok = p.error.decompress(p.cinfo, [&] { return decodeRaw(p, l, l.iMcuRows); });
    } else {
        const int middle = std::clamp(int(std::lround(l.iMcuRows * kFirstPartShare)), 1, l.iMcuRows - 1);
        bool second = false;
        std::thread worker([&] {
            Part p;
            second = p.error.decompress(p.cinfo, [&] { return decodeRows(p, l, middle); });
        });
        Part p;
        const bool firstOk = p.error.decompress(p.cinfo, [&] { return decodeRaw(p, l, middle); });
        worker.join();
        ok = firstOk && second;
    }
    if (!ok)
        return Failed;
    padLuma(out);
    return Decoded;
}
