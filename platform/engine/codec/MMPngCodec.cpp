#include "MMPngCodec.h"
#include "MMDecodeBudget.h"
#include "MMPaletteQuantizer.h"
#include <png.h>
#include <csetjmp>
#include <cstring>
#include <vector>

namespace {
struct Reader
{
    const QByteArray *data;
    size_t pos = 0;
};

void readBytes(png_structp png, png_bytep out, png_size_t length)
{
    auto *r = static_cast<Reader *>(png_get_io_ptr(png));
    if (r->pos + length > size_t(r->data->size()))
        png_error(png, "cut short");
    std::memcpy(out, r->data->constData() + r->pos, length);
    r->pos += length;
}

void writeBytes(png_structp png, png_bytep in, png_size_t length)
{
    static_cast<QByteArray *>(png_get_io_ptr(png))->append(reinterpret_cast<const char *>(in), qsizetype(length));
}

void flushNothing(png_structp) {}

// libpng reports errors by longjmp; neither they nor warnings are printed.
void quietWarning(png_structp, png_const_charp) {}
[[noreturn]] void quietError(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

// Text chunks may come before the picture data or after it: called after
// each, it takes what the first call has not.
void collectTexts(png_structp png, png_infop info, MMPngCodec::Chunks &c)
{
    png_textp text = nullptr;
    int count = 0;
    png_get_text(png, info, &text, &count);
    for (int i = int(c.texts.size()); i < count; ++i) {
        const size_t length = text[i].compression >= PNG_ITXT_COMPRESSION_NONE ? text[i].itxt_length : text[i].text_length;
        c.texts.append({QByteArray(text[i].key), QByteArray(text[i].text, int(length))});
    }
}

void collect(png_structp png, png_infop info, MMPngCodec::Chunks &c)
{
    c.colorType = png_get_color_type(png, info);
    c.bitDepth = png_get_bit_depth(png, info);
    c.hasGamma = png_get_gAMA(png, info, &c.gamma) != 0;
    c.hasChrm = png_get_cHRM(png, info, &c.chrm[0], &c.chrm[1], &c.chrm[2], &c.chrm[3], &c.chrm[4], &c.chrm[5],
                             &c.chrm[6], &c.chrm[7]) != 0;
    int intent = 0;
    c.srgbIntent = png_get_sRGB(png, info, &intent) ? intent : -1;
    png_charp name = nullptr;
    int compression = 0;
    png_bytep profile = nullptr;
    png_uint_32 length = 0;
    if (png_get_iCCP(png, info, &name, &compression, &profile, &length)) {
        c.iccName = name;
        c.icc = QByteArray(reinterpret_cast<const char *>(profile), int(length));
    }
    collectTexts(png, info, c);
    int unit = 0;
    c.hasPhys = png_get_pHYs(png, info, &c.physX, &c.physY, &unit) != 0;
    c.physUnit = unit;
}
}

bool MMPngCodec::readChunks(const QByteArray &data, Chunks &chunks)
{
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, quietError, quietWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        return false;
    }
    Reader reader{&data};
    bool ok = false;
    if (!setjmp(png_jmpbuf(png))) {
        png_set_read_fn(png, &reader, readBytes);
        png_set_benign_errors(png, 1);
        png_read_info(png, info);
        chunks = Chunks();
        collect(png, info, chunks);
        ok = true;
    }
    png_destroy_read_struct(&png, &info, nullptr);
    return ok;
}

