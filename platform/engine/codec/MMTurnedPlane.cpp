#include "MMTurnedPlane.h"
#include <QtEndian>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {
// Transposes the 8 x 8 samples at src (rows stride apart; given last row
// first when backwards) into the 8 runs at dst, dst + step, ...: run c is
// column c, from the first row to the last (last to first when backwards).
#ifdef __SSE2__
inline __m128i load8(const unsigned char *p)
{
    return _mm_loadl_epi64(reinterpret_cast<const __m128i *>(p));
}

inline void store8(unsigned char *p, __m128i v)
{
    _mm_storel_epi64(reinterpret_cast<__m128i *>(p), v);
}

// Written out in full: -O2 keeps loops over arrays of vectors in memory.
inline void transpose8(const unsigned char *src, ptrdiff_t stride, bool backwards, unsigned char *dst, ptrdiff_t step)
{
    if (backwards) {
        src += 7 * stride;
        stride = -stride;
    }
    const __m128i a0 = _mm_unpacklo_epi8(load8(src), load8(src + stride));
    const __m128i a1 = _mm_unpacklo_epi8(load8(src + 2 * stride), load8(src + 3 * stride));
    const __m128i a2 = _mm_unpacklo_epi8(load8(src + 4 * stride), load8(src + 5 * stride));
    const __m128i a3 = _mm_unpacklo_epi8(load8(src + 6 * stride), load8(src + 7 * stride));
    const __m128i b0 = _mm_unpacklo_epi16(a0, a1), b1 = _mm_unpackhi_epi16(a0, a1);
    const __m128i b2 = _mm_unpacklo_epi16(a2, a3), b3 = _mm_unpackhi_epi16(a2, a3);
    const __m128i c0 = _mm_unpacklo_epi32(b0, b2), c1 = _mm_unpackhi_epi32(b0, b2);
    const __m128i c2 = _mm_unpacklo_epi32(b1, b3), c3 = _mm_unpackhi_epi32(b1, b3);
    store8(dst, c0);
    store8(dst + step, _mm_unpackhi_epi64(c0, c0));
    store8(dst + 2 * step, c1);
    store8(dst + 3 * step, _mm_unpackhi_epi64(c1, c1));
    store8(dst + 4 * step, c2);
    store8(dst + 5 * step, _mm_unpackhi_epi64(c2, c2));
    store8(dst + 6 * step, c3);
    store8(dst + 7 * step, _mm_unpackhi_epi64(c3, c3));
}
#else
inline void swapBits(quint64 &a, quint64 &b, int shift, quint64 mask)
{
    const quint64 t = ((a >> shift) ^ b) & mask;
    a ^= t << shift;
    b ^= t;
}

// Rows as little-endian words; three rounds swap 4 x 4 blocks, then 2 x 2,
// then single bytes across the diagonal.
inline void transpose8(const unsigned char *src, ptrdiff_t stride, bool backwards, unsigned char *dst, ptrdiff_t step)
{
    quint64 a0, a1, a2, a3, a4, a5, a6, a7;
    quint64 *a[8] = { &a0, &a1, &a2, &a3, &a4, &a5, &a6, &a7 };
    for (int i = 0; i < 8; ++i)
        *a[i] = qFromLittleEndian<quint64>(src + (backwards ? 7 - i : i) * stride);
    const quint64 m4 = 0x00000000FFFFFFFFULL, m2 = 0x0000FFFF0000FFFFULL, m1 = 0x00FF00FF00FF00FFULL;
    swapBits(a0, a4, 32, m4), swapBits(a1, a5, 32, m4), swapBits(a2, a6, 32, m4), swapBits(a3, a7, 32, m4);
    swapBits(a0, a2, 16, m2), swapBits(a1, a3, 16, m2), swapBits(a4, a6, 16, m2), swapBits(a5, a7, 16, m2);
    swapBits(a0, a1, 8, m1), swapBits(a2, a3, 8, m1), swapBits(a4, a5, 8, m1), swapBits(a6, a7, 8, m1);
    for (int i = 0; i < 8; ++i)
        qToLittleEndian(*a[i], dst + i * step);
}
#endif

// Where a step along stored x (or y) goes in the turned plane. Unit steps
// do not depend on the size; a 2x2 plane has both.
QPoint unitStep(const MMOrientation &orientation, const QPoint &step)
{
    const QPoint a = orientation.mapRect(QRect(0, 0, 1, 1), QSize(2, 2)).topLeft();
    return orientation.mapRect(QRect(step, QSize(1, 1)), QSize(2, 2)).topLeft() - a;
}
}

bool MMTurnedPlane::reversesX(const MMOrientation &orientation)
{
    const QPoint d = unitStep(orientation, QPoint(1, 0));
    return d.x() + d.y() < 0;
}

bool MMTurnedPlane::reversesY(const MMOrientation &orientation)
{
    const QPoint d = unitStep(orientation, QPoint(0, 1));
    return d.x() + d.y() < 0;
}

MMTurnedPlane::MMTurnedPlane(unsigned char *turned, ptrdiff_t stride, const QSize &stored,
                             const MMOrientation &orientation)
{
    const QPoint o = orientation.mapRect(QRect(0, 0, 1, 1), stored).topLeft();
    const QPoint dx = unitStep(orientation, QPoint(1, 0)), dy = unitStep(orientation, QPoint(0, 1));
    m_origin = turned + o.y() * stride + o.x();
    m_stepX = dx.x() + dx.y() * stride;
    m_stepY = dy.x() + dy.y() * stride;
}

void MMTurnedPlane::place(const unsigned char *src, ptrdiff_t srcStride, int firstRow, int rows, int width) const
{
    if (m_stepX == 1) {
        for (int r = 0; r < rows; ++r)
            std::memcpy(m_origin + (firstRow + r) * m_stepY, src + r * srcStride, size_t(width));
        return;
    }
    if (m_stepX == -1) {
        // Mirrored rows (half turns, flips): eight samples a word, reversed.
        for (int r = 0; r < rows; ++r) {
            unsigned char *dst = m_origin + (firstRow + r) * m_stepY;
            const unsigned char *s = src + r * srcStride;
            int x = 0;
            for (; x + 8 <= width; x += 8)
                qToLittleEndian(qbswap(qFromLittleEndian<quint64>(s + x)), dst - x - 7);
            for (; x < width; ++x)
                dst[-x] = s[x];
        }
        return;
    }
    // Turned: stored rows become turned columns. Eight by eight samples go
    // through a transpose in registers, each column stored as one run of a
    // turned row (rows taken last first when the turned rows run backwards).
    const bool backwards = m_stepY < 0;
    const int whole = rows / 8 * 8, wide = width / 8 * 8;
    // Columns outer: a turned row's runs from all of the band's blocks are
    // written one after another, while its cache line is at hand.
    for (int x = 0; x < wide; x += 8)
        for (int r = 0; r < whole; r += 8)
            transpose8(src + r * srcStride + x, srcStride, backwards,
                       m_origin + (firstRow + r) * m_stepY - (backwards ? 7 : 0) + x * m_stepX, m_stepX);
    // The ragged right and bottom edges, sample by sample.
    for (int r = 0; r < rows; ++r)
        for (int x = r < whole ? wide : 0; x < width; ++x)
            m_origin[x * m_stepX + (firstRow + r) * m_stepY] = src[r * srcStride + x];
}
