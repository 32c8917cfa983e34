#pragma once
#include <QSize>
#include <vector>

// Shrinks a picture that arrives a row at a time: every output pixel is the
// mean of the source area it covers (fractional edges weighted by how much of
// them is covered), so nothing but one accumulator row is held. Only output
// rows [firstOut, endOut) are produced, so that several scalers can share one
// picture, each with its own run of source rows.
class MMAreaScaler
{
public:
    // source must be at least target both ways; channels bytes a pixel.
    MMAreaScaler(const QSize &source, const QSize &target, int channels, int firstOut, int endOut);

    // The source rows [first, end) that output rows [firstOut, endOut) need.
    static void sourceRows(int sourceHeight, int targetHeight, int firstOut, int endOut, int *first, int *end);

    // Adds source row y (rows come in order, starting at sourceRows' first).
    // When an output row is complete it is written to the buffer given by
    // out(row) as target.width() pixels of channels bytes.
    template <class Out> void push(int y, const unsigned char *row, Out out)
    {
        shrinkRow(row);
        const long long top = (long long)y * m_target.height(), bottom = top + m_target.height();
        for (int j = int(top / m_source.height()); j < m_endOut && (long long)j * m_source.height() < bottom; ++j) {
            if (j < m_firstOut)
                continue;
            const long long from = qMax(top, (long long)j * m_source.height());
            const long long to = qMin(bottom, (long long)(j + 1) * m_source.height());
            addRow(float(double(to - from) / m_source.height()));
            if ((long long)(j + 1) * m_source.height() <= bottom)
                finishRow(out(j));
        }
    }

private:
    void shrinkRow(const unsigned char *row);
    void addRow(float weight);
    void finishRow(unsigned char *out);

    QSize m_source;
    QSize m_target;
    int m_channels;
    int m_firstOut;
    int m_endOut;
    // Per output column: first source column and how many follow; the
    // weights of each output column start at column * m_taps.
    std::vector<int> m_first;
    std::vector<int> m_count;
    std::vector<float> m_weights;
    int m_taps = 1;
    std::vector<float> m_shrunk;
    std::vector<float> m_sum;
};
