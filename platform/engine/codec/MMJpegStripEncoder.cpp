#include "MMJpegStripEncoder.h"
#include "MMJpegStripJoiner.h"
#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>
#include <turbojpeg.h>

namespace {
// Below this many pixels a second encoder is not worth its start.
const long long kSplitPixels = 1 << 20;

}

QByteArray MMJpegStripEncoder::encode(const unsigned char *pixels, int width, int pitch, int height, int pixelFormat,
                                      int subsampling, int quality)
{
    if (!pixels || width <= 0 || height <= 0 || subsampling < 0 || subsampling >= TJ_NUMSAMP
        || (long long)width * height < kSplitPixels || std::thread::hardware_concurrency() < 2)
        return QByteArray();
    const int mcuW = tjMCUWidth[subsampling], mcuH = tjMCUHeight[subsampling];
    const long long mcusPerRow = (width + mcuW - 1) / mcuW;
    const long long mcuRows = (height + mcuH - 1) / mcuH;
    const long long strips = std::max(2LL, (mcusPerRow * mcuRows + MMJpegStripJoiner::MaxInterval - 1) / MMJpegStripJoiner::MaxInterval);
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
            if (tjCompress2(tj, pixels + (long long)top * pitch, width, pitch, rows, pixelFormat, &buffer, &size,
                            subsampling, quality, 0) != 0)
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
