#include "MMJpegScanSplitter.h"
#include <sys/mman.h>
#include <unistd.h>
#include <cstdio>
#include <cstdint>
#include <cstring>
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on

// A decompressor's source that serves a list of byte ranges as one stream.
struct MMJpegScanSplitter::Source
{
    jpeg_source_mgr pub;
    const JOCTET *base;
    const Range *ranges;
    size_t count;
    size_t next;
    JOCTET eoi[2];
    // Coefficient arrays of the other part's components: libjpeg still
    // asks for them (DC scans cover every component), but nothing of them
    // is kept, so their blocks go to one shared row instead.
    MMJpegScanSplitter::Part part;
    int requested;
    decltype(jpeg_memory_mgr::request_virt_barray) request;
    decltype(jpeg_memory_mgr::access_virt_barray) access;
    struct StandIn
    {
        jvirt_barray_ptr array;
        JBLOCKARRAY rows;
    } standIns[4];
    int standInCount;
    // The own components' arrays, and the rows last read out of each: a
    // stream read whole is read out once, top to bottom, so rows above the
    // ones being read are never asked for again and their pages are given
    // back (nothing here smooths blocks, which would read them again).
    struct Own
    {
        jvirt_barray_ptr array;
        JDIMENSION blocksPerRow;
        JBLOCKARRAY lastRows;
        JDIMENSION lastFirst, lastCount;
    } own[4];
    int ownCount;
};

namespace {
using Source = MMJpegScanSplitter::Source;

void initSource(j_decompress_ptr) {}
void termSource(j_decompress_ptr) {}

boolean fillInput(j_decompress_ptr cinfo)
{
    auto *s = reinterpret_cast<Source *>(cinfo->src);
    if (s->next < s->count) {
        s->pub.next_input_byte = s->base + s->ranges[s->next].from;
        s->pub.bytes_in_buffer = size_t(s->ranges[s->next].size);
        ++s->next;
        return TRUE;
    }
    // As libjpeg's memory source does at the end: warn and end the image.
    WARNMS(cinfo, JWRN_JPEG_EOF);
    s->eoi[0] = 0xFF;
    s->eoi[1] = JPEG_EOI;
    s->pub.next_input_byte = s->eoi;
    s->pub.bytes_in_buffer = 2;
    return TRUE;
}

void skipInput(j_decompress_ptr cinfo, long count)
{
    jpeg_source_mgr *src = cinfo->src;
    while (count > long(src->bytes_in_buffer)) {
        count -= long(src->bytes_in_buffer);
        fillInput(cinfo);
    }
    if (count > 0) {
        src->next_input_byte += count;
        src->bytes_in_buffer -= size_t(count);
    }
}

// Gives the whole pages inside [begin, begin + bytes) back to the system;
// they read as zeros if touched again.
void release(void *begin, size_t bytes)
{
    static const uintptr_t page = uintptr_t(sysconf(_SC_PAGESIZE));
    const uintptr_t from = (uintptr_t(begin) + page - 1) & ~(page - 1);
    const uintptr_t to = (uintptr_t(begin) + bytes) & ~(page - 1);
    if (to > from)
        madvise(reinterpret_cast<void *>(from), to - from, MADV_DONTNEED);
}

Source *sourceOf(j_common_ptr cinfo)
{
    return reinterpret_cast<Source *>(reinterpret_cast<j_decompress_ptr>(cinfo)->src);
}

// libjpeg asks for one array a component, in component order. A component
// of the other part gets a stand-in: every one of its block rows is the
// same zeroed row, written by the DC scans and never read as picture.
// Without it each part holds every coefficient of the picture.
jvirt_barray_ptr requestArray(j_common_ptr cinfo, int pool, boolean preZero, JDIMENSION blocksPerRow,
                              JDIMENSION rows, JDIMENSION maxAccess)
{
    Source *s = sourceOf(cinfo);
    const int component = s->requested++;
    const bool lumaComponent = component == 0;
    const bool other = component < 3 && lumaComponent != (s->part == MMJpegScanSplitter::Luma);
    if (!other || s->standInCount == 4) {
        jvirt_barray_ptr array = s->request(cinfo, pool, preZero, blocksPerRow, rows, maxAccess);
        if (s->ownCount < 4)
            s->own[s->ownCount++] = { array, blocksPerRow, nullptr, 0, 0 };
        return array;
    }
    // A real array of a few rows keeps libjpeg's own bookkeeping as it is;
    // it is never accessed.
    jvirt_barray_ptr array = s->request(cinfo, pool, FALSE, blocksPerRow, maxAccess, maxAccess);
    auto *row = static_cast<JBLOCKROW>(cinfo->mem->alloc_large(cinfo, pool, size_t(blocksPerRow) * sizeof(JBLOCK)));
    std::memset(row, 0, size_t(blocksPerRow) * sizeof(JBLOCK));
    auto *list = static_cast<JBLOCKARRAY>(cinfo->mem->alloc_small(cinfo, pool, size_t(maxAccess) * sizeof(JBLOCKROW)));
    for (JDIMENSION i = 0; i < maxAccess; ++i)
        list[i] = row;
    s->standIns[s->standInCount++] = { array, list };
    return array;
}

JBLOCKARRAY accessArray(j_common_ptr cinfo, jvirt_barray_ptr array, JDIMENSION first, JDIMENSION count,
                        boolean writable)
{
    Source *s = sourceOf(cinfo);
    for (int i = 0; i < s->standInCount; ++i) {
        if (s->standIns[i].array == array)
            return s->standIns[i].rows;
    }
    JBLOCKARRAY rows = s->access(cinfo, array, first, count, writable);
    for (int i = 0; !writable && i < s->ownCount; ++i) {
        Source::Own &o = s->own[i];
        if (o.array != array)
            continue;
        if (o.lastRows && first >= o.lastFirst + o.lastCount) {
            const size_t rowBytes = size_t(o.blocksPerRow) * sizeof(JBLOCK);
            for (JDIMENSION r = 0; r < o.lastCount; ++r)
                release(o.lastRows[r], rowBytes);
        }
        // The row pointers libjpeg gives are its own and stay put; only
        // which rows they are is kept.
        o.lastRows = rows;
        o.lastFirst = first;
        o.lastCount = count;
    }
    return rows;
}

int be16(const unsigned char *b, qsizetype at)
{
    return (b[at] << 8) | b[at + 1];
}
}

