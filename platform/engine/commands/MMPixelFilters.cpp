#include "MMPixelFilters.h"
#include <algorithm>
#include <cmath>
#include <vector>

namespace {
template <typename F>
void mapPixels(QImage &image, F f)
{
    for (int y = 0; y < image.height(); ++y) {
        QRgb *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            line[x] = f(line[x]);
    }
}

int clamp255(int v) { return v < 0 ? 0 : (v > 255 ? 255 : v); }

// Box blur of one channel row or column with edge repetition, radius r,
// by a running sum so that the cost does not grow with r.
void boxBlurLine(const int *in, int *out, int n, int r)
{
    const int window = 2 * r + 1;
    int sum = 0;
    for (int i = -r; i <= r; ++i)
        sum += in[qBound(0, i, n - 1)];
    for (int i = 0; i < n; ++i) {
        out[i] = (sum + window / 2) / window;
        sum += in[qMin(i + r + 1, n - 1)] - in[qMax(i - r, 0)];
    }
}
}

void MMPixelFilters::grayscale(QImage &image)
{
    mapPixels(image, [](QRgb c) {
        const int y = luma(c);
        return qRgba(y, y, y, qAlpha(c));
    });
}

void MMPixelFilters::sepia(QImage &image)
{
    mapPixels(image, [](QRgb c) {
        const int r = qRed(c), g = qGreen(c), b = qBlue(c);
        return qRgba(qMin(255, (393 * r + 769 * g + 189 * b + 500) / 1000),
                     qMin(255, (349 * r + 686 * g + 168 * b + 500) / 1000),
                     qMin(255, (272 * r + 534 * g + 131 * b + 500) / 1000), qAlpha(c));
    });
}

void MMPixelFilters::negative(QImage &image)
{
    mapPixels(image, [](QRgb c) { return qRgba(255 - qRed(c), 255 - qGreen(c), 255 - qBlue(c), qAlpha(c)); });
}

int MMPixelFilters::softFocusRadius(const QSize &size)
{
    return qMax(1, (qMin(size.width(), size.height()) + 100) / 200);
}

void MMPixelFilters::softFocus(QImage &image)
{
    const int w = image.width(), h = image.height();
    const int r = softFocusRadius(image.size());
    const int window = 2 * r + 1;
    std::vector<int> in(w), out(w), sums(w);
    std::vector<uchar> plane(size_t(w) * h);
    auto row = [&](int y) { return &plane[size_t(qBound(0, y, h - 1)) * w]; };
    for (int shift = 0; shift <= 16; shift += 8) {
        // Rows first, into a byte plane of this channel.
        for (int y = 0; y < h; ++y) {
            const QRgb *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
            for (int x = 0; x < w; ++x)
                in[x] = (line[x] >> shift) & 0xFF;
            boxBlurLine(in.data(), out.data(), w, r);
            std::copy(out.begin(), out.end(), row(y));
        }
        // Then columns, with one running sum per column so that rows are
        // read in order.
        std::fill(sums.begin(), sums.end(), 0);
        for (int i = -r; i <= r; ++i) {
            const uchar *p = row(i);
            for (int x = 0; x < w; ++x)
                sums[x] += p[x];
        }
        // Row y of the plane is still needed while later rows are summed,
        // so the blurred values go straight into the picture.
        for (int y = 0; y < h; ++y) {
            QRgb *line = reinterpret_cast<QRgb *>(image.scanLine(y));
            for (int x = 0; x < w; ++x) {
                const int blurred = (sums[x] + window / 2) / window;
                const int sharp = (line[x] >> shift) & 0xFF;
                const QRgb v = QRgb((sharp + blurred + 1) / 2);
                line[x] = (line[x] & ~(0xFFu << shift)) | (v << shift);
            }
            const uchar *add = row(y + r + 1);
            const uchar *drop = row(y - r);
            for (int x = 0; x < w; ++x)
                sums[x] += add[x] - drop[x];
        }
    }
}

void MMPixelFilters::sharpen(QImage &image)
{
    const QImage src = image.copy();
    const int w = image.width(), h = image.height();
    for (int y = 0; y < h; ++y) {
        const QRgb *up = reinterpret_cast<const QRgb *>(src.constScanLine(qMax(y - 1, 0)));
        const QRgb *mid = reinterpret_cast<const QRgb *>(src.constScanLine(y));
        const QRgb *down = reinterpret_cast<const QRgb *>(src.constScanLine(qMin(y + 1, h - 1)));
        QRgb *out = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < w; ++x) {
            const QRgb c = mid[x], l = mid[qMax(x - 1, 0)], r = mid[qMin(x + 1, w - 1)];
            auto channel = [&](int (*get)(QRgb)) {
                return clamp255(5 * get(c) - get(l) - get(r) - get(up[x]) - get(down[x]));
            };
            out[x] = qRgba(channel(qRed), channel(qGreen), channel(qBlue), qAlpha(c));
        }
    }
}

