#include "MMJpegKeptRows.h"
#include "MMPagePopulator.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>
// clang-format off
#include <jerror.h>
// clang-format on

namespace {
// Below this a second thread costs more than the page faults it saves.
const size_t kPopulateBytes = size_t(4) << 20;
}

MMJpegKeptRows::~MMJpegKeptRows()
{
    if (m_populator.joinable())
        m_populator.join();
    for (JBLOCKROW p : m_owned)
        std::free(p);
}

void MMJpegKeptRows::install(jpeg_decompress_struct *cinfo, unsigned components, int firstIMcuRow, int endIMcuRow)
{
    if (cinfo->progressive_mode)
        hook(cinfo, components, firstIMcuRow, endIMcuRow);
}

void MMJpegKeptRows::installCut(jpeg_decompress_struct *cinfo, int firstIMcuRow, int endIMcuRow)
{
    m_sequential = !cinfo->progressive_mode;
    m_stopAfter = m_sequential && cinfo->comps_in_scan == cinfo->num_components;
    hook(cinfo, (1u << cinfo->num_components) - 1, firstIMcuRow, endIMcuRow);
}

jvirt_barray_ptr MMJpegKeptRows::array(int component) const
{
    for (int i = 0; i < m_count; ++i) {
        if (m_component[i] == component)
            return m_arrays[i].array;
    }
    return nullptr;
}

void MMJpegKeptRows::hook(jpeg_decompress_struct *cinfo, unsigned components, int firstIMcuRow, int endIMcuRow)
{
    if (cinfo->num_components > 4)
        return;
    m_components = components;
    m_firstIMcuRow = firstIMcuRow;
    m_endIMcuRow = endIMcuRow;
    for (int c = 0; c < cinfo->num_components; ++c)
        m_vSamp[c] = cinfo->comp_info[c].v_samp_factor;
    cinfo->client_data = this;
    m_request = cinfo->mem->request_virt_barray;
    m_access = cinfo->mem->access_virt_barray;
    cinfo->mem->request_virt_barray = request;
    cinfo->mem->access_virt_barray = access;
}

jvirt_barray_ptr MMJpegKeptRows::request(j_common_ptr cinfo, int pool, boolean preZero, JDIMENSION blocksPerRow,
                                         JDIMENSION rows, JDIMENSION maxAccess)
{
    auto *k = static_cast<MMJpegKeptRows *>(cinfo->client_data);
    // libjpeg asks for one array a component, in component order.
    const int component = k->m_requested++;
    if (component >= 4 || !(k->m_components & (1u << component)))
        return k->m_request(cinfo, pool, preZero, blocksPerRow, rows, maxAccess);
    k->m_component[k->m_count] = component;
    Array &a = k->m_arrays[k->m_count++];
    // A real array of a few rows keeps libjpeg's bookkeeping as it is; it
    // is never accessed.
    a.array = k->m_request(cinfo, pool, FALSE, blocksPerRow, maxAccess, maxAccess);
    a.blocksPerRow = blocksPerRow;
    a.rows = rows;
    a.maxAccess = maxAccess;
    const JDIMENSION v = JDIMENSION(k->m_vSamp[component]);
    a.keepFirst = std::min(rows, JDIMENSION(std::max(k->m_firstIMcuRow, 0)) * v);
    a.keepEnd = std::min(rows, JDIMENSION(std::max(k->m_endIMcuRow, 0)) * v);
    a.keepEnd = std::max(a.keepEnd, a.keepFirst);
    auto *mem = cinfo->mem;
    const size_t keptBytes = size_t(a.keepEnd - a.keepFirst) * blocksPerRow * sizeof(JBLOCK);
    // Zeroed as libjpeg's own arrays are; fresh pages of a large calloc are
    // zero already, so they are not written twice. The idle core maps them
    // in meanwhile, ahead of the decoder, which starts above them.
    a.kept = keptBytes ? static_cast<JBLOCKROW>(std::calloc(1, keptBytes)) : nullptr;
    if (keptBytes && !a.kept)
        ERREXIT1(cinfo, JERR_OUT_OF_MEMORY, 10);
    k->m_owned[k->m_count - 1] = a.kept;
    k->m_keptBytes += keptBytes;
    // A sequential stream never reads a block back while decoding.
    const size_t bitBytes = k->m_sequential ? 0 : size_t(rows) * blocksPerRow * sizeof(uint64_t);
    a.nonzero = bitBytes ? static_cast<uint64_t *>(mem->alloc_large(cinfo, pool, bitBytes)) : nullptr;
    if (bitBytes)
        std::memset(a.nonzero, 0, bitBytes);
    a.window = static_cast<JBLOCKARRAY>(mem->alloc_small(cinfo, pool, maxAccess * sizeof(JBLOCKROW)));
    a.windowRows = static_cast<JBLOCKROW>(mem->alloc_large(cinfo, pool, size_t(maxAccess) * blocksPerRow * sizeof(JBLOCK)));
    a.writtenFirst = a.writtenCount = 0;
    a.writtenSs = a.writtenSe = 0;
    return a.array;
}

