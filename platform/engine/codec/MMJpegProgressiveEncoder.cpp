#include "MMJpegProgressiveEncoder.h"
#include "MMJpegErrorJump.h"
#include "MMYuvPlanes.h"
#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>
#include <malloc.h>
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
#include <turbojpeg.h>
// clang-format on

namespace {
// Below this many pixels a second encoder is not worth its start.
const qint64 kSplitPixels = 1 << 20;
const int kRowsPerCall = 16;

void quiet(j_common_ptr, int) {}

// Two groups of scans that each make a valid progression on their own and
// cost about the same to code, so the two threads finish together: the DC
// scan and luma by spectral selection alone (1-5, 6-63), and chroma by
// spectral selection and successive approximation, which needs a first DC
// scan of its own that is left out when the two are joined. Splitting luma's
// bits too (libjpeg's simple progression) would make a file 2-4 % smaller
// but doubles luma's coding time, the larger half of the work.
const jpeg_scan_info kLumaScans[] = {
    { 3, { 0, 1, 2 }, 0, 0, 0, 0 },
    { 1, { 0 }, 1, 5, 0, 0 },
    { 1, { 0 }, 6, 63, 0, 0 },
};
const jpeg_scan_info kChromaScans[] = {
    { 3, { 0, 1, 2 }, 0, 0, 0, 0 }, { 1, { 2 }, 1, 63, 0, 1 }, { 1, { 1 }, 1, 63, 0, 1 },
    { 1, { 2 }, 1, 63, 1, 0 },      { 1, { 1 }, 1, 63, 1, 0 },
};

// Coefficients of the components an encoder codes only in its DC scan (the
// luma group's chroma, the chroma group's stand-in luma). libjpeg keeps
// every block of every component until its last scan; for these only the DC
// term of each block is kept, and each access gets a window of blocks
// rebuilt from them (what the last access wrote is kept first). The DC scan
// reads nothing else, so the stream is the same, and a progressive encoder
// holds about half the coefficients it would.
struct DcOnly
{
    struct Array
    {
        jvirt_barray_ptr array; // libjpeg's own, a few rows, never accessed
        JDIMENSION blocksPerRow, rows, maxAccess;
        JCOEF *dc;
        JBLOCKARRAY window;
        JDIMENSION writtenFirst, writtenCount;
    };
    unsigned components = 0; // bits of the components kept as DC only
    int requested = 0;
    int count = 0;
    Array arrays[3];
    decltype(jpeg_memory_mgr::request_virt_barray) request = nullptr;
    decltype(jpeg_memory_mgr::access_virt_barray) access = nullptr;
};

jvirt_barray_ptr requestDcOnly(j_common_ptr cinfo, int pool, boolean preZero, JDIMENSION blocksPerRow,
                               JDIMENSION rows, JDIMENSION maxAccess)
{
    auto *d = static_cast<DcOnly *>(cinfo->client_data);
    // libjpeg asks for one array a component, in component order.
    const int component = d->requested++;
    if (component >= 3 || !(d->components & (1u << component)))
        return d->request(cinfo, pool, preZero, blocksPerRow, rows, maxAccess);
    DcOnly::Array &a = d->arrays[d->count++];
    a.array = d->request(cinfo, pool, FALSE, blocksPerRow, maxAccess, maxAccess);
    a.blocksPerRow = blocksPerRow;
    a.rows = rows;
    a.maxAccess = maxAccess;
    const size_t dcBytes = size_t(blocksPerRow) * rows * sizeof(JCOEF);
    a.dc = static_cast<JCOEF *>(cinfo->mem->alloc_large(cinfo, pool, dcBytes));
    std::memset(a.dc, 0, dcBytes);
    a.window = static_cast<JBLOCKARRAY>(cinfo->mem->alloc_small(cinfo, pool, maxAccess * sizeof(JBLOCKROW)));
    for (JDIMENSION r = 0; r < maxAccess; ++r)
        a.window[r] = static_cast<JBLOCKROW>(cinfo->mem->alloc_large(cinfo, pool, blocksPerRow * sizeof(JBLOCK)));
    a.writtenFirst = a.writtenCount = 0;
    return a.array;
}

JBLOCKARRAY accessDcOnly(j_common_ptr cinfo, jvirt_barray_ptr array, JDIMENSION first, JDIMENSION count,
                         boolean writable)
{
    auto *d = static_cast<DcOnly *>(cinfo->client_data);
    for (int i = 0; i < d->count; ++i) {
        DcOnly::Array &a = d->arrays[i];
        if (a.array != array)
            continue;
        if (count > a.maxAccess || first + count > a.rows || first + count < first)
            ERREXIT(cinfo, JERR_BAD_VIRTUAL_ACCESS);
        for (JDIMENSION r = 0; r < a.writtenCount; ++r) {
            JCOEF *dc = a.dc + size_t(a.writtenFirst + r) * a.blocksPerRow;
            for (JDIMENSION b = 0; b < a.blocksPerRow; ++b)
                dc[b] = a.window[r][b][0];
        }
        for (JDIMENSION r = 0; r < count; ++r) {
            const JCOEF *dc = a.dc + size_t(first + r) * a.blocksPerRow;
            std::memset(a.window[r], 0, a.blocksPerRow * sizeof(JBLOCK));
            for (JDIMENSION b = 0; b < a.blocksPerRow; ++b)
                a.window[r][b][0] = dc[b];
        }
        a.writtenFirst = first;
        a.writtenCount = writable ? count : 0;
        return a.window;
    }
    return d->access(cinfo, array, first, count, writable);
}

// Makes cinfo keep only DC terms of the components no AC scan of scans
// codes. Before jpeg_start_compress; d must outlive the compression.
void keepDcOnly(jpeg_compress_struct &cinfo, DcOnly &d, const jpeg_scan_info *scans, int count)
{
    unsigned ac = 0;
    for (int i = 0; i < count; ++i) {
        for (int c = 0; scans[i].Ss > 0 && c < scans[i].comps_in_scan; ++c)
            ac |= 1u << scans[i].component_index[c];
    }
    d.components = 7u & ~ac;
    if (!d.components)
        return;
    cinfo.client_data = &d;
    d.request = cinfo.mem->request_virt_barray;
    d.access = cinfo.mem->access_virt_barray;
    cinfo.mem->request_virt_barray = requestDcOnly;
    cinfo.mem->access_virt_barray = accessDcOnly;
}

// One encoder's state. It outlives the frames a longjmp out of libjpeg
// skips, so its buffers are freed however the encode ends.
struct Encoder
{
    jpeg_compress_struct cinfo;
    MMJpegErrorJump error;
    DcOnly dcOnly;
    // The coded stream. It starts in a buffer of a byte a pixel, mostly
    // never touched (so never resident): libjpeg's own grows by doubling,
    // copying, and at the end held the old and the new copy at once.
    unsigned char *reserved = nullptr;
    unsigned char *buffer = nullptr;
    unsigned long size = 0;
    ~Encoder()
    {
        if (reserved != buffer)
            std::free(reserved);
        std::free(buffer);
    }
    // Planes input: one iMCU row of each component, padded to whole blocks.
    std::vector<unsigned char> band[3];
    std::vector<JSAMPROW> rows[3];
};

void setSampling(jpeg_compress_struct &cinfo, int subsampling)
{
    int h = 1, v = 1;
    switch (subsampling) {
    case TJSAMP_422: h = 2; break;
    case TJSAMP_420: h = 2; v = 2; break;
    case TJSAMP_440: v = 2; break;
    case TJSAMP_411: h = 4; break;
    default: break;
    }
    cinfo.comp_info[0].h_samp_factor = h;
    cinfo.comp_info[0].v_samp_factor = v;
    for (int c = 1; c < 3; ++c)
        cinfo.comp_info[c].h_samp_factor = cinfo.comp_info[c].v_samp_factor = 1;
}

// The settings every encoder of one picture shares, whatever it is fed.
void configure(jpeg_compress_struct &cinfo, int quality, int subsampling, const jpeg_scan_info *scans, int count)
{
    jpeg_set_defaults(&cinfo);
    jpeg_set_quality(&cinfo, quality, TRUE);
    setSampling(cinfo, subsampling);
    // As TurboJPEG encodes: the fast DCT unless the quality is very high.
    cinfo.dct_method = quality >= 96 ? JDCT_ISLOW : JDCT_IFAST;
    cinfo.optimize_coding = TRUE;
    cinfo.scan_info = scans;
    cinfo.num_scans = count;
}

// Codes RGB pixels: libjpeg converts and downsamples them.
struct PixelInput
{
    const QImage &image;