void MMJpegScanSplitter::keep(Part part, qsizetype from, qsizetype to)
{
    std::vector<Range> &list = m_ranges[part];
    if (!list.empty() && list.back().from + list.back().size == from)
        list.back().size += to - from;
    else
        list.push_back({ from, to - from });
}

bool MMJpegScanSplitter::split(const QByteArray &jpeg)
{
    m_jpeg = &jpeg;
    m_ranges[Luma].clear();
    m_ranges[Chroma].clear();
    const auto *b = reinterpret_cast<const unsigned char *>(jpeg.constData());
    const qsizetype n = jpeg.size();
    if (n < 4 || b[0] != 0xFF || b[1] != 0xD8)
        return false;
    int lumaId = -1;
    bool frame = false;
    qsizetype at = 2;
    keep(Luma, 0, 2);
    keep(Chroma, 0, 2);
    for (;;) {
        if (at + 2 > n || b[at] != 0xFF)
            return false;
        const qsizetype start = at;
        while (at + 1 < n && b[at + 1] == 0xFF) // fill bytes before a marker
            ++at;
        if (at + 2 > n)
            return false;
        const int marker = b[at + 1];
        if (marker == JPEG_EOI) {
            keep(Luma, start, at + 2);
            keep(Chroma, start, at + 2);
            return frame;
        }
        if ((marker >= 0xD0 && marker <= 0xD7) || marker == 0x01 || marker == 0x00 || at + 4 > n)
            return false;
        const int length = be16(b, at + 2);
        qsizetype end = at + 2 + length;
        if (length < 2 || end > n)
            return false;
        if (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC) {
            // Only a Huffman-coded progressive frame of three components.
            if (marker != 0xC2 || frame || length < 8 + 3 * 3 || b[at + 9] != 3)
                return false;
            lumaId = b[at + 10];
            frame = true;
        }
        if (marker == 0xDA) {
            if (!frame || length < 6)
                return false;
            const int components = b[at + 4];
            if (components < 1 || components > 4 || length != 6 + 2 * components)
                return false;
            const int spectralStart = b[at + 5 + 2 * components];
            bool luma = false;
            for (int c = 0; c < components; ++c)
                luma = luma || b[at + 5 + 2 * c] == lumaId;
            // The entropy-coded data runs to the first marker that is
            // neither a stuffed byte (FF 00) nor a restart (FF D0..D7).
            while (end + 1 < n && !(b[end] == 0xFF && b[end + 1] != 0x00 && (b[end + 1] < 0xD0 || b[end + 1] > 0xD7)))
                ++end;
            if (end + 1 >= n)
                return false;
            if (spectralStart == 0 || luma)
                keep(Luma, start, end);
            if (spectralStart == 0 || !luma)
                keep(Chroma, start, end);
        } else {
            keep(Luma, start, end);
            keep(Chroma, start, end);
        }
        at = end;
    }
}

void MMJpegScanSplitter::attach(jpeg_decompress_struct *cinfo, Part part)
{
    delete m_sources[part];
    auto *s = m_sources[part] = new Source{};
    s->pub.init_source = initSource;
    s->pub.fill_input_buffer = fillInput;
    s->pub.skip_input_data = skipInput;
    s->pub.resync_to_restart = jpeg_resync_to_restart;
    s->pub.term_source = termSource;
    s->base = reinterpret_cast<const JOCTET *>(m_jpeg->constData());
    s->ranges = m_ranges[part].data();
    s->count = m_ranges[part].size();
    s->part = part;
    s->request = cinfo->mem->request_virt_barray;
    s->access = cinfo->mem->access_virt_barray;
    cinfo->mem->request_virt_barray = requestArray;
    cinfo->mem->access_virt_barray = accessArray;
    cinfo->src = &s->pub;
}

MMJpegScanSplitter::~MMJpegScanSplitter()
{
    for (Source *s : m_sources)
        delete s;
}