void MMPixelFilters::emboss(QImage &image)
{
    const int w = image.width(), h = image.height();
    std::vector<uchar> y0(size_t(w) * h);
    for (int y = 0; y < h; ++y) {
        const QRgb *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < w; ++x)
            y0[size_t(y) * w + x] = luma(line[x]);
    }
    auto at = [&](int x, int y) { return y0[size_t(qBound(0, y, h - 1)) * w + qBound(0, x, w - 1)]; };
    for (int y = 0; y < h; ++y) {
        QRgb *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < w; ++x) {
            const int v = clamp255(128 - at(x - 1, y - 1) - at(x, y - 1) - at(x - 1, y)
                                   + at(x + 1, y) + at(x, y + 1) + at(x + 1, y + 1));
            line[x] = qRgba(v, v, v, qAlpha(line[x]));
        }
    }
}

void MMPixelFilters::adjust(QImage &image, const Adjustment &a)
{
    // One straight line through every channel value (0..1): contrast sets
    // the slope, from flat at -100 to a step at 100, about mid-grey;
    // brightness lifts or lowers it.
    const double slope = qMax(0.0, std::tan(M_PI * (qBound(-100, a.contrast, 100) / 100.0 + 1.0) / 4.0));
    const double brightness = qBound(-100, a.brightness, 100) / 100.0;
    const double intercept = brightness + (1.0 - brightness) / 2.0 * (1.0 - slope);
    float curve[256];
    for (int v = 0; v < 256; ++v)
        curve[v] = float(qBound(0.0, slope * v / 255.0 + intercept, 1.0) * 255.0);
    const float gain = 1.0f + qBound(-100, a.saturation, 100) / 100.0f;
    if (gain == 1.0f) {
        uchar table[256];
        for (int v = 0; v < 256; ++v)
            table[v] = uchar(std::lround(curve[v]));
        mapPixels(image, [&](QRgb c) { return qRgba(table[qRed(c)], table[qGreen(c)], table[qBlue(c)], qAlpha(c)); });
        return;
    }
    mapPixels(image, [&](QRgb c) {
        const float r = curve[qRed(c)], g = curve[qGreen(c)], b = curve[qBlue(c)];
        const float hi = std::max({r, g, b}), lo = std::min({r, g, b});
        const float spread = hi - lo;
        if (spread <= 0.0f)
            return qRgba(int(std::lround(r)), int(std::lround(r)), int(std::lround(r)), qAlpha(c));
        // The distance of each channel from the lightness grows or shrinks
        // with the saturation, at most until a channel reaches 0 or 255.
        const float lightness = (hi + lo) / 2.0f;
        const float k = std::min(gain, (255.0f - std::fabs(hi + lo - 255.0f)) / spread);
        auto channel = [&](float v) { return int(std::lround(qBound(0.0f, lightness + (v - lightness) * k, 255.0f))); };
        return qRgba(channel(r), channel(g), channel(b), qAlpha(c));
    });
}

bool MMPixelFilters::Levels::operator==(const Levels &o) const
{
    return std::equal(low, low + 3, o.low) && std::equal(high, high + 3, o.high);
}

MMPixelFilters::Levels MMPixelFilters::measureLevels(const QImage &picture)
{
    constexpr int kMinSpan = 32; // at most an eightfold stretch
    const bool rgb = picture.format() == QImage::Format_RGB32 || picture.format() == QImage::Format_ARGB32;
    const QImage image = rgb ? picture : picture.convertToFormat(QImage::Format_ARGB32);
    Levels levels;
    std::vector<qint64> histogram(3 * 256, 0);
    for (int y = 0; y < image.height(); ++y) {
        const QRgb *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            ++histogram[qRed(line[x])];
            ++histogram[256 + qGreen(line[x])];
            ++histogram[512 + qBlue(line[x])];
        }
    }
    const qint64 clipped = qint64(image.width()) * image.height() / 200;
    for (int c = 0; c < 3; ++c) {
        const qint64 *h = &histogram[size_t(c) * 256];
        int low = 0, high = 255;
        for (qint64 below = h[0]; low < 255 && below <= clipped; below += h[++low]) {}
        for (qint64 above = h[255]; high > 0 && above <= clipped; above += h[--high]) {}
        if (high - low < kMinSpan) {
            const int centre = (low + high + 1) / 2;
            low = qBound(0, centre - kMinSpan / 2, 255 - kMinSpan);
            high = low + kMinSpan;
        }
        levels.low[c] = low;
        levels.high[c] = high;
    }
    return levels;
}

void MMPixelFilters::applyLevels(QImage &image, const Levels &levels)
{
    uchar table[3][256];
    for (int c = 0; c < 3; ++c) {
        const int low = qBound(0, levels.low[c], 254);
        const int span = qMax(1, qBound(low + 1, levels.high[c], 255) - low);
        for (int v = 0; v < 256; ++v)
            table[c][v] = uchar(qBound(0, ((v - low) * 255 * 2 + span) / (2 * span), 255));
    }
    mapPixels(image, [&](QRgb c) {
        return qRgba(table[0][qRed(c)], table[1][qGreen(c)], table[2][qBlue(c)], qAlpha(c));
    });
}