    QSize pictureSize() const { return image.size(); }

    void run(jpeg_compress_struct &cinfo, Encoder &, int quality, int subsampling, const jpeg_scan_info *scans,
             int count) const
    {
        cinfo.image_width = JDIMENSION(image.width());
        cinfo.image_height = JDIMENSION(image.height());
        const bool packed = image.format() == QImage::Format_RGB888;
        cinfo.input_components = packed ? 3 : 4;
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
        cinfo.in_color_space = packed ? JCS_EXT_RGB : JCS_EXT_BGRX;
#else
        cinfo.in_color_space = packed ? JCS_EXT_RGB : JCS_EXT_XRGB;
#endif
        configure(cinfo, quality, subsampling, scans, count);
        jpeg_start_compress(&cinfo, TRUE);
        JSAMPROW rows[kRowsPerCall];
        while (cinfo.next_scanline < cinfo.image_height) {
            const int n = qMin(kRowsPerCall, int(cinfo.image_height - cinfo.next_scanline));
            for (int i = 0; i < n; ++i)
                rows[i] = const_cast<JSAMPROW>(image.constScanLine(int(cinfo.next_scanline) + i));
            jpeg_write_scanlines(&cinfo, rows, JDIMENSION(n));
        }
    }
};

// Codes sample planes as they are: no colour conversion or downsampling.
// libjpeg reads whole blocks, so each iMCU row is copied into bands padded
// with the planes' last column and row, as its own input stage pads.
struct PlaneInput
{
    QSize picture;
    const unsigned char *plane[3];
    QSize size[3];

