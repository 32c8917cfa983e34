#include "MMJpegStripJoiner.h"

namespace {
// Where the parts of one TurboJPEG stream are.
struct Layout
{
    int heightAt = -1; // the frame height's two bytes in SOF
    int sos = -1;      // the SOS marker
    int data = -1;     // entropy-coded data after the SOS segment
    int end = -1;      // the EOI marker
};

Layout layoutOf(const QByteArray &jpeg)
{
    Layout l;
    const auto *b = reinterpret_cast<const unsigned char *>(jpeg.constData());
    const int n = jpeg.size();
    if (n < 4 || b[0] != 0xFF || b[1] != 0xD8 || b[n - 2] != 0xFF || b[n - 1] != 0xD9)
        return Layout();
    int at = 2;
    while (at + 4 <= n && b[at] == 0xFF) {
        const int marker = b[at + 1];
        const int length = (b[at + 2] << 8) | b[at + 3];
        if (marker == 0xC0 || marker == 0xC1)
            l.heightAt = at + 5;
        if (marker == 0xDA) {
            l.sos = at;
            l.data = at + 2 + length;
            l.end = n - 2;
            return l.heightAt > 0 && l.data <= l.end ? l : Layout();
        }
        // Only baseline or extended sequential frames without restarts of
        // their own can be joined.
        if (marker == 0xDD || (marker >= 0xC2 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC))
            return Layout();
        at += 2 + length;
    }
    return Layout();
}

void putShort(QByteArray &bytes, int at, int value)
{
    bytes[at] = char((value >> 8) & 0xFF);
    bytes[at + 1] = char(value & 0xFF);
}
}

QByteArray MMJpegStripJoiner::join(std::vector<QByteArray> &parts, int height, long long interval)
{
    const int count = int(parts.size());
    if (count < 1 || interval < 1 || interval > MaxInterval || height < 1 || height > 65535)
        return QByteArray();
    const Layout first = layoutOf(parts[0]);
    if (first.sos < 0)
        return QByteArray();
    const QByteArray header = parts[0].left(first.sos);
    qsizetype total = parts[0].size() + 6;
    for (int i = 1; i < count; ++i) {
        // Every strip must use the first one's tables, or its data would
        // decode wrongly under them.
        const Layout l = layoutOf(parts[size_t(i)]);
        if (l.sos != first.sos || l.heightAt != first.heightAt)
            return QByteArray();
        QByteArray own = parts[size_t(i)].left(l.sos);
        own[l.heightAt] = header[first.heightAt];
        own[l.heightAt + 1] = header[first.heightAt + 1];
        if (own != header)
            return QByteArray();
        total += l.end - l.data + 2;
    }

    QByteArray out;
    out.reserve(total);
    out.append(header);
    putShort(out, first.heightAt, height);
    const char dri[] = { char(0xFF), char(0xDD), 0, 4, char((interval >> 8) & 0xFF), char(interval & 0xFF) };
    out.append(dri, sizeof dri);
    out.append(parts[0].constData() + first.sos, first.end - first.sos);
    for (int i = 1; i < count; ++i) {
        const Layout l = layoutOf(parts[size_t(i)]);
        const char restart[] = { char(0xFF), char(0xD0 + ((i - 1) & 7)) };
        out.append(restart, 2);
        out.append(parts[size_t(i)].constData() + l.data, l.end - l.data);
        parts[size_t(i)] = QByteArray();
    }
    out.append("\xFF\xD9", 2);
    return out;
}
