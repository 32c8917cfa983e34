#pragma once
#include "MMEncodeOptions.h"
#include <QImage>
#include <QString>
#include <functional>

class MMYuvPlanes;

// Writes an image file atomically: into a temporary file beside the target,
// then renamed over it. The format follows the target's extension.
class MMImageWriter
{
public:
    // 0 on success, -1 on failure (the target is then untouched, also
    // when the extension names no format we can write).
    // jpegQuality -1 means our default (high quality).
    static int write(const QImage &image, const QString &path, int jpegQuality = -1);
    static int write(const QImage &image, const QString &path, const MMEncodeOptions &options);
    // The bytes write() would store; empty on failure.
    static QByteArray encode(const QImage &image, const QString &path, const MMEncodeOptions &options);
    // Sample planes as a JPEG at their own subsampling (the options'
    // subsampling is not asked), progressive when the options say so, with
    // the metadata of options.metadataSource. chromaScans, when given,
    // gives the progressive chroma scans of these planes, coded elsewhere
    // (MMJpegProgressiveEncoder::chromaScans). 0 on success, -1 on failure.
    static int write(const MMYuvPlanes &planes, const QString &path, const MMEncodeOptions &options,
                     const std::function<QByteArray()> &chromaScans = nullptr);
};
