#include "MMJpegLosslessTurner.h"
#include "MMJpegErrorJump.h"
#include "MMJpegStripJoiner.h"
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on

namespace {
// Below this many pixels a second thread is not worth its start.
const long long kSplitPixels = 1 << 20;

void failOnWarning(j_common_ptr cinfo, int level)
{
    if (level < 0)
        MMJpegErrorJump::onError(cinfo);
}

bool startsWith(const jpeg_saved_marker_ptr m, int marker, const char *tag, unsigned length)
{
    return m->marker == marker && m->data_length >= length && std::memcmp(m->data, tag, length) == 0;
}

// Where each block of one component of the result comes from: block (x, y)
// of the result is source block (ox + x * xx + y * yx, oy + x * xy + y * yy).
struct Component
{
    int width = 0;  // result's blocks in a row
    int vSamp = 1;  // result's vertical sampling factor
    int ox = 0, oy = 0, xx = 1, xy = 0, yx = 0, yy = 1;
    std::vector<JBLOCKROW> source; // the source's block rows
};

// Read-only while the strips are encoded.
struct Job
{
    jpeg_decompress_struct *source = nullptr;
    bool keepMarkers = false;
    bool swap = false;
    int width = 0, height = 0; // the result's, in pixels
    int mcuHeight = 8;
    std::vector<Component> components;
    // Result coefficient k comes from source coefficient from[k], negated
    // where a flip reverses the phase of an odd frequency.
    int from[DCTSIZE2];
    bool negate[DCTSIZE2];
};

// One strip's encoder and its output, a buffer it grows as libjpeg fills it.
struct Strip
{
    jpeg_compress_struct cinfo;
    MMJpegErrorJump error;
    jpeg_destination_mgr destination;
    unsigned char *data = nullptr;
    size_t capacity = 0;
    size_t used = 0;
    ~Strip() { std::free(data); }
};

Strip *stripOf(j_compress_ptr cinfo)
{
    return static_cast<Strip *>(cinfo->client_data);
}

void initDestination(j_compress_ptr cinfo)
{
    Strip *s = stripOf(cinfo);
    cinfo->dest->next_output_byte = s->data;
    cinfo->dest->free_in_buffer = s->capacity;
}

boolean growDestination(j_compress_ptr cinfo)
{
    Strip *s = stripOf(cinfo);
    const size_t grown = s->capacity * 2;
    auto *bigger = static_cast<unsigned char *>(std::realloc(s->data, grown));
    if (!bigger)
        ERREXIT1(cinfo, JERR_OUT_OF_MEMORY, 10);
    s->data = bigger;
    cinfo->dest->next_output_byte = bigger + s->capacity;
    cinfo->dest->free_in_buffer = grown - s->capacity;
    s->capacity = grown;
    return TRUE;
}

void termDestination(j_compress_ptr cinfo)
{
    Strip *s = stripOf(cinfo);
    s->used = s->capacity - cinfo->dest->free_in_buffer;
}

void turnBlock(const JCOEF *in, JCOEF *out, const Job &job)
{
    for (int k = 0; k < DCTSIZE2; ++k)
        out[k] = job.negate[k] ? JCOEF(-in[job.from[k]]) : in[job.from[k]];
}

// Everything libjpeg does for one strip of MCU rows [first, first + count);
// errors jump out of it to encodeStrip.
void writeStrip(Strip &s, const Job &job, int first, int count)
{
    jpeg_compress_struct &c = s.cinfo;
    s.destination.init_destination = initDestination;
    s.destination.empty_output_buffer = growDestination;
    s.destination.term_destination = termDestination;
    c.dest = &s.destination;
    jpeg_copy_critical_parameters(job.source, &c);
    c.image_width = JDIMENSION(job.width);
    c.image_height = JDIMENSION(std::min(count * job.mcuHeight, job.height - first * job.mcuHeight));
    if (job.swap) {
        for (int ci = 0; ci < c.num_components; ++ci)
            std::swap(c.comp_info[ci].h_samp_factor, c.comp_info[ci].v_samp_factor);
        // The frequencies trade places, and so do their quantizers.
        for (JQUANT_TBL *table : c.quant_tbl_ptrs) {
            if (!table)
                continue;
            for (int v = 0; v < DCTSIZE; ++v)
                for (int u = v + 1; u < DCTSIZE; ++u)
                    std::swap(table->quantval[v * DCTSIZE + u], table->quantval[u * DCTSIZE + v]);
        }
    }
    jpeg_saved_marker_ptr markers = job.keepMarkers ? job.source->marker_list : nullptr;
    // An EXIF file stays one: no JFIF segment is added before its EXIF.
    if (markers && startsWith(markers, JPEG_APP0 + 1, "Exif\0\0", 6))
        c.write_JFIF_header = FALSE;
    jvirt_barray_ptr arrays[MAX_COMPONENTS];
    for (int ci = 0; ci < c.num_components; ++ci) {
        const Component &k = job.components[size_t(ci)];
        arrays[ci] = (*c.mem->request_virt_barray)(reinterpret_cast<j_common_ptr>(&c), JPOOL_IMAGE, FALSE,
                                                   JDIMENSION(k.width), JDIMENSION(count * k.vSamp),
                                                   JDIMENSION(k.vSamp));
    }
    jpeg_write_coefficients(&c, arrays);
    for (jpeg_saved_marker_ptr m = markers; m; m = m->next) {
        // libjpeg writes these two itself when it should.
        if ((c.write_JFIF_header && startsWith(m, JPEG_APP0, "JFIF", 5))
            || (c.write_Adobe_marker && startsWith(m, JPEG_APP0 + 14, "Adobe", 5)))
            continue;
        jpeg_write_marker(&c, m->marker, m->data, m->data_length);
    }
    for (int ci = 0; ci < c.num_components; ++ci) {
        const Component &k = job.components[size_t(ci)];
        const int firstRow = first * k.vSamp, rows = count * k.vSamp;
        for (int r = 0; r < rows; r += k.vSamp) {
            JBLOCKARRAY out = (*c.mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(&c), arrays[ci],
                                                           JDIMENSION(r), JDIMENSION(k.vSamp), TRUE);
            for (int i = 0; i < k.vSamp; ++i) {
                const int y = firstRow + r + i;
                for (int x = 0; x < k.width; ++x) {
                    const int sx = k.ox + x * k.xx + y * k.yx, sy = k.oy + x * k.xy + y * k.yy;
                    turnBlock(k.source[size_t(sy)][sx], out[i][x], job);
                }
            }
        }
    }
    jpeg_finish_compress(&c);
}

bool encodeStrip(Strip &s, const Job &job, int first, int count, size_t estimate)
{
    s.capacity = std::max<size_t>(estimate, 65536);
    s.data = static_cast<unsigned char *>(std::malloc(s.capacity));
    if (!s.data)
        return false;
    s.error.install(reinterpret_cast<j_common_ptr>(&s.cinfo), failOnWarning);
    jpeg_create_compress(&s.cinfo);
    s.cinfo.client_data = &s;
    if (setjmp(s.error.jump)) {
        jpeg_destroy_compress(&s.cinfo);
        return false;
    }
    writeStrip(s, job, first, count);
    jpeg_destroy_compress(&s.cinfo);
    return true;
}

// Fills job from the decoded source; false when the picture is not one
// this path takes.
bool plan(Job &job, jpeg_decompress_struct &src, jvirt_barray_ptr *arrays, const MMOrientation &orientation)
{
    const int n = src.num_components;
    const int mcuW = src.max_h_samp_factor * DCTSIZE, mcuH = src.max_v_samp_factor * DCTSIZE;
    if (src.progressive_mode || src.data_precision != 8 || n < 1 || n > 4
        || (n == 1 && (src.comp_info[0].h_samp_factor != 1 || src.comp_info[0].v_samp_factor != 1))
        || src.image_width % JDIMENSION(mcuW) != 0 || src.image_height % JDIMENSION(mcuH) != 0)
        return false;
    job.source = &src;
    job.swap = orientation.swapsAxes();
    const QSize size = orientation.map(QSize(int(src.image_width), int(src.image_height)));
    job.width = size.width();
    job.height = size.height();
    job.mcuHeight = job.swap ? mcuW : mcuH;

    // Unit steps do not depend on the size; a 2x2 grid has both.
    const MMOrientation back = orientation.inverted();
    const QPoint a = back.mapRect(QRect(0, 0, 1, 1), QSize(2, 2)).topLeft();
    const QPoint dx = back.mapRect(QRect(1, 0, 1, 1), QSize(2, 2)).topLeft() - a;
    const QPoint dy = back.mapRect(QRect(0, 1, 1, 1), QSize(2, 2)).topLeft() - a;
    for (int ci = 0; ci < n; ++ci) {
        const jpeg_component_info &info = src.comp_info[ci];
        const QSize blocks(int(info.width_in_blocks), int(info.height_in_blocks));
        Component k;
        const QSize turned = orientation.map(blocks);
        k.width = turned.width();
        k.vSamp = job.swap ? info.h_samp_factor : info.v_samp_factor;
        const QPoint o = back.mapRect(QRect(0, 0, 1, 1), turned).topLeft();
        k.ox = o.x();
        k.oy = o.y();
        k.xx = dx.x();
        k.xy = dx.y();
        k.yx = dy.x();
        k.yy = dy.y();
        k.source.resize(size_t(blocks.height()));
        for (int r = 0; r < blocks.height(); r += info.v_samp_factor) {
            JBLOCKARRAY rows = (*src.mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(&src), arrays[ci],
                                                              JDIMENSION(r), JDIMENSION(info.v_samp_factor), FALSE);
            for (int i = 0; i < info.v_samp_factor; ++i)
                k.source[size_t(r + i)] = rows[i];
        }
        job.components.push_back(std::move(k));
    }
    // A result column runs along a source column or row, forwards or back;
    // running back mirrors the block, which flips the sign of its odd
    // frequencies in that direction.
    const bool flipU = dx.x() + dx.y() < 0, flipV = dy.x() + dy.y() < 0;
    for (int v = 0; v < DCTSIZE; ++v) {
        for (int u = 0; u < DCTSIZE; ++u) {
            const int k = v * DCTSIZE + u;
            job.from[k] = job.swap ? u * DCTSIZE + v : k;
            job.negate[k] = (flipU && (u & 1)) != (flipV && (v & 1));
        }
    }
    return true;
}

// Strips of whole MCU rows, each within the restart interval's reach.
int stripCount(const Job &job, int mcuWidth, long long *interval)
{
    const long long perRow = (job.width + mcuWidth - 1) / mcuWidth;
    const long long rows = (job.height + job.mcuHeight - 1) / job.mcuHeight;
    if ((long long)job.width * job.height < kSplitPixels || rows < 2 || std::thread::hardware_concurrency() < 2)
        return 1;
    for (long long count = 2; count <= rows; ++count) {
        *interval = (rows + count - 1) / count * perRow;
        if (*interval <= MMJpegStripJoiner::MaxInterval)
            return int(count);
    }
    return 1;
}

struct Source
{
    jpeg_decompress_struct cinfo;
    MMJpegErrorJump error;
    QByteArray result;
};

// Reads the header and every coefficient; errors in the source jump out of
// it to MMJpegLosslessTurner::transform, so nothing here has a destructor.
jvirt_barray_ptr *readCoefficients(jpeg_decompress_struct &src, const QByteArray &jpeg, bool keepMarkers)
{
    jpeg_mem_src(&src, reinterpret_cast<const unsigned char *>(jpeg.constData()), (unsigned long)jpeg.size());
    if (keepMarkers) {
        jpeg_save_markers(&src, JPEG_COM, 0xFFFF);
        for (int m = 0; m < 16; ++m)
            jpeg_save_markers(&src, JPEG_APP0 + m, 0xFFFF);
    }
    if (jpeg_read_header(&src, TRUE) != JPEG_HEADER_OK)
        return nullptr;
    return jpeg_read_coefficients(&src);
}

// Encodes the strips from the decoded source and joins them. The source's
// arrays are all in memory, so reading them cannot fail.
QByteArray encode(jpeg_decompress_struct &src, jvirt_barray_ptr *arrays, qsizetype sourceBytes,
                  const MMOrientation &orientation, bool keepMarkers)
{
    Job job;
    job.keepMarkers = keepMarkers;
    if (!plan(job, src, arrays, orientation))
        return QByteArray();

    // The interleaved MCU of the result; a lone component's is one block.
    const int mcuWidth = src.num_components == 1 ? DCTSIZE
                                                 : DCTSIZE * (job.swap ? src.max_v_samp_factor : src.max_h_samp_factor);
    long long interval = 0;
    const int count = stripCount(job, mcuWidth, &interval);
    const int mcuRows = (job.height + job.mcuHeight - 1) / job.mcuHeight;
    const int stripRows = (mcuRows + count - 1) / count;
    // Each strip's share of the source, and room for the copied markers.
    const size_t estimate = size_t(sourceBytes) / size_t(count) + size_t(sourceBytes) / 8;
    std::vector<Strip> strips(static_cast<size_t>(count));
    std::vector<char> ok(static_cast<size_t>(count), 0);
    std::atomic<int> next{ 0 };
    auto work = [&] {
        for (int i = next++; i < count; i = next++) {
            const int rows = std::min(stripRows, mcuRows - i * stripRows);
            ok[size_t(i)] = rows > 0 && encodeStrip(strips[size_t(i)], job, i * stripRows, rows, estimate);
        }
    };
    if (count > 1) {
        std::thread helper(work);
        work();
        helper.join();
    } else {
        work();
    }
    std::vector<QByteArray> parts;
    for (int i = 0; i < count; ++i) {
        if (!ok[size_t(i)])
            return QByteArray();
        const Strip &strip = strips[size_t(i)];
        parts.emplace_back(reinterpret_cast<const char *>(strip.data), qsizetype(strip.used));
    }
    if (count == 1)
        return parts[0];
    return MMJpegStripJoiner::join(parts, job.height, interval);
}
}

QByteArray MMJpegLosslessTurner::transform(const QByteArray &jpeg, const MMOrientation &orientation,
                                           bool keepMarkers)
{
    if (jpeg.isEmpty())
        return QByteArray();
    Source s;
    s.error.install(reinterpret_cast<j_common_ptr>(&s.cinfo), failOnWarning);
    jpeg_create_decompress(&s.cinfo);
    if (setjmp(s.error.jump)) {
        jpeg_destroy_decompress(&s.cinfo);
        return QByteArray();
    }
    jvirt_barray_ptr *arrays = readCoefficients(s.cinfo, jpeg, keepMarkers);
    if (!arrays) {
        jpeg_destroy_decompress(&s.cinfo);
        return QByteArray();
    }
    s.result = encode(s.cinfo, arrays, jpeg.size(), orientation, keepMarkers);
    // The whole stream was read; this only checks its end.
    jpeg_finish_decompress(&s.cinfo);
    jpeg_destroy_decompress(&s.cinfo);
    return s.result;
}
