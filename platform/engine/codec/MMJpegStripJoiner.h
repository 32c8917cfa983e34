#pragma once
#include <QByteArray>
#include <vector>

// Joins baseline JPEG strips of one picture, encoded apart with the same
// tables, into one stream: a restart interval of one strip makes each
// strip's entropy-coded data start afresh (byte-aligned, DC predictions
// from zero), exactly as an encoder of the whole picture with that interval
// would write it, so the joined stream decodes to what the strips hold.
class MMJpegStripJoiner
{
public:
    // parts: every strip but the last holds `interval` MCUs (whole MCU
    // rows); the first strip's header (markers, tables) is the result's.
    // Empty when a strip is not baseline, or its header differs from the
    // first one's but for the height, or the interval does not fit its
    // 16 bits. The strips after the first are released as they are copied.
    static QByteArray join(std::vector<QByteArray> &parts, int height, long long interval);

    // The restart interval's 16-bit count of MCUs.
    static constexpr long long MaxInterval = 65535;
};