QImage MMPngCodec::decode(const QByteArray &data, Chunks *chunks)
{
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, quietError, quietWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        return QImage();
    }
    Reader reader{&data};
    QImage image;
    std::vector<png_bytep> rows;
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_read_struct(&png, &info, nullptr);
        return QImage();
    }
    png_set_read_fn(png, &reader, readBytes);
    png_set_benign_errors(png, 1);
    png_read_info(png, info);
    const png_uint_32 w = png_get_image_width(png, info), h = png_get_image_height(png, info);
    if (!MMDecodeBudget::allowsSize(QSize(int(qMin<png_uint_32>(w, 65536)), int(qMin<png_uint_32>(h, 65536)))))
        png_error(png, "over budget");
    Chunks c;
    collect(png, info, c);
    const int type = c.colorType, depth = c.bitDepth;
    const bool trns = png_get_valid(png, info, PNG_INFO_tRNS);
    QImage::Format format;
    if (type == PNG_COLOR_TYPE_PALETTE) {
        format = QImage::Format_Indexed8;
        png_set_packing(png);
    } else if (type == PNG_COLOR_TYPE_GRAY && !trns) {
        format = depth == 16 ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8;
        if (depth < 8)
            png_set_expand_gray_1_2_4_to_8(png);
        if (depth == 16)
            png_set_swap(png); // host order for QImage
    } else if (depth == 16) {
        format = QImage::Format_RGBA64;
        png_set_gray_to_rgb(png);
        png_set_tRNS_to_alpha(png);
        png_set_filler(png, 0xFFFF, PNG_FILLER_AFTER);
        png_set_swap(png);
    } else if (type == PNG_COLOR_TYPE_RGB && !trns) {
        format = QImage::Format_RGB888;
    } else {
        format = QImage::Format_ARGB32;
        png_set_expand(png);
        png_set_gray_to_rgb(png);
        png_set_filler(png, 0xFF, PNG_FILLER_AFTER);
        png_set_bgr(png); // ARGB32 is B, G, R, A in memory
    }
    const int passes = png_set_interlace_handling(png);
    Q_UNUSED(passes);
    png_read_update_info(png, info);
    image = QImage(int(w), int(h), format);
    if (image.isNull())
        png_error(png, "no memory");
    if (format == QImage::Format_Indexed8) {
        png_colorp palette = nullptr;
        int count = 0;
        png_get_PLTE(png, info, &palette, &count);
        png_bytep alpha = nullptr;
        int alphas = 0;
        png_color_16p unused = nullptr;
        if (trns)
            png_get_tRNS(png, info, &alpha, &alphas, &unused);
        QVector<QRgb> table(256, qRgb(0, 0, 0));
        for (int i = 0; i < count; ++i)
            table[i] = qRgba(palette[i].red, palette[i].green, palette[i].blue, i < alphas ? alpha[i] : 255);
        table.resize(qMax(count, 1));
        image.setColorTable(table);
        // An index past the palette shows as its first colour, not garbage.
        image.fill(0);
    }
    rows.resize(h);
    for (png_uint_32 y = 0; y < h; ++y)
        rows[y] = image.scanLine(int(y));
    png_read_image(png, rows.data());
    png_read_end(png, info);
    collectTexts(png, info, c);
    png_destroy_read_struct(&png, &info, nullptr);
    if (format == QImage::Format_Indexed8) {
        // Indices past the palette: shown as its first colour.
        const int colours = int(image.colorTable().size());
        for (int y = 0; y < image.height(); ++y) {
            uchar *row = image.scanLine(y);
            for (int x = 0; x < image.width(); ++x)
                if (row[x] >= colours)
                    row[x] = 0;
        }
    }
    if (chunks)
        *chunks = c;
    return image;
}

