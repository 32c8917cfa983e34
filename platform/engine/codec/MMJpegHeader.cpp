#include "MMJpegHeader.h"
#include <QFile>
#include <cstring>

namespace {
// Position in the 8x8 block of the k-th coefficient in zigzag order.
const int kNaturalOrder[64] = {
    0, 1, 8, 16, 9, 2, 3, 10, 17, 24, 32, 25, 18, 11, 4, 5,
    12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6, 7, 14, 21, 28,
    35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
    58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63,
};

// The example luminance table of the JPEG standard (Annex K), which IJG
// quality settings scale.
const int kStdLuminance[64] = {
    16, 11, 10, 16, 24, 40, 51, 61, 12, 12, 14, 19, 26, 58, 60, 55,
    14, 13, 16, 24, 40, 57, 69, 56, 14, 17, 22, 29, 51, 87, 80, 62,
    18, 22, 37, 56, 68, 109, 103, 77, 24, 35, 55, 64, 81, 104, 113, 92,
    49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99,
};

bool readBytes(QIODevice &device, char *out, qint64 n)
{
    return device.read(out, n) == n;
}

int be16(const uchar *p) { return (p[0] << 8) | p[1]; }
}

bool MMJpegHeader::read(QIODevice &device)
{
    *this = MMJpegHeader();
    uchar soi[2];
    if (!readBytes(device, reinterpret_cast<char *>(soi), 2) || soi[0] != 0xFF || soi[1] != 0xD8)
        return false;
    bool frameSeen = false;
    for (;;) {
        char c;
        if (!device.getChar(&c) || uchar(c) != 0xFF)
            return false;
        uchar marker = 0xFF;
        while (marker == 0xFF) {
            if (!device.getChar(&c))
                return false;
            marker = uchar(c);
        }
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7))
            continue;
        if (marker == 0xD8 || marker == 0xD9 || marker == 0x00)
            return false;
        uchar len[2];
        if (!readBytes(device, reinterpret_cast<char *>(len), 2) || be16(len) < 2)
            return false;
        const int payloadSize = be16(len) - 2;
        if (marker == 0xDA) {
            // Left unread: the scan's component count, for the decode budget.
            char scanComponents = 0;
            device.peek(&scanComponents, 1);
            m_firstScanComponents = uchar(scanComponents);
            return frameSeen && m_width > 0 && m_height > 0;
        }
        const bool isFrame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        const bool wanted = isFrame || marker == 0xDB || (marker == 0xE1 && !m_orientationSeen);
        if (!wanted) {
            if (device.skip(payloadSize) != payloadSize)
                return false;
            continue;
        }
        const QByteArray payload = device.read(payloadSize);
        if (payload.size() != payloadSize)
            return false;
        if (isFrame) {
            // 8-bit DCT frames, baseline, extended or progressive, Huffman
            // or arithmetic: what libjpeg-turbo decodes. Lossless and
            // hierarchical frames it does not.
            const bool decodable = marker == 0xC0 || marker == 0xC1 || marker == 0xC2 || marker == 0xC9 || marker == 0xCA;
            if (frameSeen || !decodable || !readFrame(payload, marker == 0xC2 || marker == 0xCA))
                return false;
            frameSeen = true;
        } else if (marker == 0xDB) {
            if (!readQuantTables(payload))
                return false;
        } else {
            readExifOrientation(payload);
        }
    }
}

bool MMJpegHeader::readFrame(const QByteArray &payload, bool progressive)
{
    const uchar *p = reinterpret_cast<const uchar *>(payload.constData());
    if (payload.size() < 6 || p[0] != 8)
        return false;
    m_height = be16(p + 1);
    m_width = be16(p + 3);
    m_components = p[5];
    m_progressive = progressive;
    if (m_components < 1 || m_components > 4 || payload.size() < 6 + 3 * m_components)
        return false;
    for (int i = 0; i < m_components; ++i) {
        m_hSampling[i] = p[7 + 3 * i] >> 4;
        m_vSampling[i] = p[7 + 3 * i] & 15;
        m_quantIndex[i] = p[8 + 3 * i] & 3;
        if (m_hSampling[i] < 1 || m_vSampling[i] < 1)
            return false;
    }
    return true;
}

bool MMJpegHeader::readQuantTables(const QByteArray &payload)
{
    const uchar *p = reinterpret_cast<const uchar *>(payload.constData());
    int pos = 0;
    while (pos < payload.size()) {
        const int wide = p[pos] >> 4;
        const int index = p[pos] & 15;
        ++pos;
        if (wide > 1 || index > 3 || pos + 64 * (wide + 1) > payload.size())
            return false;
        for (int k = 0; k < 64; ++k) {
            m_quant[index][kNaturalOrder[k]] = wide ? quint16(be16(p + pos)) : p[pos];
            pos += wide + 1;
        }
        m_quantSeen[index] = true;
        m_quantWide[index] = wide;
    }
    return true;
}

