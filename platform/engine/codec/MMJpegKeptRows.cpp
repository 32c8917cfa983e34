#include "MMJpegKeptRows.h"
#include <algorithm>
#include <cstring>
// clang-format off
#include <jerror.h>
// clang-format on

void MMJpegKeptRows::install(jpeg_decompress_struct *cinfo, unsigned components, int firstIMcuRow, int endIMcuRow)
{
    if (!cinfo->progressive_mode || cinfo->num_components > 4)
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
    a.kept = keptBytes ? static_cast<JBLOCKROW>(mem->alloc_large(cinfo, pool, keptBytes)) : nullptr;
    if (keptBytes)
        std::memset(a.kept, 0, keptBytes);
    const size_t bitBytes = size_t(rows) * blocksPerRow * sizeof(uint64_t);
    a.nonzero = static_cast<uint64_t *>(mem->alloc_large(cinfo, pool, bitBytes));
    std::memset(a.nonzero, 0, bitBytes);
    a.window = static_cast<JBLOCKARRAY>(mem->alloc_small(cinfo, pool, maxAccess * sizeof(JBLOCKROW)));
    a.windowRows = static_cast<JBLOCKROW>(mem->alloc_large(cinfo, pool, size_t(maxAccess) * blocksPerRow * sizeof(JBLOCK)));
    a.writtenFirst = a.writtenCount = 0;
    return a.array;
}

JBLOCKARRAY MMJpegKeptRows::access(j_common_ptr cinfo, jvirt_barray_ptr array, JDIMENSION first, JDIMENSION count,
                                   boolean writable)
{
    auto *k = static_cast<MMJpegKeptRows *>(cinfo->client_data);
    for (int i = 0; i < k->m_count; ++i) {
        Array &a = k->m_arrays[i];
        if (a.array != array)
            continue;
        if (count > a.maxAccess || first + count > a.rows || first + count < first)
            ERREXIT(cinfo, JERR_BAD_VIRTUAL_ACCESS);
        // What the last access may have written to rows not kept whole:
        // which coefficients are nonzero now.
        for (JDIMENSION r = 0; r < a.writtenCount; ++r) {
            const JDIMENSION row = a.writtenFirst + r;
            if (row >= a.keepFirst && row < a.keepEnd)
                continue;
            const JBLOCKROW blocks = a.windowRows + size_t(r) * a.blocksPerRow;
            uint64_t *bits = a.nonzero + size_t(row) * a.blocksPerRow;
            for (JDIMENSION b = 0; b < a.blocksPerRow; ++b) {
                uint64_t v = 0;
                for (int c = 0; c < DCTSIZE2; ++c)
                    v |= uint64_t(blocks[b][c] != 0) << c;
                bits[b] = v;
            }
        }
        for (JDIMENSION r = 0; r < count; ++r) {
            const JDIMENSION row = first + r;
            if (row >= a.keepFirst && row < a.keepEnd) {
                a.window[r] = a.kept + size_t(row - a.keepFirst) * a.blocksPerRow;
                continue;
            }
            const JBLOCKROW blocks = a.windowRows + size_t(r) * a.blocksPerRow;
            const uint64_t *bits = a.nonzero + size_t(row) * a.blocksPerRow;
            for (JDIMENSION b = 0; b < a.blocksPerRow; ++b) {
                const uint64_t v = bits[b];
                for (int c = 0; c < DCTSIZE2; ++c)
                    blocks[b][c] = JCOEF((v >> c) & 1);
            }
            a.window[r] = blocks;
        }
        a.writtenFirst = first;
        a.writtenCount = writable ? count : 0;
        return a.window;
    }
    return k->m_access(cinfo, array, first, count, writable);
}
