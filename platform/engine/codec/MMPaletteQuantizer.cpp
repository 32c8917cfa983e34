#include "MMPaletteQuantizer.h"
#include <QHash>
#include <algorithm>
#include <array>
#include <vector>

namespace {
bool isOpaque(QRgb p)
{
    return qAlpha(p) >= 128;
}

// A histogram cell: 6 bits a channel, with the exact sums of what fell in.
struct Cell
{
    quint32 key;
    quint64 count;
    quint64 sum[3];
    int channel(int c) const { return int(sum[c] / count); }
};

struct Box
{
    int begin;
    int end; // cells [begin, end)
    quint64 weight;
};

QRgb meanOf(const std::vector<Cell> &cells, int begin, int end)
{
    quint64 n = 0, s[3] = {0, 0, 0};
    for (int i = begin; i < end; ++i) {
        n += cells[i].count;
        for (int c = 0; c < 3; ++c)
            s[c] += cells[i].sum[c];
    }
    if (n == 0)
        return qRgb(0, 0, 0);
    return qRgb(int((s[0] + n / 2) / n), int((s[1] + n / 2) / n), int((s[2] + n / 2) / n));
}

int widestChannel(const std::vector<Cell> &cells, const Box &box, int &range)
{
    int lo[3] = {255, 255, 255}, hi[3] = {0, 0, 0};
    for (int i = box.begin; i < box.end; ++i) {
        for (int c = 0; c < 3; ++c) {
            const int v = cells[i].channel(c);
            lo[c] = std::min(lo[c], v);
            hi[c] = std::max(hi[c], v);
        }
    }
    // Green weighs most to the eye, blue least.
    const int w[3] = {3, 4, 2};
    int best = 0;
    range = -1;
    for (int c = 0; c < 3; ++c) {
        const int r = (hi[c] - lo[c]) * w[c];
        if (r > range) {
            range = r;
            best = c;
        }
    }
    return best;
}

std::vector<QRgb> medianCut(std::vector<Cell> &cells, int colours)
{
    std::vector<Box> boxes;
    quint64 total = 0;
    for (const Cell &c : cells)
        total += c.count;
    boxes.push_back({0, int(cells.size()), total});
    while (int(boxes.size()) < colours) {
        // Split the box with the most pixels times spread.
        int pick = -1, pickChannel = 0;
        double pickScore = 0;
        for (int b = 0; b < int(boxes.size()); ++b) {
            if (boxes[b].end - boxes[b].begin < 2)
                continue;
            int range = 0;
            const int channel = widestChannel(cells, boxes[b], range);
            const double score = double(boxes[b].weight) * range;
            if (score > pickScore) {
                pickScore = score;
                pick = b;
                pickChannel = channel;
            }
        }
        if (pick < 0)
            break;
        Box box = boxes[pick];
        std::sort(cells.begin() + box.begin, cells.begin() + box.end,
                  [pickChannel](const Cell &a, const Cell &b) { return a.channel(pickChannel) < b.channel(pickChannel); });
        quint64 half = 0;
        int split = box.begin;
        while (split < box.end - 1 && half + cells[split].count <= box.weight / 2)
            half += cells[split++].count;
        if (split == box.begin)
            half += cells[split++].count;
        boxes[pick] = {box.begin, split, half};
        boxes.push_back({split, box.end, box.weight - half});
    }
    std::vector<QRgb> palette;
    for (const Box &b : boxes)
        palette.push_back(meanOf(cells, b.begin, b.end));
    return palette;
}

int distance(QRgb a, int r, int g, int b)
{
    const int dr = qRed(a) - r, dg = qGreen(a) - g, db = qBlue(a) - b;
    return 3 * dr * dr + 4 * dg * dg + 2 * db * db;
}

int nearest(const std::vector<QRgb> &palette, int r, int g, int b)
{
    int best = 0, bestDistance = INT_MAX;
    for (int i = 0; i < int(palette.size()); ++i) {
        const int d = distance(palette[i], r, g, b);
        if (d < bestDistance) {
            bestDistance = d;
            best = i;
        }
    }
    return best;
}

// Moves each colour to the mean of the cells nearest to it.
void refine(std::vector<QRgb> &palette, const std::vector<Cell> &cells, int passes)
{
    for (int pass = 0; pass < passes; ++pass) {
        std::vector<std::array<quint64, 4>> acc(palette.size(), {0, 0, 0, 0});
        for (const Cell &c : cells) {
            const int i = nearest(palette, c.channel(0), c.channel(1), c.channel(2));
            acc[i][0] += c.count;
            for (int k = 0; k < 3; ++k)
                acc[i][k + 1] += c.sum[k];
        }
        for (size_t i = 0; i < palette.size(); ++i) {
            const quint64 n = acc[i][0];
            if (n)
                palette[i] = qRgb(int((acc[i][1] + n / 2) / n), int((acc[i][2] + n / 2) / n), int((acc[i][3] + n / 2) / n));
        }
    }
}
}