namespace {
// One row of image in the layout of colorType at depth (8 or 16).
void packRow(const QImage &image, int y, int colorType, int depth, std::vector<uchar> &out)
{
    const int w = image.width();
    const bool wide = depth == 16;
    auto put = [&out, wide](size_t &i, quint16 v16) {
        if (wide) {
            out[i++] = uchar(v16 >> 8);
            out[i++] = uchar(v16 & 0xFF);
        } else {
            out[i++] = uchar(v16 >> 8);
        }
    };
    size_t i = 0;
    if (image.format() == QImage::Format_Grayscale16 || image.format() == QImage::Format_Grayscale8) {
        for (int x = 0; x < w; ++x) {
            const quint16 g = image.format() == QImage::Format_Grayscale16
                ? reinterpret_cast<const quint16 *>(image.constScanLine(y))[x]
                : quint16(image.constScanLine(y)[x] * 257);
            put(i, g);
            if (colorType == PNG_COLOR_TYPE_GRAY_ALPHA)
                put(i, 0xFFFF);
            else if (colorType != PNG_COLOR_TYPE_GRAY) {
                put(i, g);
                put(i, g);
                if (colorType == PNG_COLOR_TYPE_RGB_ALPHA)
                    put(i, 0xFFFF);
            }
        }
        return;
    }
    // Everything else through 16-bit RGBA: exact for 8-bit values too.
    const QRgba64 *row = reinterpret_cast<const QRgba64 *>(image.constScanLine(y));
    for (int x = 0; x < w; ++x) {
        const QRgba64 p = row[x];
        if (colorType == PNG_COLOR_TYPE_GRAY || colorType == PNG_COLOR_TYPE_GRAY_ALPHA) {
            // The picture was grey; an edit (a style, an element) may have
            // coloured it: luma, Rec. 709 as libpng weighs it.
            const quint16 g = quint16((6966u * p.red() + 23436u * p.green() + 2366u * p.blue() + 16384u) >> 15);
            put(i, g);
        } else {
            put(i, p.red());
            put(i, p.green());
            put(i, p.blue());
        }
        if (colorType == PNG_COLOR_TYPE_GRAY_ALPHA || colorType == PNG_COLOR_TYPE_RGB_ALPHA)
            put(i, p.alpha());
    }
}
}

namespace {
// 8-bit RGB or RGBA from the formats edits leave (RGB888, RGB32, ARGB32);
// false for any other pair.
bool packRow8(const QImage &image, int y, int colorType, std::vector<uchar> &out)
{
    const int w = image.width();
    const uchar *in = image.constScanLine(y);
    if (image.format() == QImage::Format_RGB888 && colorType == PNG_COLOR_TYPE_RGB) {
        std::memcpy(out.data(), in, size_t(w) * 3);
        return true;
    }
    const bool rgb32 = image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32;
    if (!rgb32 || (colorType != PNG_COLOR_TYPE_RGB && colorType != PNG_COLOR_TYPE_RGB_ALPHA))
        return false;
    const QRgb *px = reinterpret_cast<const QRgb *>(in);
    uchar *o = out.data();
    const bool alpha = colorType == PNG_COLOR_TYPE_RGB_ALPHA;
    for (int x = 0; x < w; ++x) {
        *o++ = uchar(qRed(px[x]));
        *o++ = uchar(qGreen(px[x]));
        *o++ = uchar(qBlue(px[x]));
        if (alpha)
            *o++ = uchar(image.format() == QImage::Format_RGB32 ? 255 : qAlpha(px[x]));
    }
    return true;
}
}

