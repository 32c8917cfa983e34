#pragma once
#include <cstdint>
#include <thread>
// clang-format off
#include <cstdio>
#include <jpeglib.h>
// clang-format on

// Makes a progressive decompressor keep whole coefficients only for a run
// of iMCU rows, the ones a region's pixels come from. libjpeg keeps every
// block of the picture until the last scan; a block outside the run is
// never turned into pixels, but a later refinement scan reads which of its
// coefficients are already nonzero to know what its bits mean. So such a
// block keeps one bit a coefficient (8 bytes instead of 128), and each
// access to it gets a window rebuilt from those bits. For a region of half
// the picture's rows this halves the decoder's memory.
class MMJpegKeptRows
{
public:
    MMJpegKeptRows() = default;
    MMJpegKeptRows(const MMJpegKeptRows &) = delete;
    MMJpegKeptRows &operator=(const MMJpegKeptRows &) = delete;
    ~MMJpegKeptRows();

    // After jpeg_read_header (and any change of scale), before
    // jpeg_start_decompress; components is a bit mask of the components
    // handled here (the others go to whatever memory manager was installed
    // before). This object must outlive the decompression, and cinfo's
    // client_data is taken. Does nothing for a sequential stream.
    void install(jpeg_decompress_struct *cinfo, unsigned components, int firstIMcuRow, int endIMcuRow);
    // The same for any stream read into coefficient arrays (a lossless
    // cut): a sequential one keeps nothing outside the run (no later scan
    // reads it), and one coded in a single interleaved scan is read no
    // further than the run: reading stops (through cinfo's error_exit,
    // with stopped() set) as soon as the first row below it is asked for.
    void installCut(jpeg_decompress_struct *cinfo, int firstIMcuRow, int endIMcuRow);
    bool stopped() const { return m_stopped; }
    // The array of a component handled here, once libjpeg has asked for it.
    jvirt_barray_ptr array(int component) const;

private:
    struct Array
    {
        jvirt_barray_ptr array;
        JDIMENSION blocksPerRow, rows, maxAccess;
        JDIMENSION keepFirst, keepEnd; // block rows kept whole
        JBLOCKROW kept;                // (keepEnd - keepFirst) rows
        uint64_t *nonzero;             // a bit a coefficient, every row
        JBLOCKARRAY window;            // maxAccess row pointers
        JBLOCKROW windowRows;          // maxAccess rows for the others
        JDIMENSION writtenFirst, writtenCount;
        int writtenSs, writtenSe; // the band of the scan that wrote them
    };
    static jvirt_barray_ptr request(j_common_ptr cinfo, int pool, boolean preZero, JDIMENSION blocksPerRow,
                                    JDIMENSION rows, JDIMENSION maxAccess);
    static JBLOCKARRAY access(j_common_ptr cinfo, jvirt_barray_ptr array, JDIMENSION first, JDIMENSION count,
                              boolean writable);

    void hook(jpeg_decompress_struct *cinfo, unsigned components, int firstIMcuRow, int endIMcuRow);

    bool m_sequential = false;
    bool m_stopAfter = false;
    bool m_stopped = false;
    int m_component[4] = {};
    unsigned m_components = 0;
    int m_requested = 0;
    int m_count = 0;
    int m_firstIMcuRow = 0, m_endIMcuRow = 0;
    int m_vSamp[4] = {};
    Array m_arrays[4] = {};
    decltype(jpeg_memory_mgr::request_virt_barray) m_request = nullptr;
    decltype(jpeg_memory_mgr::access_virt_barray) m_access = nullptr;
    JBLOCKROW m_owned[4] = {};
    size_t m_keptBytes = 0;
    std::thread m_populator;
};
