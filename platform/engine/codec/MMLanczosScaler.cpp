#include "MMLanczosScaler.h"
#include <algorithm>
#include <cmath>

namespace {
const int kLobes = 3;
// Floats a row is filtered down in at a time: small enough that the sums
// stay in the first-level cache while every row of the window is added.
const int kChunk = 512;

long long floorDiv(long long a, long long b)
{
    return a / b - (a % b != 0 && (a < 0) != (b < 0));
}

// The source samples [first, end) whose distance from output sample j's
// centre is under the filter's reach (kLobes source spans of the shrink
// factor n / m), cut at the picture's edges. In halves of 1 / m of a source
// sample every bound is an integer, so that each part of a split picture
// finds the same windows.
void window(int n, int m, int j, int *first, int *end)
{
    if (n == m) {
        *first = j;
        *end = j + 1;
        return;
    }
    const long long low = (2LL * j + 1 - 2 * kLobes) * n - m, high = (2LL * j + 1 + 2 * kLobes) * n - m;
    *first = int(std::max(floorDiv(low, 2LL * m) + 1, 0LL));
    *end = int(std::min(-floorDiv(-high, 2LL * m), (long long)n));
}

double lanczos(double x)
{
    if (x == 0.0)
        return 1.0;
    if (std::fabs(x) >= kLobes)
        return 0.0;
    const double px = M_PI * x;
    return kLobes * std::sin(px) * std::sin(px / kLobes) / (px * px);
}

// One filtered row across: for every output pixel a fixed number of taps
// over the source row's pixels. Four lanes for three channels too (the
// fourth reads the next pixel and is dropped), so that each tap is one
// vector multiply-add.
template <int C> void across(const float *src, const MMLanczosScaler::Bank &bank, float *dst, int width)
{
    constexpr int L = C == 1 ? 1 : 4;
    const int taps = bank.taps;
    for (int x = 0; x < width; ++x) {
        const float *s = src + size_t(bank.first[size_t(x)]) * C;
        const float *w = bank.weights.data() + size_t(x) * size_t(taps);
        float a[L] = {};
        for (int t = 0; t < taps; ++t, s += C) {
            for (int c = 0; c < L; ++c)
                a[c] += w[t] * s[c];
        }
        for (int c = 0; c < C; ++c)
            dst[size_t(x) * C + c] = a[c];
    }
}
}

MMLanczosScaler::Bank MMLanczosScaler::bank(int n, int m, bool padded)
{
    Bank b;
    b.first.resize(size_t(m));
    b.count.resize(size_t(m));
    for (int j = 0; j < m; ++j) {
        int first = 0, end = 0;
        window(n, m, j, &first, &end);
        b.first[size_t(j)] = first;
        b.count[size_t(j)] = end - first;
        b.taps = std::max(b.taps, end - first);
    }
    b.weights.assign(size_t(m) * size_t(b.taps), 0.0f);
    const double factor = double(n) / m;
    std::vector<double> w(size_t(b.taps));
    for (int j = 0; j < m; ++j) {
        const int first = b.first[size_t(j)], count = b.count[size_t(j)];
        const double centre = (j + 0.5) * factor - 0.5;
        double sum = 0.0;
        for (int k = 0; k < count; ++k) {
            w[size_t(k)] = lanczos((first + k - centre) / factor);
            sum += w[size_t(k)];
        }
        int start = first;
        if (padded) {
            start = std::min(first, n - b.taps);
            b.first[size_t(j)] = start;
            b.count[size_t(j)] = b.taps;
        }
        float *out = &b.weights[size_t(j) * size_t(b.taps) + size_t(first - start)];
        for (int k = 0; k < count; ++k)
            out[k] = float(w[size_t(k)] / sum);
    }
    return b;
}

MMLanczosScaler::MMLanczosScaler(const QSize &source, const QSize &target, int channels, int firstOut, int endOut)
    : m_source(source), m_target(target), m_channels(channels), m_endOut(endOut), m_next(firstOut),
      m_across(bank(source.width(), target.width(), true)), m_down(bank(source.height(), target.height(), false))
{
    m_row.assign(size_t(source.width()) * size_t(channels) + 1, 0.0f);
    m_ring.assign(size_t(m_down.taps) * size_t(target.width()) * size_t(channels), 0.0f);
}

void MMLanczosScaler::sourceRows(int sourceHeight, int targetHeight, int firstOut, int endOut, int *first, int *end)
{
    int unused = 0;
    window(sourceHeight, targetHeight, firstOut, first, &unused);
    window(sourceHeight, targetHeight, endOut - 1, &unused, end);
}

void MMLanczosScaler::filterAcross(int y, const unsigned char *row)
{
    const size_t n = size_t(m_source.width()) * size_t(m_channels);
    float *f = m_row.data();
    for (size_t i = 0; i < n; ++i)
        f[i] = row[i];
    const size_t length = size_t(m_target.width()) * size_t(m_channels);
    float *dst = m_ring.data() + size_t(y % m_down.taps) * length;
    switch (m_channels) {
    case 1: across<1>(f, m_across, dst, m_target.width()); break;
    case 3: across<3>(f, m_across, dst, m_target.width()); break;
    default: across<4>(f, m_across, dst, m_target.width()); break;
    }
}

void MMLanczosScaler::filterDown(int j, unsigned char *out)
{
    const int length = m_target.width() * m_channels;
    const int first = m_down.first[size_t(j)], count = m_down.count[size_t(j)];
    const float *w = m_down.weights.data() + size_t(j) * size_t(m_down.taps);
    auto ringRow = [&](int t) { return m_ring.data() + size_t((first + t) % m_down.taps) * size_t(length); };
    float sum[kChunk];
    for (int from = 0; from < length; from += kChunk) {
        const int n = std::min(kChunk, length - from);
        const float *r = ringRow(0) + from;
        for (int i = 0; i < n; ++i)
            sum[i] = w[0] * r[i];
        for (int t = 1; t < count; ++t) {
            r = ringRow(t) + from;
            const float weight = w[t];
            for (int i = 0; i < n; ++i)
                sum[i] += weight * r[i];
        }
        unsigned char *o = out + from;
        for (int i = 0; i < n; ++i)
            o[i] = static_cast<unsigned char>(int(std::min(std::max(sum[i] + 0.5f, 0.0f), 255.0f)));
    }
}