QByteArray MMPngCodec::encode(const QImage &source, const Chunks &chunks)
{
    if (source.isNull())
        return QByteArray();
    int type = chunks.colorType, depth = chunks.bitDepth;
    if (type < 0) {
        type = source.hasAlphaChannel() ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB;
        depth = source.depth() == 64 || source.format() == QImage::Format_Grayscale16 ? 16 : 8;
    }
    // Grey below 8 bits and palettes are written as 8-bit; 16 stays 16.
    depth = depth == 16 && type != PNG_COLOR_TYPE_PALETTE ? 16 : 8;

    // A palette picture: its own table when it still has one, else a new one.
    QImage indexed;
    QVector<QRgb> table;
    QImage work = source;
    if (type == PNG_COLOR_TYPE_PALETTE) {
        if (source.format() == QImage::Format_Indexed8) {
            indexed = source;
            table = source.colorTable();
        } else {
            const MMPaletteQuantizer::Result q = MMPaletteQuantizer::quantize(source);
            indexed = q.indexed;
            table = q.colorTable;
        }
        if (indexed.isNull() || table.isEmpty())
            return QByteArray();
    } else if (work.format() != QImage::Format_Grayscale8 && work.format() != QImage::Format_Grayscale16
               && work.format() != QImage::Format_RGBA64) {
        work = QImage(); // converted a row at a time below
    }

    QByteArray bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, quietError, quietWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        png_destroy_write_struct(&png, nullptr);
        return QByteArray();
    }
    std::vector<uchar> row(size_t(source.width()) * 8);
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return QByteArray();
    }
    png_set_write_fn(png, &bytes, writeBytes, flushNothing);
    // A profile libpng finds odd is kept with a warning, not refused.
    png_set_benign_errors(png, 1);
    png_set_IHDR(png, info, png_uint_32(source.width()), png_uint_32(source.height()), depth, type,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (type == PNG_COLOR_TYPE_PALETTE) {
        std::vector<png_color> palette;
        std::vector<png_byte> alpha;
        bool anyAlpha = false;
        for (QRgb c : table) {
            palette.push_back({png_byte(qRed(c)), png_byte(qGreen(c)), png_byte(qBlue(c))});
            alpha.push_back(png_byte(qAlpha(c)));
            anyAlpha = anyAlpha || qAlpha(c) != 255;
        }
        png_set_PLTE(png, info, palette.data(), int(palette.size()));
        if (anyAlpha)
            png_set_tRNS(png, info, alpha.data(), int(alpha.size()), nullptr);
    }
    // A profile and an sRGB chunk may not stand together; the profile is
    // the fuller of the two.
    if (chunks.srgbIntent >= 0 && chunks.icc.isEmpty())
        png_set_sRGB(png, info, chunks.srgbIntent);
    if (chunks.hasGamma)
        png_set_gAMA(png, info, chunks.gamma);
    if (chunks.hasChrm)
        png_set_cHRM(png, info, chunks.chrm[0], chunks.chrm[1], chunks.chrm[2], chunks.chrm[3], chunks.chrm[4],
                     chunks.chrm[5], chunks.chrm[6], chunks.chrm[7]);
    if (!chunks.icc.isEmpty())
        png_set_iCCP(png, info, chunks.iccName.isEmpty() ? "icc" : chunks.iccName.constData(), 0,
                     reinterpret_cast<png_const_bytep>(chunks.icc.constData()), png_uint_32(chunks.icc.size()));
    if (chunks.hasPhys)
        png_set_pHYs(png, info, chunks.physX, chunks.physY, chunks.physUnit);
    std::vector<png_text> texts(size_t(chunks.texts.size()));
    for (int i = 0; i < chunks.texts.size(); ++i) {
        texts[i] = png_text();
        texts[i].compression = chunks.texts[i].second.size() > 1024 ? PNG_TEXT_COMPRESSION_zTXt : PNG_TEXT_COMPRESSION_NONE;
        texts[i].key = const_cast<char *>(chunks.texts[i].first.constData());
        texts[i].text = const_cast<char *>(chunks.texts[i].second.constData());
        texts[i].text_length = size_t(chunks.texts[i].second.size());
    }
    if (!texts.empty())
        png_set_text(png, info, texts.data(), int(texts.size()));
    png_write_info(png, info);
    for (int y = 0; y < source.height(); ++y) {
        if (type == PNG_COLOR_TYPE_PALETTE) {
            png_write_row(png, const_cast<png_bytep>(indexed.constScanLine(y)));
            continue;
        }
        if (work.isNull() && depth == 8 && packRow8(source, y, type, row))
            ; // the usual 8-bit layouts, straight from the picture's row
        else if (work.isNull()) {
            // One row converted: never a second whole frame.
            const QImage line = source.copy(0, y, source.width(), 1).convertToFormat(QImage::Format_RGBA64);
            packRow(line, 0, type, depth, row);
        } else {
            const QImage &line = work;
            if (line.format() == QImage::Format_RGBA64 || line.format() == QImage::Format_Grayscale8
                || line.format() == QImage::Format_Grayscale16)
                packRow(line, y, type, depth, row);
        }
        png_write_row(png, row.data());
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return bytes;
}
