#pragma once
#include <QSize>
#include <vector>

// Shrinks a picture that arrives a row at a time with a separable Lanczos-3
// filter (a windowed sinc three lobes wide, stretched by the shrink factor),
// which keeps the detail an area average blurs away. Each row is filtered
// across as it comes and kept in a small ring; an output row is filtered
// down the ring once the last source row its window needs has come. Where a
// window runs off the picture it is cut and its weights scaled back to a sum
// of one. Only output rows [firstOut, endOut) are produced, so that several
// scalers can share one picture; every output row is computed the same way
// whichever scaler makes it.
class MMLanczosScaler
{
public:
    // source must be at least target both ways; channels (1, 3 or 4) bytes
    // a pixel.
    MMLanczosScaler(const QSize &source, const QSize &target, int channels, int firstOut, int endOut);

    // The source rows [first, end) that output rows [firstOut, endOut) need.
    static void sourceRows(int sourceHeight, int targetHeight, int firstOut, int endOut, int *first, int *end);

    // Adds source row y (rows come in order, starting at sourceRows' first).
    // When an output row is complete it is written to the buffer given by
    // out(row) as target.width() pixels of channels bytes.
    template <class Out> void push(int y, const unsigned char *row, Out out)
    {
        filterAcross(y, row);
        while (m_next < m_endOut && m_down.first[size_t(m_next)] + m_down.count[size_t(m_next)] <= y + 1) {
            filterDown(m_next, out(m_next));
            ++m_next;
        }
    }

    // The filter for shrinking n samples to m: for output sample j, the
    // source samples [first[j], first[j] + count[j]) weighted by
    // weights[j * taps + k]; count is at most taps and the weights past
    // count are zero. Padded, every window is taps long (zero weights added
    // on its inner side where it is cut), so that loops over it have a
    // fixed length.
    struct Bank
    {
        int taps = 0;
        std::vector<int> first;
        std::vector<int> count;
        std::vector<float> weights;
    };
    static Bank bank(int n, int m, bool padded);

private:
    void filterAcross(int y, const unsigned char *row);
    void filterDown(int j, unsigned char *out);

    QSize m_source;
    QSize m_target;
    int m_channels;
    int m_endOut;
    int m_next;
    Bank m_across;
    Bank m_down;
    // The source row as floats, with room for a fourth channel read past
    // the last pixel of a three-byte row.
    std::vector<float> m_row;
    // Rows filtered across, source row y at slot y % m_down.taps.
    std::vector<float> m_ring;
};
