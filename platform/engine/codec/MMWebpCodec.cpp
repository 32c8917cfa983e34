#include "MMWebpCodec.h"
#include <QtEndian>
#include <webp/decode.h>
#include <webp/demux.h>
#include <webp/encode.h>
#include <webp/mux.h>

// QImage's ARGB32 is B, G, R, A in memory on the little-endian machines we
// run on: libwebp's BGRA.
static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "ARGB32 is read as BGRA");

namespace {
struct Demux
{
    WebPDemuxer *demux = nullptr;
    explicit Demux(const QByteArray &data)
    {
        WebPData raw{reinterpret_cast<const uint8_t *>(data.constData()), size_t(data.size())};
        demux = WebPDemux(&raw);
    }
    ~Demux() { WebPDemuxDelete(demux); }
};
}

bool MMWebpCodec::readHeader(const QByteArray &data, Header &header)
{
    header = Header();
    // The RIFF size says where the file ends: one cut short is damaged.
    if (data.size() < 12 || qint64(qFromLittleEndian<quint32>(data.constData() + 4)) + 8 > data.size())
        return false;
    WebPBitstreamFeatures features;
    if (WebPGetFeatures(reinterpret_cast<const uint8_t *>(data.constData()), size_t(data.size()), &features)
        != VP8_STATUS_OK)
        return false;
    header.alpha = features.has_alpha;
    header.canvas = QSize(features.width, features.height);
    header.frames = 1;
    header.lossless = features.format == 2;
    if (features.has_animation) {
        Demux d(data);
        if (!d.demux)
            return false;
        header.canvas = QSize(int(WebPDemuxGetI(d.demux, WEBP_FF_CANVAS_WIDTH)),
                              int(WebPDemuxGetI(d.demux, WEBP_FF_CANVAS_HEIGHT)));
        header.frames = int(WebPDemuxGetI(d.demux, WEBP_FF_FRAME_COUNT));
        header.loopCount = int(WebPDemuxGetI(d.demux, WEBP_FF_LOOP_COUNT));
        WebPIterator it;
        if (WebPDemuxGetFrame(d.demux, 1, &it)) {
            WebPBitstreamFeatures first;
            if (WebPGetFeatures(it.fragment.bytes, it.fragment.size, &first) == VP8_STATUS_OK)
                header.lossless = first.format == 2;
            WebPDemuxReleaseIterator(&it);
        }
    }
    return !header.canvas.isEmpty() && header.frames > 0;
}

QImage MMWebpCodec::decode(const QByteArray &data)
{
    Header header;
    if (!readHeader(data, header))
        return QImage();
    if (header.frames > 1) {
        QImage first;
        MMAnimation info;
        decodeFrames(data, info, [&first](MMAnimationFrame &frame) {
            first = frame.image;
            return false; // the first is all we want
        });
        return first;
    }
    QImage image(header.canvas, QImage::Format_ARGB32);
    if (image.isNull())
        return QImage();
    if (!WebPDecodeBGRAInto(reinterpret_cast<const uint8_t *>(data.constData()), size_t(data.size()), image.bits(),
                            size_t(image.sizeInBytes()), int(image.bytesPerLine())))
        return QImage();
    return header.alpha ? image : image.convertToFormat(QImage::Format_RGB32);
}