namespace {
// Where the k-th coefficient in zigzag order lies in a block.
const int kZigzag[DCTSIZE2] = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
    41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63,
};

// A scan's spectral band [ss, se] (zigzag), as block positions.
struct Band
{
    int at[DCTSIZE2];
    int count = 0;
    uint64_t mask = 0;
    Band(int ss, int se)
    {
        for (int k = std::max(ss, 0); k <= std::min(se, DCTSIZE2 - 1); ++k) {
            at[count++] = kZigzag[k];
            mask |= uint64_t(1) << kZigzag[k];
        }
    }
};
}

JBLOCKARRAY MMJpegKeptRows::access(j_common_ptr cinfo, jvirt_barray_ptr array, JDIMENSION first, JDIMENSION count,
                                   boolean writable)
{
    auto *k = static_cast<MMJpegKeptRows *>(cinfo->client_data);
    if (k->m_keptBytes >= kPopulateBytes && !k->m_populator.joinable()) {
        // Every array is in place by the first access.
        k->m_populator = std::thread([k] {
            for (int i = 0; i < k->m_count; ++i) {
                const Array &a = k->m_arrays[i];
                MMPagePopulator::populate(a.kept, size_t(a.keepEnd - a.keepFirst) * a.blocksPerRow * sizeof(JBLOCK));
            }
        });
    }
    for (int i = 0; i < k->m_count; ++i) {
        Array &a = k->m_arrays[i];
        if (a.array != array)
            continue;
        if (count > a.maxAccess || first + count > a.rows || first + count < first)
            ERREXIT(cinfo, JERR_BAD_VIRTUAL_ACCESS);
        if (k->m_stopAfter && writable && first >= a.keepEnd) {
            // Every row of the run is whole: the rest is not read.
            k->m_stopped = true;
            (*cinfo->err->error_exit)(cinfo);
        }
        if (!a.nonzero) {
            for (JDIMENSION r = 0; r < count; ++r) {
                const JDIMENSION row = first + r;
                a.window[r] = row >= a.keepFirst && row < a.keepEnd ? a.kept + size_t(row - a.keepFirst) * a.blocksPerRow
                                                                    : a.windowRows + size_t(r) * a.blocksPerRow;
            }
            return a.window;
        }
        // What the last access's AC scan may have written to rows not kept
        // whole: which coefficients of its band are nonzero now. DC terms
        // are never read back for their meaning, so DC scans need nothing.
        if (a.writtenCount && a.writtenSs > 0) {
            const Band band(a.writtenSs, a.writtenSe);
            for (JDIMENSION r = 0; r < a.writtenCount; ++r) {
                const JDIMENSION row = a.writtenFirst + r;
                if (row >= a.keepFirst && row < a.keepEnd)
                    continue;
                const JBLOCKROW blocks = a.windowRows + size_t(r) * a.blocksPerRow;
                uint64_t *bits = a.nonzero + size_t(row) * a.blocksPerRow;
                for (JDIMENSION b = 0; b < a.blocksPerRow; ++b) {
                    uint64_t v = bits[b] & ~band.mask;
                    for (int i = 0; i < band.count; ++i)
                        v |= uint64_t(blocks[b][band.at[i]] != 0) << band.at[i];
                    bits[b] = v;
                }
            }
        }
        // The scan about to write: a first AC scan writes only the nonzero
        // terms of its band, so the band starts at zero; a refinement reads
        // which are nonzero. Reads for pixels (not writable) get the window
        // as it is: rows not kept are not shown.
        const auto *d = reinterpret_cast<j_decompress_ptr>(cinfo);
        const bool ac = writable && d->Ss > 0;
        const Band band(ac ? d->Ss : 1, ac ? d->Se : 0);
        for (JDIMENSION r = 0; r < count; ++r) {
            const JDIMENSION row = first + r;
            if (row >= a.keepFirst && row < a.keepEnd) {
                a.window[r] = a.kept + size_t(row - a.keepFirst) * a.blocksPerRow;
                continue;
            }
            const JBLOCKROW blocks = a.windowRows + size_t(r) * a.blocksPerRow;
            const uint64_t *bits = a.nonzero + size_t(row) * a.blocksPerRow;
            const bool refine = d->Ah != 0;
            for (JDIMENSION b = 0; ac && b < a.blocksPerRow; ++b) {
                const uint64_t v = refine ? bits[b] : 0;
                for (int i = 0; i < band.count; ++i)
                    blocks[b][band.at[i]] = JCOEF((v >> band.at[i]) & 1);
            }
            a.window[r] = blocks;
        }
        a.writtenFirst = first;
        a.writtenCount = writable ? count : 0;
        a.writtenSs = ac ? d->Ss : 0;
        a.writtenSe = ac ? d->Se : 0;
        return a.window;
    }
    return k->m_access(cinfo, array, first, count, writable);
}
