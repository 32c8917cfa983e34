#pragma once
#include "MMJpegHeader.h"
#include <QImage>
#include <QSize>
#include <cstdlib>
#include <memory>

// A picture as JPEG codes it: Y, Cb and Cr planes at their own sampling (Y
// alone when grey), one byte a sample, each plane's rows packed one after
// another, laid out as TurboJPEG takes and gives them. A turn or flip of a
// JPEG can work on these and keep the file's own chroma samples: no
// upsampling, colour conversion or downsampling, and a third to a half of the
// memory of an RGB frame.
class MMYuvPlanes
{
public:
    MMYuvPlanes() = default;
    // Uninitialised planes for a picture of size; null when the sides are
    // out of range or memory runs out. SubGray has one plane, the others
    // three; Sub411 is not offered.
    MMYuvPlanes(const QSize &size, MMJpegHeader::Subsampling subsampling);

    bool isNull() const { return !m_data; }
    QSize size() const { return m_size; }
    MMJpegHeader::Subsampling subsampling() const { return m_subsampling; }
    int count() const { return m_subsampling == MMJpegHeader::SubGray ? 1 : 3; }
    // A plane's width is its stride.
    QSize planeSize(int i) const { return m_planeSize[i]; }
    unsigned char *plane(int i) { return m_data.get() + m_offset[i]; }
    const unsigned char *plane(int i) const { return m_data.get() + m_offset[i]; }
    // Luma samples a chroma sample covers, across and down.
    int chromaWidth() const;
    int chromaHeight() const;

    // A small RGB picture of the planes, fitting bound: each pixel the mean
    // of a grid of samples over its area (enough for a thumbnail).
    QImage preview(const QSize &bound) const;

private:
    struct Free
    {
        void operator()(unsigned char *p) const { std::free(p); }
    };
    std::unique_ptr<unsigned char, Free> m_data;
    QSize m_size;
    MMJpegHeader::Subsampling m_subsampling = MMJpegHeader::SubGray;
    QSize m_planeSize[3];
    size_t m_offset[3] = {};
};