    // All of planes, at their own sampling.
    explicit PlaneInput(const MMYuvPlanes &planes) : picture(planes.size())
    {
        for (int c = 0; c < 3; ++c) {
            plane[c] = planes.plane(c);
            size[c] = planes.planeSize(c);
        }
    }
    // Chroma alone as a picture of chroma's size, every component 1 x 1,
    // the first a stand-in for luma (Cb again): the chroma components come
    // out with the very blocks, and so the very scans, that they have in
    // the whole picture, and no full-size luma is transformed for nothing.
    static PlaneInput chroma(const MMYuvPlanes &planes)
    {
        PlaneInput input(planes);
        input.picture = planes.planeSize(1);
        input.plane[0] = input.plane[1];
        input.size[0] = input.size[1];
        return input;
    }

    QSize pictureSize() const { return picture; }

    void run(jpeg_compress_struct &cinfo, Encoder &e, int quality, int subsampling, const jpeg_scan_info *scans,
             int count) const
    {
        cinfo.image_width = JDIMENSION(picture.width());
        cinfo.image_height = JDIMENSION(picture.height());
        cinfo.input_components = 3;
        cinfo.in_color_space = JCS_YCbCr;
        configure(cinfo, quality, subsampling, scans, count);
        cinfo.raw_data_in = TRUE;
        jpeg_start_compress(&cinfo, TRUE);
        const int vMax = cinfo.max_v_samp_factor;
        for (int c = 0; c < 3; ++c) {
            const size_t stride = size_t(cinfo.comp_info[c].width_in_blocks) * DCTSIZE;
            const int rows = cinfo.comp_info[c].v_samp_factor * DCTSIZE;
            e.band[c].resize(stride * size_t(rows));
            e.rows[c].resize(size_t(rows));
            for (int r = 0; r < rows; ++r)
                e.rows[c][size_t(r)] = e.band[c].data() + size_t(r) * stride;
        }
        for (JDIMENSION row = 0; row < cinfo.image_height; row += JDIMENSION(vMax * DCTSIZE)) {
            JSAMPARRAY bands[3];
            for (int c = 0; c < 3; ++c) {
                const int rows = cinfo.comp_info[c].v_samp_factor * DCTSIZE;
                const int first = int(row) / (vMax / cinfo.comp_info[c].v_samp_factor);
                const size_t stride = e.band[c].size() / size_t(rows);
                const size_t width = size_t(size[c].width());
                for (int r = 0; r < rows; ++r) {
                    const unsigned char *src = plane[c] + size_t(std::min(first + r, size[c].height() - 1)) * width;
                    unsigned char *dst = e.rows[c][size_t(r)];
                    std::memcpy(dst, src, width);
                    std::memset(dst + width, src[width - 1], stride - width);
                }
                bands[c] = e.rows[c].data();
            }
            jpeg_write_raw_data(&cinfo, bands, JDIMENSION(vMax * DCTSIZE));
        }
    }
};

template <class Input>
bool encodeScans(Encoder &e, const Input &input, int quality, int subsampling, const jpeg_scan_info *scans, int count)
{
    e.error.install(reinterpret_cast<j_common_ptr>(&e.cinfo), quiet);
    jpeg_create_compress(&e.cinfo);
    if (setjmp(e.error.jump)) {
        jpeg_destroy_compress(&e.cinfo);
        return false;
    }
    const QSize picture = input.pictureSize();
    const size_t expected = size_t(picture.width()) * size_t(picture.height()) + 65536;
    e.reserved = e.buffer = static_cast<unsigned char *>(std::malloc(expected));
    e.size = e.buffer ? expected : 0;
    jpeg_mem_dest(&e.cinfo, &e.buffer, &e.size);
    keepDcOnly(e.cinfo, e.dcOnly, scans, count);
    input.run(e.cinfo, e, quality, subsampling, scans, count);
    jpeg_finish_compress(&e.cinfo);
    jpeg_destroy_compress(&e.cinfo);
#ifdef __GLIBC__
    // Its coefficients (tens of MB) go back to the system, not to the heap,
    // before the next encoder of the same picture asks for its own.
    malloc_trim(0);
#endif
    return true;
}

// Where the marker after the first scan's entropy-coded data starts; -1
// when the stream does not look as libjpeg writes it.
qsizetype afterFirstScan(const unsigned char *b, qsizetype n)
{
    qsizetype at = 2;
    while (at + 4 <= n && b[at] == 0xFF && b[at + 1] != 0xDA)
        at += 2 + ((b[at + 2] << 8) | b[at + 3]);
    if (at + 4 > n)
        return -1;
    for (at += 2 + ((b[at + 2] << 8) | b[at + 3]); at + 1 < n; ++at) {
        // 0xFF 0x00 is a stuffed byte and 0xFF 0xD0..0xD7 a restart: data.
        if (b[at] == 0xFF && b[at + 1] != 0x00 && (b[at + 1] < 0xD0 || b[at + 1] > 0xD7))
            return at;
    }
    return -1;
}

bool codedWhole(const Encoder &e)
{
    return e.size > 4 && e.buffer[e.size - 2] == 0xFF && e.buffer[e.size - 1] == 0xD9;
}

// Codes the chroma group of scans; the scans after its own DC scan (the
// part a joined stream takes) when done, else empty.
template <class Input> QByteArray codeChroma(const Input &input, int quality, int subsampling)
{
    Encoder chroma;
    QByteArray out;
    if (encodeScans(chroma, input, quality, subsampling, kChromaScans, int(std::size(kChromaScans)))
        && codedWhole(chroma)) {
        const qsizetype from = afterFirstScan(chroma.buffer, qsizetype(chroma.size));
        if (from > 0)
            out = QByteArray(reinterpret_cast<const char *>(chroma.buffer) + from, qsizetype(chroma.size) - from);
    }
    return out;
}

// Codes input's luma scans while chroma() gives the chroma ones (coded on
// another thread) and joins them. chromaFirst waits for the chroma scans
// before luma's encoder takes its memory: when they were started early
// (beside the decoder) they are mostly done by then, and two encoders'
// coefficients are never held at once.
template <class Input, class Chroma>
QByteArray encodeJoined(const Input &input, int quality, int subsampling, Chroma chroma, bool chromaFirst = false)
{
    QByteArray tail;
    if (chromaFirst)
        tail = chroma();
    Encoder luma;
    const bool lumaOk = encodeScans(luma, input, quality, subsampling, kLumaScans, int(std::size(kLumaScans)));
    if (!chromaFirst)
        tail = chroma();
    QByteArray out;
    if (lumaOk && codedWhole(luma) && !tail.isEmpty()) {
        out.reserve(qsizetype(luma.size) - 2 + tail.size());
        out.append(reinterpret_cast<const char *>(luma.buffer), qsizetype(luma.size) - 2);
        out.append(tail);
    }
    return out;
}

bool suits(const MMYuvPlanes &planes)
{
    return !planes.isNull() && planes.count() == 3
        && qint64(planes.size().width()) * planes.size().height() >= kSplitPixels
        && std::thread::hardware_concurrency() >= 2;
}
}

