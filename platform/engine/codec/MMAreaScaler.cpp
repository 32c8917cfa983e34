#include "MMAreaScaler.h"
#include <algorithm>

MMAreaScaler::MMAreaScaler(const QSize &source, const QSize &target, int channels, int firstOut, int endOut)
    : m_source(source), m_target(target), m_channels(channels), m_firstOut(firstOut), m_endOut(endOut)
{
    // Column positions in units of 1 / target.width() of a source column,
    // so that every overlap is an exact integer.
    const long long sw = source.width(), tw = target.width();
    m_taps = int((sw + tw - 1) / tw) + 1;
    m_first.resize(size_t(tw));
    m_count.resize(size_t(tw));
    m_weights.assign(size_t(tw) * m_taps, 0.0f);
    for (long long x = 0; x < tw; ++x) {
        const long long left = x * sw, right = left + sw;
        const int first = int(left / tw);
        int n = 0;
        for (long long c = first; c * tw < right && c < sw; ++c, ++n) {
            const long long overlap = std::min(right, (c + 1) * tw) - std::max(left, c * tw);
            m_weights[size_t(x * m_taps + n)] = float(double(overlap) / sw);
        }
        m_first[size_t(x)] = first;
        m_count[size_t(x)] = n;
    }
    m_shrunk.assign(size_t(tw) * channels, 0.0f);
    m_sum.assign(size_t(tw) * channels, 0.0f);
}

void MMAreaScaler::sourceRows(int sourceHeight, int targetHeight, int firstOut, int endOut, int *first, int *end)
{
    *first = int((long long)firstOut * sourceHeight / targetHeight);
    *end = int(((long long)endOut * sourceHeight + targetHeight - 1) / targetHeight);
}

void MMAreaScaler::shrinkRow(const unsigned char *row)
{
    const int channels = m_channels;
    for (int x = 0; x < m_target.width(); ++x) {
        const float *w = &m_weights[size_t(x) * m_taps];
        const unsigned char *s = row + size_t(m_first[size_t(x)]) * channels;
        float *d = &m_shrunk[size_t(x) * channels];
        for (int c = 0; c < channels; ++c)
            d[c] = 0.0f;
        for (int t = 0; t < m_count[size_t(x)]; ++t, s += channels) {
            for (int c = 0; c < channels; ++c)
                d[c] += w[t] * s[c];
        }
    }
}

void MMAreaScaler::addRow(float weight)
{
    const size_t n = m_sum.size();
    for (size_t i = 0; i < n; ++i)
        m_sum[i] += weight * m_shrunk[i];
}

void MMAreaScaler::finishRow(unsigned char *out)
{
    const size_t n = m_sum.size();
    for (size_t i = 0; i < n; ++i) {
        const float v = m_sum[i] + 0.5f;
        out[i] = static_cast<unsigned char>(v >= 255.0f ? 255 : v <= 0.0f ? 0 : int(v));
        m_sum[i] = 0.0f;
    }
}
