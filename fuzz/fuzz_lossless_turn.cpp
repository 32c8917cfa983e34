// Lossless turns of hostile JPEG streams: the input is the stream, and its
// length picks one of the seven turns and flips. Whatever the turner
// accepts must turn back, through the turner again, to exactly the
// coefficients it started from.
#include "FuzzScratch.h"
#include "MMJpegErrorJump.h"
#include "MMJpegLosslessTurner.h"
#include <QByteArray>
#include <vector>

namespace {
struct Coefficients
{
    int width = 0, height = 0;
    std::vector<JCOEF> values; // every component's blocks, in order
};

bool coefficientsOf(const QByteArray &jpeg, Coefficients &out)
{
    jpeg_decompress_struct cinfo;
    MMJpegErrorJump error;
    return error.decompress(cinfo, [&] {
        jpeg_mem_src(&cinfo, reinterpret_cast<const unsigned char *>(jpeg.constData()), (unsigned long)jpeg.size());
        if (jpeg_read_header(&cinfo, TRUE) != JPEG_HEADER_OK)
            return false;
        jvirt_barray_ptr *arrays = jpeg_read_coefficients(&cinfo);
        out.width = int(cinfo.image_width);
        out.height = int(cinfo.image_height);
        for (int ci = 0; ci < cinfo.num_components; ++ci) {
            const jpeg_component_info &c = cinfo.comp_info[ci];
            for (JDIMENSION y = 0; y < c.height_in_blocks; ++y) {
                JBLOCKARRAY row = (*cinfo.mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(&cinfo), arrays[ci],
                                                                   y, 1, FALSE);
                for (JDIMENSION x = 0; x < c.width_in_blocks; ++x)
                    out.values.insert(out.values.end(), row[0][x], row[0][x] + DCTSIZE2);
            }
        }
        jpeg_finish_decompress(&cinfo);
        return true;
    });
}
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray jpeg(reinterpret_cast<const char *>(data), qsizetype(size));
    const MMOrientation turn = MMOrientation::fromExif(int(size % 7) + 2);
    const QByteArray turned = MMJpegLosslessTurner::transform(jpeg, turn, size % 2 == 0);
    if (turned.isEmpty())
        return 0;
    Coefficients before, after;
    // The turner read the whole stream without a warning, so it reads.
    fuzz::require(coefficientsOf(jpeg, before));
    const QByteArray back = MMJpegLosslessTurner::transform(turned, turn.inverted(), true);
    fuzz::require(!back.isEmpty() && coefficientsOf(back, after));
    fuzz::require(after.width == before.width && after.height == before.height && after.values == before.values);
    return 0;
}