QByteArray MMJpegProgressiveEncoder::encode(const QImage &image, int quality, int subsampling)
{
    if ((image.format() != QImage::Format_RGB888 && image.format() != QImage::Format_RGB32)
        || qint64(image.width()) * image.height() < kSplitPixels || std::thread::hardware_concurrency() < 2
        || subsampling == TJSAMP_GRAY)
        return QByteArray();
    const PixelInput input{ image };
    QByteArray chroma;
    std::thread helper([&] { chroma = codeChroma(input, quality, subsampling); });
    return encodeJoined(input, quality, subsampling, [&] {
        helper.join();
        return chroma;
    });
}

QByteArray MMJpegProgressiveEncoder::encode(const MMYuvPlanes &planes, int quality,
                                            const std::function<QByteArray()> &chromaScans)
{
    if (!suits(planes))
        return QByteArray();
    if (chromaScans)
        return encodeJoined(PlaneInput(planes), quality, int(planes.subsampling()), chromaScans, true);
    QByteArray chroma;
    std::thread helper([&] { chroma = MMJpegProgressiveEncoder::chromaScans(planes, quality); });
    return encodeJoined(PlaneInput(planes), quality, int(planes.subsampling()), [&] {
        helper.join();
        return chroma;
    });
}

QByteArray MMJpegProgressiveEncoder::chromaScans(const MMYuvPlanes &planes, int quality)
{
    if (!suits(planes))
        return QByteArray();
    return codeChroma(PlaneInput::chroma(planes), quality, TJSAMP_444);
}
