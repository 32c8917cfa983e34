#pragma once
#include <QByteArray>
#include <vector>

struct jpeg_decompress_struct;

// Cuts a progressive YCbCr JPEG into two streams that two decoders can read
// at once: one with the headers, the DC scans and luma's AC scans, the other
// with the headers, the DC scans and chroma's AC scans. Each is a valid JPEG
// whose own components come out exactly as from the whole stream, so one
// decoder gives luma and the other chroma. Nothing is copied: a decoder reads
// its part's byte ranges of the original through its own source, and holds
// the coefficients of its own components only, so the two together hold
// what one decoder of the whole stream would.
class MMJpegScanSplitter
{
public:
    enum Part { Luma = 0, Chroma = 1 };
    struct Range
    {
        qsizetype from;
        qsizetype size;
    };
    struct Source;

    MMJpegScanSplitter() = default;
    MMJpegScanSplitter(const MMJpegScanSplitter &) = delete;
    MMJpegScanSplitter &operator=(const MMJpegScanSplitter &) = delete;
    ~MMJpegScanSplitter();

    // False when the stream is not progressive with three components, or
    // not laid out as plainly as expected (the caller then decodes it whole).
    bool split(const QByteArray &jpeg);
    // Makes cinfo read part's stream; the splitter and the bytes given to
    // split() must outlive the decompression. The two parts may be attached
    // and read on two threads at once. Attach a decompressor once, before
    // jpeg_start_decompress: the other part's components are then not
    // reconstructed, only read past (ask for them to be left out of the
    // output, or ignore what comes out for them).
    void attach(jpeg_decompress_struct *cinfo, Part part);

private:
    void keep(Part part, qsizetype from, qsizetype to);

    const QByteArray *m_jpeg = nullptr;
    std::vector<Range> m_ranges[2];
    Source *m_sources[2] = {};
};
