#include "MMJpegLosslessTurner.h"
#include "MMJpegCoefficientRange.h"
#include "MMJpegErrorJump.h"
#include "MMJpegStripJoiner.h"
#include "MMPagePopulator.h"
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on

namespace {
// Below this many pixels a second thread is not worth its start.
const long long kSplitPixels = 1 << 20;

bool startsWith(const jpeg_saved_marker_ptr m, int marker, const char *tag, unsigned length)
{
    return m->marker == marker && m->data_length >= length && std::memcmp(m->data, tag, length) == 0;
}

int markerCount(jpeg_saved_marker_ptr m)
{
    int n = 0;
    for (; m; m = m->next)
        ++n;
    return n;
}

// Where each block of one component of the result comes from: block (x, y)
// of the result is source block (ox + x * xx + y * yx, oy + x * xy + y * yy).
struct Component
{
    int width = 0;  // result's blocks in a row
    int height = 0; // and in a column
    int vSamp = 1; // result's vertical sampling factor
    int ox = 0, oy = 0, xx = 1, xy = 0, yx = 0, yy = 1;
    std::array<UINT16, DCTSIZE2> quantizers{}; // as the header defined them
    std::vector<JBLOCKROW> source;             // the source's block rows, once decoded
};

// Read-only while the strips are encoded.
struct Job
{
    bool keepMarkers = false;
    bool swap = false;
    int width = 0, height = 0; // the result's, in pixels
    int mcuWidth = 8, mcuHeight = 8;
    int markers = 0; // saved before the first scan
    std::vector<Component> components;
    // Result coefficient (v, u) is the source's (u, v) when the axes swap,
    // else its (v, u), times sign: -1 where a flip reverses the phase of an
    // odd frequency.
    JCOEF sign[DCTSIZE2];
};

// One strip's encoder and its output, a buffer it grows as libjpeg fills it.
// Only one thread at a time works on a strip, and sets its jump first.
struct Strip
{
    jpeg_compress_struct cinfo;
    MMJpegErrorJump error;
    jpeg_destination_mgr destination;
    bool created = false;
    bool damaged = false; // holds coefficients no encoder may write
    int first = 0, count = 0; // MCU rows of the result
    // libjpeg keeps a pointer to this list until the encode ends.
    jvirt_barray_ptr arrays[MAX_COMPONENTS] = {};
    std::vector<std::vector<JBLOCKROW>> rows; // each component's coefficient rows
    unsigned char *data = nullptr;
    size_t capacity = 0;
    size_t used = 0;
    ~Strip()
    {
        if (created)
            jpeg_destroy_compress(&cinfo);
        std::free(data);
    }
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

// The encoder's parameters, coefficient arrays and copied markers, from the
// source's header; errors jump out of it to setUp.
void prepare(Strip &s, const Job &job, jpeg_decompress_struct &src)
{
    jpeg_compress_struct &c = s.cinfo;
    s.destination.init_destination = initDestination;
    s.destination.empty_output_buffer = growDestination;
    s.destination.term_destination = termDestination;
    c.dest = &s.destination;
    jpeg_copy_critical_parameters(&src, &c);
    c.image_width = JDIMENSION(job.width);
    c.image_height = JDIMENSION(std::min(s.count * job.mcuHeight, job.height - s.first * job.mcuHeight));
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
    jpeg_saved_marker_ptr markers = job.keepMarkers ? src.marker_list : nullptr;
    // An EXIF file stays one: no JFIF segment is added before its EXIF.
    if (markers && startsWith(markers, JPEG_APP0 + 1, "Exif\0\0", 6))
        c.write_JFIF_header = FALSE;
    jvirt_barray_ptr *arrays = s.arrays;
    for (int ci = 0; ci < c.num_components; ++ci) {
        const Component &k = job.components[size_t(ci)];
        arrays[ci] = (*c.mem->request_virt_barray)(reinterpret_cast<j_common_ptr>(&c), JPOOL_IMAGE, FALSE,
                                                   JDIMENSION(k.width), JDIMENSION(s.count * k.vSamp),
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
    // The arrays live in memory: their rows stay where they are.
    for (int ci = 0; ci < c.num_components; ++ci) {
        const int vSamp = job.components[size_t(ci)].vSamp;
        for (int r = 0; r < s.count * vSamp; r += vSamp) {
            JBLOCKARRAY rows = (*c.mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(&c), arrays[ci],
                                                            JDIMENSION(r), JDIMENSION(vSamp), TRUE);
            s.rows[size_t(ci)].insert(s.rows[size_t(ci)].end(), rows, rows + vSamp);
        }
    }
}

bool setUp(Strip &s, const Job &job, jpeg_decompress_struct &src, size_t estimate)
{
    s.capacity = std::max<size_t>(estimate, 65536);
    s.data = static_cast<unsigned char *>(std::malloc(s.capacity));
    if (!s.data)
        return false;
    s.rows.resize(job.components.size());
    s.error.install(reinterpret_cast<j_common_ptr>(&s.cinfo), MMJpegErrorJump::onWarning);
    jpeg_create_compress(&s.cinfo);
    s.created = true;
    s.cinfo.client_data = &s;
    if (setjmp(s.error.jump))
        return false;
    prepare(s, job, src);
    return true;
}

// A stretch of coefficient memory, rows that lie end to end.
struct Run
{
    char *begin;
    size_t bytes;
};

void addRuns(std::vector<Run> &runs, const JBLOCKROW *rows, int count, int blocksPerRow)
{
    const size_t bytes = size_t(blocksPerRow) * sizeof(JBLOCK);
    for (int r = 0; r < count; ++r) {
        char *row = reinterpret_cast<char *>(rows[r]);
        if (!runs.empty() && runs.back().begin + runs.back().bytes == row)
            runs.back().bytes += bytes;
        else
            runs.push_back({ row, bytes });
    }
}

// The decoder's arrays are mapped in ahead of its pass down them, a slice
// of each at a time as it interleaves them, and the strips' arrays after
// them: all on the core the decode leaves free, so that neither the decode
// nor the encode of the strips takes a page fault.
void warm(std::vector<Run> source, const std::vector<std::unique_ptr<Strip>> &strips, const Job &job)
{
    const int slices = 16;
    for (int i = 0; i < slices; ++i)
        for (const Run &run : source) {
            const size_t from = run.bytes * size_t(i) / slices, to = run.bytes * size_t(i + 1) / slices;
            MMPagePopulator::populate(run.begin + from, to - from);
        }
    for (const auto &s : strips) {
        std::vector<Run> runs;
        for (size_t ci = 0; ci < job.components.size(); ++ci)
            addRuns(runs, s->rows[ci].data(), s->count * job.components[ci].vSamp, job.components[ci].width);
        for (const Run &run : runs)
            MMPagePopulator::populateOrClear(run.begin, run.bytes);
    }
}

// Turns one block; false when it holds a coefficient 8-bit coding cannot
// carry. Fixed index patterns, so that the compiler unrolls and vectorizes
// the loop; the check reads the source, which the sign changes only in sign.
template <bool Swap> bool turnBlock(const JCOEF *__restrict in, JCOEF *__restrict out, const JCOEF *sign)
{
    for (int v = 0; v < DCTSIZE; ++v)
        for (int u = 0; u < DCTSIZE; ++u)
            out[v * DCTSIZE + u] = JCOEF(in[Swap ? u * DCTSIZE + v : v * DCTSIZE + u] * sign[v * DCTSIZE + u]);
    return MMJpegCoefficientRange::fits(in);
}

bool encode(Strip &s, const Job &job)
{
    bool fits = true;
    for (size_t ci = 0; ci < job.components.size(); ++ci) {
        const Component &k = job.components[ci];
        const int first = s.first * k.vSamp;
        // Rows past the picture's last block (in its last MCU row) are not coded.
        for (int r = 0; r < s.count * k.vSamp && first + r < k.height; ++r) {
            const int y = first + r;
            for (int x = 0; x < k.width; ++x) {
                const int sx = k.ox + x * k.xx + y * k.yx, sy = k.oy + x * k.xy + y * k.yy;
                fits &= job.swap ? turnBlock<true>(k.source[size_t(sy)][sx], s.rows[ci][r][x], job.sign)
                                 : turnBlock<false>(k.source[size_t(sy)][sx], s.rows[ci][r][x], job.sign);
            }
        }
    }
    if (!fits) {
        s.damaged = true;
        return false;
    }
    if (setjmp(s.error.jump))
        return false;
    jpeg_finish_compress(&s.cinfo);
    return true;
}

// What the header says: false when the picture is not one this path takes.
bool plan(Job &job, const jpeg_decompress_struct &src, const MMOrientation &orientation)
{
    const int n = src.num_components;
    const int mcuW = src.max_h_samp_factor * DCTSIZE, mcuH = src.max_v_samp_factor * DCTSIZE;
    if (src.progressive_mode || src.data_precision != 8 || n < 1 || n > 4
        || (n == 1 && (src.comp_info[0].h_samp_factor != 1 || src.comp_info[0].v_samp_factor != 1)))
        return false;
    job.swap = orientation.swapsAxes();
    // Unit steps do not depend on the size; a 2x2 grid has both.
    const MMOrientation back = orientation.inverted();
    const QPoint a = back.mapRect(QRect(0, 0, 1, 1), QSize(2, 2)).topLeft();
    const QPoint dx = back.mapRect(QRect(1, 0, 1, 1), QSize(2, 2)).topLeft() - a;
    const QPoint dy = back.mapRect(QRect(0, 1, 1, 1), QSize(2, 2)).topLeft() - a;
    // A result row (column) runs back along a source axis when flipU (flipV).
    const bool flipU = dx.x() + dx.y() < 0, flipV = dy.x() + dy.y() < 0;
    // A side the transform reverses must be whole MCUs: its partial MCU
    // would land at the leading edge, where no partial MCU may be. Other
    // sides keep theirs at the trailing edge.
    const bool reverseX = job.swap ? flipV : flipU, reverseY = job.swap ? flipU : flipV;
    if ((reverseX && src.image_width % JDIMENSION(mcuW) != 0)
        || (reverseY && src.image_height % JDIMENSION(mcuH) != 0))
        return false;
    const QSize size = orientation.map(QSize(int(src.image_width), int(src.image_height)));
    job.width = size.width();
    job.height = size.height();
    job.mcuHeight = job.swap ? mcuW : mcuH;
    // The interleaved MCU of the result; a lone component's is one block.
    job.mcuWidth = n == 1 ? DCTSIZE : (job.swap ? mcuH : mcuW);
    job.markers = markerCount(src.marker_list);

    for (int ci = 0; ci < n; ++ci) {
        const jpeg_component_info &info = src.comp_info[ci];
        const JQUANT_TBL *table = info.quant_tbl_no >= 0 && info.quant_tbl_no < NUM_QUANT_TBLS
            ? src.quant_tbl_ptrs[info.quant_tbl_no] : nullptr;
        if (!table)
            return false;
        Component k;
        std::copy(table->quantval, table->quantval + DCTSIZE2, k.quantizers.begin());
        const QSize turned = orientation.map(QSize(int(info.width_in_blocks), int(info.height_in_blocks)));
        k.width = turned.width();
        k.height = turned.height();
        k.vSamp = job.swap ? info.h_samp_factor : info.v_samp_factor;
        const QPoint o = back.mapRect(QRect(0, 0, 1, 1), turned).topLeft();
        k.ox = o.x();
        k.oy = o.y();
        k.xx = dx.x();
        k.xy = dx.y();
        k.yx = dy.x();
        k.yy = dy.y();
        job.components.push_back(std::move(k));
    }
    // Running back along the source mirrors each block, which flips the sign
    // of its odd frequencies in that direction.
    for (int v = 0; v < DCTSIZE; ++v)
        for (int u = 0; u < DCTSIZE; ++u)
            job.sign[v * DCTSIZE + u] = (flipU && (u & 1)) != (flipV && (v & 1)) ? -1 : 1;
    return true;
}

// After the decode: where the source's blocks are, and whether the stream
// kept to what its header said (a later table or marker would make the
// prepared encoders wrong).
bool attach(Job &job, jpeg_decompress_struct &src, jvirt_barray_ptr *arrays)
{
    if (markerCount(src.marker_list) != job.markers)
        return false;
    for (int ci = 0; ci < src.num_components; ++ci) {
        const jpeg_component_info &info = src.comp_info[ci];
        Component &k = job.components[size_t(ci)];
        if (!info.quant_table || !std::equal(k.quantizers.begin(), k.quantizers.end(), info.quant_table->quantval))
            return false;
        k.source.resize(info.height_in_blocks);
        for (JDIMENSION r = 0; r < info.height_in_blocks; r += JDIMENSION(info.v_samp_factor)) {
            JBLOCKARRAY rows = (*src.mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(&src), arrays[ci], r,
                                                              JDIMENSION(info.v_samp_factor), FALSE);
            // The array's rows run on to a whole MCU row; the picture's may not.
            for (JDIMENSION i = 0; i < JDIMENSION(info.v_samp_factor) && r + i < info.height_in_blocks; ++i)
                k.source[r + i] = rows[i];
        }
    }
    return true;
}

// Strips of whole MCU rows, each within the restart interval's reach.
int stripCount(const Job &job, long long *interval)
{
    const long long perRow = (job.width + job.mcuWidth - 1) / job.mcuWidth;
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

// A coefficient array the decoder asked for.
struct SourceArray
{
    jvirt_barray_ptr array;
    int blocksPerRow, rows;
    bool zeroed; // libjpeg clears its rows on first access
    JBLOCKARRAY placed = nullptr; // all its rows, once libjpeg placed them
};

// Everything one turn holds. It lives in transform()'s frame, which a
// longjmp from the source's decoder returns to, never jumps over.
struct Work
{
    jpeg_decompress_struct cinfo;
    MMJpegErrorJump error;
    Job job;
    std::vector<std::unique_ptr<Strip>> strips;
    std::thread toucher;
    long long interval = 0;
    QByteArray result;
    bool damaged = false;
    // The decoder's memory methods, which warmArrays wraps.
    decltype(jpeg_memory_mgr::request_virt_barray) request = nullptr;
    decltype(jpeg_memory_mgr::realize_virt_arrays) realize = nullptr;
    std::vector<SourceArray> sourceArrays;
    ~Work()
    {
        if (toucher.joinable())
            toucher.join();
        strips.clear();
        jpeg_destroy_decompress(&cinfo);
    }
};

Work *workOf(j_common_ptr cinfo)
{
    return static_cast<Work *>(cinfo->client_data);
}

jvirt_barray_ptr requestSource(j_common_ptr cinfo, int pool, boolean zeroed, JDIMENSION blocksPerRow,
                               JDIMENSION rows, JDIMENSION maxAccess)
{
    Work *w = workOf(cinfo);
    jvirt_barray_ptr array = w->request(cinfo, pool, zeroed, blocksPerRow, rows, maxAccess);
    // Room was made beforehand: nothing may throw through libjpeg.
    if (w->sourceArrays.size() < w->sourceArrays.capacity())
        w->sourceArrays.push_back({ array, int(blocksPerRow), int(rows), zeroed != FALSE });
    return array;
}

// Once libjpeg has placed the decoder's arrays, and before it decodes into
// them, the toucher starts mapping them in. Reading a row of an array that
// libjpeg clears changes nothing but clearing that row early; the rows of
// an array held whole in memory lie in one list, which the first and last
// row's addresses prove.
void realizeSource(j_common_ptr cinfo)
{
    Work *w = workOf(cinfo);
    w->realize(cinfo);
    // libjpeg may jump out of these calls: nothing here owns memory yet.
    for (SourceArray &a : w->sourceArrays) {
        if (!a.zeroed || a.rows < 1)
            continue;
        JBLOCKARRAY first = cinfo->mem->access_virt_barray(cinfo, a.array, 0, 1, FALSE);
        JBLOCKARRAY last = cinfo->mem->access_virt_barray(cinfo, a.array, JDIMENSION(a.rows - 1), 1, FALSE);
        if (last == first + (a.rows - 1))
            a.placed = first;
    }
    try {
        std::vector<Run> source;
        for (const SourceArray &a : w->sourceArrays)
            if (a.placed)
                addRuns(source, a.placed, a.rows, a.blocksPerRow);
        w->toucher = std::thread(warm, std::move(source), std::cref(w->strips), std::cref(w->job));
    } catch (...) {
        // No thread: the arrays are mapped in as they are written.
    }
}

// Makes the decode start the toucher, once there are strips to encode on
// two cores.
void warmArrays(Work &w)
{
    if (w.strips.size() < 2)
        return;
    w.cinfo.client_data = &w;
    w.sourceArrays.reserve(MAX_COMPONENTS);
    w.request = w.cinfo.mem->request_virt_barray;
    w.realize = w.cinfo.mem->realize_virt_arrays;
    w.cinfo.mem->request_virt_barray = requestSource;
    w.cinfo.mem->realize_virt_arrays = realizeSource;
}

// The header, and the markers when they are kept; errors in the source jump
// out of it to MMJpegLosslessTurner::transform.
bool readHeader(jpeg_decompress_struct &src, const QByteArray &jpeg, bool keepMarkers)
{
    jpeg_mem_src(&src, reinterpret_cast<const unsigned char *>(jpeg.constData()), (unsigned long)jpeg.size());
    if (keepMarkers) {
        jpeg_save_markers(&src, JPEG_COM, 0xFFFF);
        for (int m = 0; m < 16; ++m)
            jpeg_save_markers(&src, JPEG_APP0 + m, 0xFFFF);
    }
    return jpeg_read_header(&src, TRUE) == JPEG_HEADER_OK;
}

// Sets up the strips' encoders from the header.
bool prepareStrips(Work &w, qsizetype sourceBytes)
{
    const int count = stripCount(w.job, &w.interval);
    const int mcuRows = (w.job.height + w.job.mcuHeight - 1) / w.job.mcuHeight;
    const int stripRows = (mcuRows + count - 1) / count;
    // Each strip's share of the source, and room for the copied markers.
    const size_t estimate = size_t(sourceBytes) / size_t(count) + size_t(sourceBytes) / 8;
    for (int i = 0; i < count && i * stripRows < mcuRows; ++i) {
        w.strips.push_back(std::make_unique<Strip>());
        Strip &s = *w.strips.back();
        s.first = i * stripRows;
        s.count = std::min(stripRows, mcuRows - s.first);
        if (!setUp(s, w.job, w.cinfo, estimate))
            return false;
    }
    return true;
}

// Fills and encodes the strips on two threads, then joins them.
QByteArray encodeStrips(Work &w)
{
    const int count = int(w.strips.size());
    std::vector<char> ok(static_cast<size_t>(count), 0);
    std::atomic<int> next{ 0 };
    auto work = [&] {
        for (int i = next++; i < count; i = next++)
            ok[size_t(i)] = encode(*w.strips[size_t(i)], w.job);
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
        w.damaged |= w.strips[size_t(i)]->damaged;
        if (!ok[size_t(i)])
            return QByteArray();
        const Strip &s = *w.strips[size_t(i)];
        parts.emplace_back(reinterpret_cast<const char *>(s.data), qsizetype(s.used));
    }
    w.strips.clear();
    if (count == 1)
        return parts[0];
    return MMJpegStripJoiner::join(parts, w.job.height, w.interval);
}
}

QByteArray MMJpegLosslessTurner::transform(const QByteArray &jpeg, const MMOrientation &orientation,
                                           bool keepMarkers, bool *damaged)
{
    if (damaged)
        *damaged = false;
    if (jpeg.isEmpty())
        return QByteArray();
    Work w;
    w.job.keepMarkers = keepMarkers;
    w.error.install(reinterpret_cast<j_common_ptr>(&w.cinfo), MMJpegErrorJump::onWarning);
    jpeg_create_decompress(&w.cinfo);
    if (setjmp(w.error.jump)) {
        if (damaged)
            *damaged = true;
        return QByteArray();
    }
    if (!readHeader(w.cinfo, jpeg, keepMarkers) || !plan(w.job, w.cinfo, orientation)
        || !prepareStrips(w, jpeg.size()))
        return QByteArray();
    warmArrays(w);
    jvirt_barray_ptr *arrays = jpeg_read_coefficients(&w.cinfo);
    if (w.toucher.joinable())
        w.toucher.join();
    if (!arrays || !attach(w.job, w.cinfo, arrays))
        return QByteArray();
    w.result = encodeStrips(w);
    if (damaged)
        *damaged = w.damaged;
    // The whole stream was read; this only checks its end.
    jpeg_finish_decompress(&w.cinfo);
    return w.result;
}