void MMJpegHeader::readExifOrientation(const QByteArray &payload)
{
    if (payload.size() < 14 || std::memcmp(payload.constData(), "Exif\0\0", 6) != 0)
        return;
    m_orientationSeen = true;
    const uchar *t = reinterpret_cast<const uchar *>(payload.constData()) + 6;
    const qint64 n = payload.size() - 6;
    const bool little = t[0] == 'I' && t[1] == 'I';
    if (!little && !(t[0] == 'M' && t[1] == 'M'))
        return;
    auto u16 = [&](qint64 at) { return little ? t[at] | (t[at + 1] << 8) : (t[at] << 8) | t[at + 1]; };
    auto u32 = [&](qint64 at) {
        return little ? quint32(u16(at)) | (quint32(u16(at + 2)) << 16) : (quint32(u16(at)) << 16) | quint32(u16(at + 2));
    };
    if (u16(2) != 42)
        return;
    const qint64 ifd = u32(4);
    if (ifd < 8 || ifd + 2 > n)
        return;
    const int count = u16(ifd);
    // A directory that does not fit its block is damaged; trust none of it.
    if (ifd + 2 + 12 * qint64(count) > n)
        return;
    for (int i = 0; i < count; ++i) {
        const qint64 entry = ifd + 2 + 12 * qint64(i);
        if (u16(entry) != 0x0112)
            continue;
        // SHORT, at least one value, stored in the entry itself.
        if (u16(entry + 2) == 3 && u32(entry + 4) >= 1) {
            const int value = u16(entry + 8);
            if (value >= 1 && value <= 8)
                m_orientation = value;
        }
        return;
    }
}

MMJpegHeader::Subsampling MMJpegHeader::subsampling() const
{
    if (m_components == 1)
        return SubGray;
    if (m_components != 3)
        return Sub444;
    for (int i = 1; i < 3; ++i) {
        if (m_hSampling[i] != 1 || m_vSampling[i] != 1)
            return Sub444;
    }
    const int h = m_hSampling[0], v = m_vSampling[0];
    if (h == 1 && v == 1) return Sub444;
    if (h == 2 && v == 1) return Sub422;
    if (h == 2 && v == 2) return Sub420;
    if (h == 1 && v == 2) return Sub440;
    if (h == 4 && v == 1) return Sub411;
    return Sub444;
}

QSize MMJpegHeader::chromaSampling() const
{
    const int h = m_hSampling[1], v = m_vSampling[1];
    if (m_components != 3 || h != m_hSampling[2] || v != m_vSampling[2] || m_hSampling[0] % h != 0
        || m_vSampling[0] % v != 0)
        return QSize();
    return QSize(m_hSampling[0] / h, m_vSampling[0] / v);
}

QSize MMJpegHeader::chromaSampling(Subsampling subsampling)
{
    switch (subsampling) {
    case Sub444: return QSize(1, 1);
    case Sub422: return QSize(2, 1);
    case Sub420: return QSize(2, 2);
    case Sub440: return QSize(1, 2);
    case Sub411: return QSize(4, 1);
    default: return QSize();
    }
}

int MMJpegHeader::estimatedQuality() const
{
    if (m_components < 1 || !m_quantSeen[m_quantIndex[0]])
        return -1;
    const quint16 *table = m_quant[m_quantIndex[0]];
    const int ceiling = m_quantWide[m_quantIndex[0]] ? 32767 : 255;
    int best = -1;
    qint64 bestError = 0;
    // IJG scaling (jpeg_quality_scaling); from the top so that ties keep
    // the higher quality.
    for (int q = 100; q >= 1; --q) {
        const int scale = q < 50 ? 5000 / q : 200 - 2 * q;
        qint64 error = 0;
        for (int i = 0; i < 64; ++i) {
            const int expected = qBound(1, (kStdLuminance[i] * scale + 50) / 100, ceiling);
            error += qAbs(expected - int(table[i]));
        }
        if (best < 0 || error < bestError) {
            best = q;
            bestError = error;
        }
    }
    return best;
}

bool MMJpegHeader::isComplete(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const qint64 n = file.size();
    if (n < 4)
        return false;
    // The usual case: the end marker is the last thing in the file, maybe
    // followed by zero padding.
    const qint64 tailSize = qMin<qint64>(n, 256);
    file.seek(n - tailSize);
    const QByteArray tail = file.read(tailSize);
    int end = tail.size();
    while (end > 0 && tail[end - 1] == '\0')
        --end;
    if (end >= 2 && uchar(tail[end - 2]) == 0xFF && uchar(tail[end - 1]) == 0xD9)
        return true;

    // Otherwise walk the stream (trailing data after the end marker is
    // allowed, a stream that stops early is not).
    uchar *d = file.map(0, n);
    if (!d)
        return false;
    qint64 pos = 2;
    bool inScan = false;
    bool complete = false;
    while (pos < n) {
        if (inScan) {
            const void *ff = std::memchr(d + pos, 0xFF, size_t(n - pos));
            if (!ff)
                break;
            pos = static_cast<const uchar *>(ff) - d;
            if (pos + 1 >= n)
                break;
            const uchar m = d[pos + 1];
            if (m == 0x00 || (m >= 0xD0 && m <= 0xD7)) {
                pos += 2;
                continue;
            }
            if (m == 0xFF) {
                ++pos;
                continue;
            }
            inScan = false;
        }
        if (d[pos] != 0xFF)
            break;
        while (pos < n && d[pos] == 0xFF)
            ++pos;
        if (pos >= n)
            break;
        const uchar m = d[pos++];
        if (m == 0xD9) {
            complete = true;
            break;
        }
        if (m == 0x01 || (m >= 0xD0 && m <= 0xD8))
            continue;
        if (pos + 2 > n || be16(d + pos) < 2)
            break;
        pos += be16(d + pos);
        if (pos > n)
            break;
        if (m == 0xDA)
            inScan = true;
    }
    file.unmap(d);
    return complete;
}
