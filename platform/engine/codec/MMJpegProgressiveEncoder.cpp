#include "MMJpegProgressiveEncoder.h"
#include "MMJpegErrorJump.h"
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <thread>
// clang-format off
#include <jpeglib.h>
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

// One encoder's state; nothing with a destructor, so that libjpeg may
// longjmp out of the work on it.
struct Encoder
{
    jpeg_compress_struct cinfo;
    MMJpegErrorJump error;
    unsigned char *buffer = nullptr;
    unsigned long size = 0;
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

bool runEncoder(Encoder &e, const QImage &image, int quality, int subsampling, const jpeg_scan_info *scans, int count)
{
    jpeg_compress_struct &cinfo = e.cinfo;
    jpeg_mem_dest(&cinfo, &e.buffer, &e.size);
    cinfo.image_width = JDIMENSION(image.width());
    cinfo.image_height = JDIMENSION(image.height());
    const bool packed = image.format() == QImage::Format_RGB888;
    cinfo.input_components = packed ? 3 : 4;
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
    cinfo.in_color_space = packed ? JCS_EXT_RGB : JCS_EXT_BGRX;
#else
    cinfo.in_color_space = packed ? JCS_EXT_RGB : JCS_EXT_XRGB;
#endif
    jpeg_set_defaults(&cinfo);
    jpeg_set_quality(&cinfo, quality, TRUE);
    setSampling(cinfo, subsampling);
    // As TurboJPEG encodes: the fast DCT unless the quality is very high.
    cinfo.dct_method = quality >= 96 ? JDCT_ISLOW : JDCT_IFAST;
    cinfo.optimize_coding = TRUE;
    cinfo.scan_info = scans;
    cinfo.num_scans = count;
    jpeg_start_compress(&cinfo, TRUE);
    JSAMPROW rows[kRowsPerCall];
    while (cinfo.next_scanline < cinfo.image_height) {
        const int n = qMin(kRowsPerCall, int(cinfo.image_height - cinfo.next_scanline));
        for (int i = 0; i < n; ++i)
            rows[i] = const_cast<JSAMPROW>(image.constScanLine(int(cinfo.next_scanline) + i));
        jpeg_write_scanlines(&cinfo, rows, JDIMENSION(n));
    }
    jpeg_finish_compress(&cinfo);
    return true;
}

bool encodeScans(Encoder &e, const QImage &image, int quality, int subsampling, const jpeg_scan_info *scans, int count)
{
    e.error.install(reinterpret_cast<j_common_ptr>(&e.cinfo), quiet);
    jpeg_create_compress(&e.cinfo);
    if (setjmp(e.error.jump)) {
        jpeg_destroy_compress(&e.cinfo);
        return false;
    }
    const bool ok = runEncoder(e, image, quality, subsampling, scans, count);
    jpeg_destroy_compress(&e.cinfo);
    return ok;
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
}

QByteArray MMJpegProgressiveEncoder::encode(const QImage &image, int quality, int subsampling)
{
    if ((image.format() != QImage::Format_RGB888 && image.format() != QImage::Format_RGB32)
        || qint64(image.width()) * image.height() < kSplitPixels || std::thread::hardware_concurrency() < 2
        || subsampling == TJSAMP_GRAY)
        return QByteArray();
    Encoder luma, chroma;
    bool chromaOk = false;
    std::thread helper([&] {
        chromaOk = encodeScans(chroma, image, quality, subsampling, kChromaScans, int(std::size(kChromaScans)));
    });
    const bool lumaOk = encodeScans(luma, image, quality, subsampling, kLumaScans, int(std::size(kLumaScans)));
    helper.join();

    QByteArray out;
    const qsizetype from = chromaOk ? afterFirstScan(chroma.buffer, qsizetype(chroma.size)) : -1;
    if (lumaOk && from > 0 && luma.size > 4 && chroma.buffer[chroma.size - 2] == 0xFF
        && chroma.buffer[chroma.size - 1] == 0xD9 && luma.buffer[luma.size - 2] == 0xFF
        && luma.buffer[luma.size - 1] == 0xD9) {
        out.reserve(qsizetype(luma.size + chroma.size) - from);
        out.append(reinterpret_cast<const char *>(luma.buffer), qsizetype(luma.size) - 2);
        out.append(reinterpret_cast<const char *>(chroma.buffer) + from, qsizetype(chroma.size) - from);
    }
    std::free(luma.buffer);
    std::free(chroma.buffer);
    return out;
}
