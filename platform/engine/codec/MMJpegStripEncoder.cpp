#include "MMJpegStripEncoder.h"
#include "MMJpegStripJoiner.h"
#include "MMYuvPlanes.h"
#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>
#include <turbojpeg.h>

namespace {
// Below this many pixels a second encoder is not worth its start.
const long long kSplitPixels = 1 << 20;
const int kThreads = 2;

// Encodes rows [top, top + rows) of the picture as a JPEG of their own.
using StripCoder = int (*)(const void *source, tjhandle tj, int top, int rows, unsigned char **buffer,
                           unsigned long *size);

// Strips of whole MCU rows of a width x height picture, coded by code on
// kThreads threads and joined; empty when the picture is too small or
// cannot be split.
QByteArray encodeStrips(int width, int height, int subsampling, const void *source, StripCoder code)
{
    if (width <= 0 || height <= 0 || subsampling < 0 || subsampling >= TJ_NUMSAMP
        || (long long)width * height < kSplitPixels || std::thread::hardware_concurrency() < 2)
        return QByteArray();
    const int mcuW = tjMCUWidth[subsampling], mcuH = tjMCUHeight[subsampling];
    const long long mcusPerRow = (width + mcuW - 1) / mcuW;
    const long long mcuRows = (height + mcuH - 1) / mcuH;
    // A whole number of strips per thread, so that both finish together.
    long long strips = (mcusPerRow * mcuRows + MMJpegStripJoiner::MaxInterval - 1) / MMJpegStripJoiner::MaxInterval;
    strips = (std::max(strips, 1LL) + kThreads - 1) / kThreads * kThreads;
    const long long stripRows = (mcuRows + strips - 1) / strips;
    const long long interval = stripRows * mcusPerRow;
    if (mcuRows < 2 || interval > MMJpegStripJoiner::MaxInterval)
        return QByteArray();
    const int stripHeight = int(stripRows * mcuH);
    const int count = (height + stripHeight - 1) / stripHeight;

    std::vector<QByteArray> parts(static_cast<size_t>(count));
    std::atomic<int> next{ 0 };
    std::atomic<bool> failed{ false };
    auto work = [&] {
        tjhandle tj = tjInitCompress();
        if (!tj) {
            failed = true;
            return;
        }
        for (int i = next++; i < count && !failed; i = next++) {
            const int top = i * stripHeight, rows = std::min(stripHeight, height - top);
            unsigned char *buffer = nullptr;
            unsigned long size = 0;
            if (code(source, tj, top, rows, &buffer, &size) != 0)
                failed = true;
            else
                parts[size_t(i)] = QByteArray(reinterpret_cast<const char *>(buffer), int(size));
            tjFree(buffer);
        }
        tjDestroy(tj);
    };
    std::thread helper(work);
    work();
    helper.join();
    if (failed)
        return QByteArray();

    return MMJpegStripJoiner::join(parts, height, interval);
}

struct Pixels
{
    const unsigned char *pixels;
    int width, pitch, pixelFormat, subsampling, quality;
};

int codePixels(const void *source, tjhandle tj, int top, int rows, unsigned char **buffer, unsigned long *size)
{
    const auto &p = *static_cast<const Pixels *>(source);
    return tjCompress2(tj, p.pixels + (long long)top * p.pitch, p.width, p.pitch, rows, p.pixelFormat, buffer, size,
                       p.subsampling, p.quality, 0);
}

struct Planes
{
    const MMYuvPlanes *planes;
    int quality;
    int flags = 0;
};

int codePlanes(const void *source, tjhandle tj, int top, int rows, unsigned char **buffer, unsigned long *size)
{
    const auto &p = *static_cast<const Planes *>(source);
    const MMYuvPlanes &yuv = *p.planes;
    // top is on an MCU row, so on a whole chroma row too.
    const unsigned char *planes[3] = {};
    int strides[3] = {};
    for (int i = 0; i < yuv.count(); ++i) {
        const int stride = yuv.planeSize(i).width();
        const int row = i == 0 ? top : top / yuv.chromaHeight();
        planes[i] = yuv.plane(i) + (long long)row * stride;
        strides[i] = stride;
    }
    return tjCompressFromYUVPlanes(tj, planes, yuv.size().width(), strides, rows, int(yuv.subsampling()), buffer, size,
                                   p.quality, p.flags);
}
}

QByteArray MMJpegStripEncoder::encode(const unsigned char *pixels, int width, int pitch, int height, int pixelFormat,
                                      int subsampling, int quality)
{
    if (!pixels)
        return QByteArray();
    const Pixels source{ pixels, width, pitch, pixelFormat, subsampling, quality };
    return encodeStrips(width, height, subsampling, &source, codePixels);
}

QByteArray MMJpegStripEncoder::encode(const MMYuvPlanes &planes, int quality)
{
    if (planes.isNull())
        return QByteArray();
    const QSize size = planes.size();
    const Planes source{ &planes, quality };
    const QByteArray joined = encodeStrips(size.width(), size.height(), int(planes.subsampling()), &source, codePlanes);
    return joined.isEmpty() ? encodeWhole(planes, quality, false) : joined;
}

QByteArray MMJpegStripEncoder::encodeWhole(const MMYuvPlanes &planes, int quality, bool progressive)
{
    if (planes.isNull())
        return QByteArray();
    const Planes source{ &planes, quality, progressive ? TJFLAG_PROGRESSIVE : 0 };
    const QSize size = planes.size();
    QByteArray joined;
    tjhandle tj = tjInitCompress();
    if (!tj)
        return QByteArray();
    unsigned char *buffer = nullptr;
    unsigned long bytes = 0;
    if (codePlanes(&source, tj, 0, size.height(), &buffer, &bytes) == 0)
        joined = QByteArray(reinterpret_cast<const char *>(buffer), int(bytes));
    tjFree(buffer);
    tjDestroy(tj);
    return joined;
}
