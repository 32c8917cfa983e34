#include "MMJpegLosslessCrop.h"
#include "MMJpegErrorJump.h"
#include "MMJpegKeptRows.h"
#include <cstdlib>
#include <cstring>

namespace {
// What one cut owns; it outlives the frames a longjmp out of libjpeg
// skips. The compressor reads the decompressor's blocks in place, through
// its own access to its coefficient arrays.
struct Cut
{
    jpeg_decompress_struct src;
    jpeg_compress_struct dst;
    MMJpegErrorJump srcError, dstError;
    MMJpegKeptRows kept;
    bool srcMade = false, dstMade = false;
    jvirt_barray_ptr arrays[MAX_COMPONENTS] = {};
    // Per component: the first block row and column of the cut, and the
    // row pointers handed to the compressor.
    JDIMENSION rowOffset[MAX_COMPONENTS] = {}, columnOffset[MAX_COMPONENTS] = {};
    JBLOCKROW window[MAX_COMPONENTS][4 * 5] = {};
    unsigned char *reserved = nullptr;
    unsigned char *buffer = nullptr;
    unsigned long size = 0;

    ~Cut()
    {
        if (dstMade)
            jpeg_destroy_compress(&dst);
        if (srcMade)
            jpeg_destroy_decompress(&src);
        if (reserved != buffer)
            std::free(reserved);
        std::free(buffer);
    }
};

JBLOCKARRAY accessCut(j_common_ptr cinfo, jvirt_barray_ptr array, JDIMENSION first, JDIMENSION count, boolean)
{
    auto *cut = static_cast<Cut *>(cinfo->client_data);
    for (int c = 0; c < cut->src.num_components; ++c) {
        if (cut->arrays[c] != array)
            continue;
        if (count > sizeof(cut->window[c]) / sizeof(JBLOCKROW))
            ERREXIT(cinfo, JERR_BAD_VIRTUAL_ACCESS);
        JBLOCKARRAY rows = (*cut->src.mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(&cut->src), array,
                                                               cut->rowOffset[c] + first, count, FALSE);
        for (JDIMENSION r = 0; r < count; ++r)
            cut->window[c][r] = rows[r] + cut->columnOffset[c];
        return cut->window[c];
    }
    ERREXIT(cinfo, JERR_BAD_VIRTUAL_ACCESS);
    return nullptr;
}

void copyMarkers(jpeg_decompress_struct &src, jpeg_compress_struct &dst)
{
    for (jpeg_saved_marker_ptr m = src.marker_list; m; m = m->next) {
        // The compressor writes its own JFIF and Adobe markers.
        if (dst.write_JFIF_header && m->marker == JPEG_APP0 && m->data_length >= 5
            && std::memcmp(m->data, "JFIF", 5) == 0)
            continue;
        if (dst.write_Adobe_marker && m->marker == JPEG_APP0 + 14 && m->data_length >= 5
            && std::memcmp(m->data, "Adobe", 5) == 0)
            continue;
        jpeg_write_marker(&dst, m->marker, m->data, m->data_length);
    }
}
}

namespace {
// Whether rect can be cut from a picture whose MCUs are mcu pixels.
bool fits(const QRect &rect, const QSize &picture, const QSize &mcu)
{
    return !rect.isEmpty() && mcu.width() > 0 && mcu.height() > 0 && QRect(QPoint(0, 0), picture).contains(rect)
        && rect.x() % mcu.width() == 0 && rect.y() % mcu.height() == 0;
}
}

QByteArray MMJpegLosslessCrop::crop(const QByteArray &jpeg, const QRect &rect, bool keepMarkers)
{
    if (jpeg.isEmpty() || rect.isEmpty())
        return QByteArray();
    Cut cut;
    cut.srcError.install(reinterpret_cast<j_common_ptr>(&cut.src), MMJpegErrorJump::onWarning);
    cut.dstError.install(reinterpret_cast<j_common_ptr>(&cut.dst), MMJpegErrorJump::onWarning);
    jpeg_create_decompress(&cut.src);
    cut.srcMade = true;
    if (setjmp(cut.srcError.jump)) {
        // Reading stops here on purpose once the cut's rows are whole.
        if (!cut.kept.stopped())
            return QByteArray();
    } else {
        jpeg_mem_src(&cut.src, reinterpret_cast<const unsigned char *>(jpeg.constData()), (unsigned long)jpeg.size());
        if (keepMarkers) {
            jpeg_save_markers(&cut.src, JPEG_COM, 0xFFFF);
            for (int m = 0; m < 16; ++m)
                jpeg_save_markers(&cut.src, JPEG_APP0 + m, 0xFFFF);
        }
        if (jpeg_read_header(&cut.src, TRUE) != JPEG_HEADER_OK || cut.src.num_components > MAX_COMPONENTS)
            return QByteArray();
        const int mcuW = cut.src.max_h_samp_factor * DCTSIZE, mcuH = cut.src.max_v_samp_factor * DCTSIZE;
        if (!fits(rect, QSize(int(cut.src.image_width), int(cut.src.image_height)), QSize(mcuW, mcuH)))
            return QByteArray();
        cut.kept.installCut(&cut.src, rect.y() / mcuH, (rect.y() + rect.height() + mcuH - 1) / mcuH);
        jpeg_read_coefficients(&cut.src);
    }
    const int mcuW = cut.src.max_h_samp_factor * DCTSIZE, mcuH = cut.src.max_v_samp_factor * DCTSIZE;
    for (int c = 0; c < cut.src.num_components; ++c) {
        cut.arrays[c] = cut.kept.array(c);
        if (!cut.arrays[c])
            return QByteArray();
        cut.rowOffset[c] = JDIMENSION(rect.y() / mcuH * cut.src.comp_info[c].v_samp_factor);
        cut.columnOffset[c] = JDIMENSION(rect.x() / mcuW * cut.src.comp_info[c].h_samp_factor);
    }

    jpeg_create_compress(&cut.dst);
    cut.dstMade = true;
    if (setjmp(cut.dstError.jump))
        return QByteArray();
    // Untouched pages of the output buffer are never resident.
    const size_t expected = size_t(rect.width()) * size_t(rect.height()) * 2 + 65536;
    cut.reserved = cut.buffer = static_cast<unsigned char *>(std::malloc(expected));
    cut.size = cut.buffer ? expected : 0;
    jpeg_mem_dest(&cut.dst, &cut.buffer, &cut.size);
    jpeg_copy_critical_parameters(&cut.src, &cut.dst);
    cut.dst.image_width = JDIMENSION(rect.width());
    cut.dst.image_height = JDIMENSION(rect.height());
    if (cut.src.progressive_mode)
        jpeg_simple_progression(&cut.dst);
    cut.dst.client_data = &cut;
    cut.dst.mem->access_virt_barray = accessCut;
    jpeg_write_coefficients(&cut.dst, cut.arrays);
    if (keepMarkers)
        copyMarkers(cut.src, cut.dst);
    jpeg_finish_compress(&cut.dst);
    return QByteArray(reinterpret_cast<const char *>(cut.buffer), qsizetype(cut.size));
}
