#pragma once
#include <QSize>
#include <QString>
#include <QtGlobal>

class QIODevice;

// What the markers before a JPEG's first scan say: frame size, components
// and their sampling, the quantisation tables and the EXIF orientation.
// Parsed by hand so that nothing is decoded and every length is checked.
class MMJpegHeader
{
public:
    // Same values as TurboJPEG's TJSAMP_*.
    enum Subsampling { Sub444 = 0, Sub422, Sub420, SubGray, Sub440, Sub411 };

    // Reads from the start of device up to the first scan. False when it is
    // not a JPEG stream or its header is damaged.
    bool read(QIODevice &device);
    // True when the stream of the file at path runs to its end marker: a
    // file cut short (an interrupted copy) decodes as grey without an error
    // in libjpeg, so it must be caught before decoding.
    static bool isComplete(const QString &path);

    int width() const { return m_width; }
    int height() const { return m_height; }
    int components() const { return m_components; }
    bool isProgressive() const { return m_progressive; }
    // True when libjpeg must keep every coefficient of the picture until
    // the end: progressive files, and sequential ones whose first scan
    // leaves components for later scans.
    bool buffersWholePicture() const { return m_progressive || m_firstScanComponents < m_components; }
    // EXIF orientation of the stored pixels, 1 to 8 (1 when absent or odd).
    int orientation() const { return m_orientation; }
    Subsampling subsampling() const;
    // Luma samples a chroma sample spans across and down, as EXIF records
    // them ((2, 1) for 4:2:2, (1, 2) for 4:4:0); invalid when the frame has
    // no chroma, or chroma factors that differ or do not divide luma's.
    QSize chromaSampling() const;
    // The same for a frame our encoders write at subsampling.
    static QSize chromaSampling(Subsampling subsampling);
    // The IJG quality (1..100) whose luminance table is closest to this
    // file's; -1 when the file has no such table.
    int estimatedQuality() const;

private:
    bool readFrame(const QByteArray &payload, bool progressive);
    bool readQuantTables(const QByteArray &payload);
    void readExifOrientation(const QByteArray &payload);

    int m_width = 0;
    int m_height = 0;
    int m_components = 0;
    bool m_progressive = false;
    int m_firstScanComponents = 0;
    int m_orientation = 1;
    bool m_orientationSeen = false;
    int m_hSampling[4] = {};
    int m_vSampling[4] = {};
    int m_quantIndex[4] = {};
    // Natural (row-major) order.
    quint16 m_quant[4][64] = {};
    bool m_quantSeen[4] = {};
    bool m_quantWide[4] = {};
};