MMPaletteQuantizer::Result MMPaletteQuantizer::quantize(const QImage &source)
{
    Result result;
    if (source.isNull())
        return result;
    const QImage image = source.convertToFormat(QImage::Format_ARGB32);
    const int w = image.width(), h = image.height();
    bool transparent = false;
    QHash<QRgb, int> exact;
    bool fits = true;
    for (int y = 0; y < h; ++y) {
        const QRgb *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < w; ++x) {
            if (!isOpaque(row[x])) {
                transparent = true;
                continue;
            }
            if (fits && !exact.contains(row[x] | 0xFF000000u)) {
                exact.insert(row[x] | 0xFF000000u, exact.size());
                fits = exact.size() <= 256;
            }
        }
    }
    const int room = transparent ? 255 : 256;
    fits = fits && exact.size() <= room;

    result.indexed = QImage(w, h, QImage::Format_Indexed8);
    if (result.indexed.isNull())
        return Result();
    if (fits) {
        // Every colour kept as it was.
        result.colorTable.resize(exact.size());
        for (auto it = exact.cbegin(); it != exact.cend(); ++it)
            result.colorTable[it.value()] = it.key();
        if (transparent) {
            result.transparentIndex = result.colorTable.size();
            result.colorTable.append(qRgba(0, 0, 0, 0));
        }
        for (int y = 0; y < h; ++y) {
            const QRgb *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
            uchar *out = result.indexed.scanLine(y);
            for (int x = 0; x < w; ++x)
                out[x] = uchar(isOpaque(row[x]) ? exact.value(row[x] | 0xFF000000u) : result.transparentIndex);
        }
        result.indexed.setColorTable(result.colorTable);
        return result;
    }

    // Histogram of the opaque pixels, 6 bits a channel.
    std::vector<Cell> table(1 << 18);
    for (int y = 0; y < h; ++y) {
        const QRgb *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < w; ++x) {
            const QRgb p = row[x];
            if (!isOpaque(p))
                continue;
            const quint32 key = (quint32(qRed(p) >> 2) << 12) | (quint32(qGreen(p) >> 2) << 6) | quint32(qBlue(p) >> 2);
            Cell &c = table[key];
            c.key = key;
            ++c.count;
            c.sum[0] += qRed(p);
            c.sum[1] += qGreen(p);
            c.sum[2] += qBlue(p);
        }
    }
    std::vector<Cell> cells;
    for (const Cell &c : table) {
        if (c.count)
            cells.push_back(c);
    }
    table.clear();
    table.shrink_to_fit();
    std::vector<QRgb> palette = medianCut(cells, room);
    refine(palette, cells, 3);

    // Nearest palette entry per 6-bit cell, found once.
    std::vector<qint16> cache(1 << 18, -1);
    auto lookup = [&](int r, int g, int b) {
        const quint32 key = (quint32(r >> 2) << 12) | (quint32(g >> 2) << 6) | quint32(b >> 2);
        qint16 &slot = cache[key];
        if (slot < 0)
            slot = qint16(nearest(palette, (r & ~3) | 2, (g & ~3) | 2, (b & ~3) | 2));
        return int(slot);
    };
    const int transparentIndex = transparent ? int(palette.size()) : -1;
    // Floyd-Steinberg, serpentine, errors in 1/16 units over two rows.
    std::vector<int> errors[2] = {std::vector<int>((w + 2) * 3, 0), std::vector<int>((w + 2) * 3, 0)};
    for (int y = 0; y < h; ++y) {
        std::vector<int> &cur = errors[y & 1];
        std::vector<int> &next = errors[(y + 1) & 1];
        std::fill(next.begin(), next.end(), 0);
        const bool rightward = (y & 1) == 0;
        const int step = rightward ? 1 : -1;
        const QRgb *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        uchar *out = result.indexed.scanLine(y);
        for (int i = 0; i < w; ++i) {
            const int x = rightward ? i : w - 1 - i;
            const QRgb p = row[x];
            if (!isOpaque(p)) {
                out[x] = uchar(transparentIndex);
                continue;
            }
            int want[3] = {qRed(p), qGreen(p), qBlue(p)};
            for (int c = 0; c < 3; ++c)
                want[c] = qBound(0, want[c] + cur[(x + 1) * 3 + c] / 16, 255);
            const int index = lookup(want[0], want[1], want[2]);
            out[x] = uchar(index);
            const QRgb got = palette[index];
            const int err[3] = {want[0] - qRed(got), want[1] - qGreen(got), want[2] - qBlue(got)};
            for (int c = 0; c < 3; ++c) {
                cur[(x + 1 + step) * 3 + c] += err[c] * 7;
                next[(x + 1 - step) * 3 + c] += err[c] * 3;
                next[(x + 1) * 3 + c] += err[c] * 5;
                next[(x + 1 + step) * 3 + c] += err[c];
            }
        }
    }
    for (QRgb c : palette)
        result.colorTable.append(c);
    if (transparent) {
        result.transparentIndex = transparentIndex;
        result.colorTable.append(qRgba(0, 0, 0, 0));
    }
    result.indexed.setColorTable(result.colorTable);
    return result;
}