bool MMWebpCodec::decodeFrames(const QByteArray &data, MMAnimation &info,
                               const std::function<bool(MMAnimationFrame &)> &sink)
{
    WebPAnimDecoderOptions options;
    if (!WebPAnimDecoderOptionsInit(&options))
        return false;
    options.color_mode = MODE_BGRA;
    options.use_threads = 0;
    WebPData raw{reinterpret_cast<const uint8_t *>(data.constData()), size_t(data.size())};
    WebPAnimDecoder *decoder = WebPAnimDecoderNew(&raw, &options);
    if (!decoder)
        return false;
    WebPAnimInfo anim;
    bool ok = WebPAnimDecoderGetInfo(decoder, &anim);
    if (ok) {
        info.canvas = QSize(int(anim.canvas_width), int(anim.canvas_height));
        info.loopCount = int(anim.loop_count);
        info.frames.clear();
    }
    int previous = 0;
    while (ok && WebPAnimDecoderHasMoreFrames(decoder)) {
        uint8_t *pixels = nullptr;
        int timestamp = 0;
        if (!WebPAnimDecoderGetNext(decoder, &pixels, &timestamp)) {
            ok = false;
            break;
        }
        MMAnimationFrame frame;
        // The decoder owns pixels until the next frame: copy.
        frame.image = QImage(pixels, info.canvas.width(), info.canvas.height(), info.canvas.width() * 4,
                             QImage::Format_ARGB32).copy();
        frame.delayMs = timestamp - previous;
        frame.disposal = MMAnimationFrame::DisposeNone;
        previous = timestamp;
        if (frame.image.isNull() || !sink(frame))
            break;
    }
    WebPAnimDecoderDelete(decoder);
    return ok;
}

QByteArray MMWebpCodec::encode(const QImage &source, bool lossless, int quality)
{
    if (source.isNull())
        return QByteArray();
    const QImage image = source.convertToFormat(QImage::Format_ARGB32);
    uint8_t *out = nullptr;
    const int stride = int(image.bytesPerLine());
    size_t size = lossless
        ? WebPEncodeLosslessBGRA(image.constBits(), image.width(), image.height(), stride, &out)
        : WebPEncodeBGRA(image.constBits(), image.width(), image.height(), stride, float(qBound(1, quality, 100)), &out);
    QByteArray bytes;
    if (size > 0 && out)
        bytes = QByteArray(reinterpret_cast<const char *>(out), qsizetype(size));
    WebPFree(out);
    return bytes;
}

struct MMWebpCodec::Writer::State
{
    WebPAnimEncoder *encoder = nullptr;
    WebPConfig config;
    int timestamp = 0;
    bool ok = false;
};

MMWebpCodec::Writer::Writer(const QSize &canvas, int loopCount, bool lossless, int quality) : d(new State)
{
    WebPAnimEncoderOptions options;
    if (canvas.isEmpty() || !WebPAnimEncoderOptionsInit(&options) || !WebPConfigInit(&d->config))
        return;
    options.anim_params.loop_count = qMax(0, loopCount);
    d->config.lossless = lossless ? 1 : 0;
    d->config.quality = lossless ? 75.f : float(qBound(1, quality, 100));
    d->encoder = WebPAnimEncoderNew(canvas.width(), canvas.height(), &options);
    d->ok = d->encoder && WebPValidateConfig(&d->config);
}

MMWebpCodec::Writer::~Writer()
{
    WebPAnimEncoderDelete(d->encoder);
    delete d;
}

bool MMWebpCodec::Writer::addFrame(const MMAnimationFrame &frame)
{
    if (!d->ok)
        return false;
    const QImage image = frame.image.convertToFormat(QImage::Format_ARGB32);
    WebPPicture picture;
    if (!WebPPictureInit(&picture)) {
        d->ok = false;
        return false;
    }
    picture.use_argb = 1;
    picture.width = image.width();
    picture.height = image.height();
    d->ok = WebPPictureImportBGRA(&picture, image.constBits(), int(image.bytesPerLine()))
        && WebPAnimEncoderAdd(d->encoder, &picture, d->timestamp, &d->config);
    WebPPictureFree(&picture);
    d->timestamp += qMax(frame.delayMs, 0);
    return d->ok;
}

QByteArray MMWebpCodec::Writer::finish()
{
    if (!d->ok || !WebPAnimEncoderAdd(d->encoder, nullptr, d->timestamp, nullptr))
        return QByteArray();
    WebPData out;
    WebPDataInit(&out);
    QByteArray bytes;
    if (WebPAnimEncoderAssemble(d->encoder, &out))
        bytes = QByteArray(reinterpret_cast<const char *>(out.bytes), qsizetype(out.size));
    WebPDataClear(&out);
    return bytes;
}
