#include "MMGifCodec.h"
#include "MMPaletteQuantizer.h"
#include <gif_lib.h>
#include <cstring>

namespace {
quint16 le16(const uchar *p)
{
    return quint16(p[0] | (p[1] << 8));
}

struct ReadCursor
{
    const QByteArray *data;
    qint64 pos;
};

int readFromMemory(GifFileType *gif, GifByteType *out, int length)
{
    auto *cursor = static_cast<ReadCursor *>(gif->UserData);
    const qint64 n = qMin<qint64>(length, cursor->data->size() - cursor->pos);
    if (n <= 0)
        return 0;
    std::memcpy(out, cursor->data->constData() + cursor->pos, size_t(n));
    cursor->pos += n;
    return int(n);
}

int writeToMemory(GifFileType *gif, const GifByteType *in, int length)
{
    static_cast<QByteArray *>(gif->UserData)->append(reinterpret_cast<const char *>(in), length);
    return length;
}

// Skips a chain of data sub-blocks starting at pos; false when cut short.
bool skipSubBlocks(const QByteArray &data, qint64 &pos)
{
    while (pos < data.size()) {
        const int length = uchar(data[pos]);
        pos += 1 + length;
        if (length == 0)
            return pos <= data.size();
    }
    return false;
}

// The application extension that makes a GIF loop; its count is
// little-endian, 0 for ever.
const char kNetscape[] = "NETSCAPE2.0";
}

bool MMGifCodec::readHeader(const QByteArray &data, Header &header)
{
    header = Header();
    if (data.size() < 13 || !(data.startsWith("GIF87a") || data.startsWith("GIF89a")))
        return false;
    const uchar *d = reinterpret_cast<const uchar *>(data.constData());
    header.canvas = QSize(le16(d + 6), le16(d + 8));
    if (header.canvas.isEmpty())
        return false;
    qint64 pos = 13;
    if (d[10] & 0x80)
        pos += 3LL << ((d[10] & 7) + 1);
    // A file cut inside a block is damaged; one that ends between blocks
    // without its trailer byte is what many encoders write.
    while (pos < data.size()) {
        const uchar block = d[pos];
        if (block == 0x3B)
            break;
        if (block == 0x21) {
            pos += 2;
            if (!skipSubBlocks(data, pos))
                return false;
        } else if (block == 0x2C) {
            if (pos + 10 > data.size())
                return false;
            const QRect rect(le16(d + pos + 1), le16(d + pos + 3), le16(d + pos + 5), le16(d + pos + 7));
            const uchar flags = d[pos + 9];
            pos += 10;
            if (flags & 0x80)
                pos += 3LL << ((flags & 7) + 1);
            pos += 1; // LZW code size
            if (pos > data.size() || !skipSubBlocks(data, pos))
                return false;
            if (rect.isEmpty() || !QRect(QPoint(0, 0), header.canvas).contains(rect))
                return false;
            ++header.frames;
            header.framePixels += qint64(rect.width()) * rect.height();
        } else {
            break; // not a block GIF knows: what came before stands
        }
    }
    return header.frames > 0;
}

bool MMGifCodec::decode(const QByteArray &data, MMAnimation &info, const std::function<bool(MMAnimationFrame &)> &sink)
{
    ReadCursor cursor{&data, 0};
    int error = 0;
    GifFileType *gif = DGifOpen(&cursor, readFromMemory, &error);
    if (!gif)
        return false;
    const bool slurped = DGifSlurp(gif) == GIF_OK;
    bool ok = slurped && gif->ImageCount > 0;
    if (ok) {
        info.canvas = QSize(gif->SWidth, gif->SHeight);
        info.loopCount = -1;
        info.frames.clear();
    }
    for (int i = 0; ok && i < gif->ImageCount; ++i) {
        const SavedImage &saved = gif->SavedImages[i];
        for (int e = 0; e + 1 < saved.ExtensionBlockCount; ++e) {
            const ExtensionBlock &app = saved.ExtensionBlocks[e];
            const ExtensionBlock &sub = saved.ExtensionBlocks[e + 1];
            if (app.Function == APPLICATION_EXT_FUNC_CODE && app.ByteCount == 11
                && std::memcmp(app.Bytes, kNetscape, 11) == 0 && sub.ByteCount >= 3 && sub.Bytes[0] == 1)
                info.loopCount = sub.Bytes[1] | (sub.Bytes[2] << 8);
        }
        const GifImageDesc &desc = saved.ImageDesc;
        const ColorMapObject *map = desc.ColorMap ? desc.ColorMap : gif->SColorMap;
        GraphicsControlBlock gcb;
        gcb.DisposalMode = DISPOSAL_UNSPECIFIED;
        gcb.DelayTime = 0;
        gcb.TransparentColor = NO_TRANSPARENT_COLOR;
        DGifSavedExtensionToGCB(gif, i, &gcb);
        const QRect rect(desc.Left, desc.Top, desc.Width, desc.Height);
        if (rect.isEmpty() || !QRect(QPoint(0, 0), info.canvas).contains(rect) || !saved.RasterBits) {
            ok = false;
            break;
        }
        MMAnimationFrame frame;
        frame.offset = rect.topLeft();
        frame.delayMs = gcb.DelayTime * 10;
        frame.disposal = MMAnimationFrame::Disposal(qBound(0, gcb.DisposalMode, 3));
        frame.image = QImage(rect.size(), QImage::Format_ARGB32);
        if (frame.image.isNull()) {
            ok = false;
            break;
        }
        QRgb colours[256];
        for (int c = 0; c < 256; ++c) {
            // An index past the map shows black, as browsers do.
            colours[c] = map && c < map->ColorCount
                ? qRgb(map->Colors[c].Red, map->Colors[c].Green, map->Colors[c].Blue) : qRgb(0, 0, 0);
        }
        if (gcb.TransparentColor >= 0 && gcb.TransparentColor < 256)
            colours[gcb.TransparentColor] = qRgba(0, 0, 0, 0);
        const GifByteType *raster = saved.RasterBits;
        for (int y = 0; y < rect.height(); ++y) {
            QRgb *row = reinterpret_cast<QRgb *>(frame.image.scanLine(y));
            const GifByteType *in = raster + qint64(y) * rect.width();
            for (int x = 0; x < rect.width(); ++x)
                row[x] = colours[in[x]];
        }
        ok = sink(frame);
    }
    DGifCloseFile(gif, &error);
    return ok;
}

