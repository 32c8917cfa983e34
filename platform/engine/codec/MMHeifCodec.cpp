#include "MMHeifCodec.h"
#include "MMDecodeBudget.h"
#include <exiv2/exiv2.hpp>
#include <libheif/heif.h>
#include <cstring>
#include <memory>

namespace {
struct Context
{
    heif_context *ctx = heif_context_alloc();
    heif_image_handle *primary = nullptr;
    ~Context()
    {
        if (primary)
            heif_image_handle_release(primary);
        heif_context_free(ctx);
    }
    // data must outlive the context: it is read in place.
    bool open(const QByteArray &data)
    {
        if (!ctx || data.isEmpty())
            return false;
        // libheif's own limit, below ours, refuses a bomb before its boxes
        // make it allocate.
        heif_context_set_maximum_image_size_limit(ctx, MMDecodeBudget::MaxSide);
        if (heif_context_read_from_memory_without_copy(ctx, data.constData(), size_t(data.size()), nullptr).code
            != heif_error_Ok)
            return false;
        return heif_context_get_primary_image_handle(ctx, &primary).code == heif_error_Ok;
    }
};

heif_error writeToBytes(heif_context *, const void *data, size_t size, void *userdata)
{
    static_cast<QByteArray *>(userdata)->append(static_cast<const char *>(data), qsizetype(size));
    return heif_error{heif_error_Ok, heif_suberror_Unspecified, "ok"};
}

// The EXIF with its orientation set to upright; the input when it does not
// parse (libheif shows HEIF pixels by the file's boxes, never by EXIF).
QByteArray uprightExif(const QByteArray &tiff)
{
    try {
        Exiv2::ExifData data;
        const Exiv2::ByteOrder order = Exiv2::ExifParser::decode(
            data, reinterpret_cast<const Exiv2::byte *>(tiff.constData()), uint32_t(tiff.size()));
        auto it = data.findKey(Exiv2::ExifKey("Exif.Image.Orientation"));
        if (it == data.end())
            return tiff;
        it->setValue("1");
        Exiv2::Blob blob;
        Exiv2::ExifParser::encode(blob, order == Exiv2::invalidByteOrder ? Exiv2::littleEndian : order, data);
        return blob.empty() ? tiff : QByteArray(reinterpret_cast<const char *>(blob.data()), qsizetype(blob.size()));
    } catch (...) {
        return tiff;
    }
}
}

bool MMHeifCodec::readHeader(const QByteArray &data, Header &header)
{
    header = Header();
    Context c;
    if (!c.open(data))
        return false;
    header.size = QSize(heif_image_handle_get_width(c.primary), heif_image_handle_get_height(c.primary));
    header.alpha = heif_image_handle_has_alpha_channel(c.primary);
    // The coded size too: that is what the decoder allocates.
    const QSize coded(heif_image_handle_get_ispe_width(c.primary), heif_image_handle_get_ispe_height(c.primary));
    return !header.size.isEmpty() && (coded.isEmpty() || MMDecodeBudget::allowsSize(coded));
}

QImage MMHeifCodec::decode(const QByteArray &data)
{
    Context c;
    if (!c.open(data))
        return QImage();
    heif_image *image = nullptr;
    const bool alpha = heif_image_handle_has_alpha_channel(c.primary);
    if (heif_decode_image(c.primary, &image, heif_colorspace_RGB,
                          alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, nullptr)
            .code
        != heif_error_Ok)
        return QImage();
    int stride = 0;
    const uint8_t *plane = heif_image_get_plane_readonly(image, heif_channel_interleaved, &stride);
    const int w = heif_image_get_width(image, heif_channel_interleaved);
    const int h = heif_image_get_height(image, heif_channel_interleaved);
    QImage result;
    if (plane && w > 0 && h > 0) {
        result = QImage(plane, w, h, stride, alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888)
                     .convertToFormat(alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    }
    heif_image_release(image);
    return result;
}

QByteArray MMHeifCodec::exif(const QByteArray &data)
{
    Context c;
    if (!c.open(data))
        return QByteArray();
    heif_item_id id = 0;
    if (heif_image_handle_get_list_of_metadata_block_IDs(c.primary, "Exif", &id, 1) < 1)
        return QByteArray();
    const size_t size = heif_image_handle_get_metadata_size(c.primary, id);
    if (size < 4 || size > size_t(64) * 1024 * 1024)
        return QByteArray();
    QByteArray block(qsizetype(size), Qt::Uninitialized);
    if (heif_image_handle_get_metadata(c.primary, id, block.data()).code != heif_error_Ok)
        return QByteArray();
    // A 4-byte offset to the TIFF header comes first.
    const uchar *p = reinterpret_cast<const uchar *>(block.constData());
    const quint64 offset = (quint64(p[0]) << 24) | (p[1] << 16) | (p[2] << 8) | p[3];
    if (offset + 4 >= size)
        return QByteArray();
    return block.mid(qsizetype(4 + offset));
}

bool MMHeifCodec::canEncode()
{
    return heif_have_encoder_for_format(heif_compression_HEVC);
}

QByteArray MMHeifCodec::encode(const QImage &source, int quality, const QByteArray &exif)
{
    if (source.isNull())
        return QByteArray();
    const bool alpha = source.hasAlphaChannel();
    const QImage pixels = source.convertToFormat(alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    Context c;
    heif_encoder *encoder = nullptr;
    if (!c.ctx || heif_context_get_encoder_for_format(c.ctx, heif_compression_HEVC, &encoder).code != heif_error_Ok)
        return QByteArray();
    heif_encoder_set_lossy_quality(encoder, qBound(1, quality, 100));
    heif_image *image = nullptr;
    QByteArray bytes;
    const heif_chroma chroma = alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
    if (heif_image_create(pixels.width(), pixels.height(), heif_colorspace_RGB, chroma, &image).code == heif_error_Ok
        && heif_image_add_plane(image, heif_channel_interleaved, pixels.width(), pixels.height(), 8).code
            == heif_error_Ok) {
        int stride = 0;
        uint8_t *plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
        const size_t rowBytes = size_t(pixels.width()) * (alpha ? 4 : 3);
        for (int y = 0; plane && y < pixels.height(); ++y)
            std::memcpy(plane + qint64(y) * stride, pixels.constScanLine(y), rowBytes);
        heif_image_handle *handle = nullptr;
        if (plane && heif_context_encode_image(c.ctx, image, encoder, nullptr, &handle).code == heif_error_Ok) {
            if (!exif.isEmpty()) {
                const QByteArray upright = uprightExif(exif);
                heif_context_add_exif_metadata(c.ctx, handle, upright.constData(), int(upright.size()));
            }
            heif_image_handle_release(handle);
            heif_writer writer{1, writeToBytes};
            if (heif_context_write(c.ctx, &writer, &bytes).code != heif_error_Ok)
                bytes.clear();
        }
    }
    if (image)
        heif_image_release(image);
    heif_encoder_release(encoder);
    return bytes;
}