struct MMGifCodec::Writer::State
{
    QByteArray bytes;
    GifFileType *gif = nullptr;
    bool ok = false;
};

MMGifCodec::Writer::Writer(const QSize &canvas, int loopCount) : d(new State)
{
    int error = 0;
    d->gif = EGifOpen(&d->bytes, writeToMemory, &error);
    if (!d->gif || canvas.isEmpty() || canvas.width() > 65535 || canvas.height() > 65535)
        return;
    EGifSetGifVersion(d->gif, true);
    if (EGifPutScreenDesc(d->gif, canvas.width(), canvas.height(), 8, 0, nullptr) != GIF_OK)
        return;
    d->ok = true;
    if (loopCount >= 0) {
        const GifByteType count[3] = {1, GifByteType(loopCount & 0xFF), GifByteType((loopCount >> 8) & 0xFF)};
        d->ok = EGifPutExtensionLeader(d->gif, APPLICATION_EXT_FUNC_CODE) == GIF_OK
            && EGifPutExtensionBlock(d->gif, 11, kNetscape) == GIF_OK
            && EGifPutExtensionBlock(d->gif, 3, count) == GIF_OK && EGifPutExtensionTrailer(d->gif) == GIF_OK;
    }
}

MMGifCodec::Writer::~Writer()
{
    if (d->gif) {
        int error = 0;
        EGifCloseFile(d->gif, &error);
    }
    delete d;
}

bool MMGifCodec::Writer::addFrame(const MMAnimationFrame &frame)
{
    if (!d->ok)
        return false;
    const MMPaletteQuantizer::Result q = MMPaletteQuantizer::quantize(frame.image);
    if (q.indexed.isNull() || q.colorTable.isEmpty()) {
        d->ok = false;
        return false;
    }
    // A colour map's size is a power of two, at least 2.
    int size = 2;
    while (size < q.colorTable.size())
        size *= 2;
    GifColorType colours[256];
    std::memset(colours, 0, sizeof colours);
    for (int c = 0; c < q.colorTable.size(); ++c)
        colours[c] = {GifByteType(qRed(q.colorTable[c])), GifByteType(qGreen(q.colorTable[c])),
                      GifByteType(qBlue(q.colorTable[c]))};
    ColorMapObject *map = GifMakeMapObject(size, colours);
    if (!map) {
        d->ok = false;
        return false;
    }
    GraphicsControlBlock gcb;
    gcb.DisposalMode = int(frame.disposal);
    gcb.UserInputFlag = false;
    gcb.DelayTime = (frame.delayMs + 5) / 10;
    gcb.TransparentColor = q.transparentIndex;
    GifByteType extension[4];
    const size_t length = EGifGCBToExtension(&gcb, extension);
    const QRect rect = frame.rect();
    bool ok = EGifPutExtension(d->gif, GRAPHICS_EXT_FUNC_CODE, int(length), extension) == GIF_OK
        && EGifPutImageDesc(d->gif, rect.x(), rect.y(), rect.width(), rect.height(), false, map) == GIF_OK;
    for (int y = 0; ok && y < rect.height(); ++y)
        ok = EGifPutLine(d->gif, const_cast<GifPixelType *>(q.indexed.constScanLine(y)), rect.width()) == GIF_OK;
    GifFreeMapObject(map);
    d->ok = ok;
    return ok;
}

QByteArray MMGifCodec::Writer::finish()
{
    if (!d->gif)
        return QByteArray();
    int error = 0;
    const bool closed = EGifCloseFile(d->gif, &error) == GIF_OK;
    d->gif = nullptr;
    if (!d->ok || !closed)
        return QByteArray();
    return d->bytes;
}

QByteArray MMGifCodec::encode(const QImage &image)
{
    if (image.isNull())
        return QByteArray();
    Writer writer(image.size(), -1);
    MMAnimationFrame frame;
    frame.image = image.convertToFormat(QImage::Format_ARGB32);
    writer.addFrame(frame);
    return writer.finish();
}
