#include "MMCommandRunner.h"
#include "MMAtomicFile.h"
#include "MMCommand.h"
#include "MMEditPlanner.h"
#include "MMFrameEditor.h"
#include "MMHeifCodec.h"
#include "MMFileFormat.h"
#include "MMImageDecoder.h"
#include "MMImageHeader.h"
#include "MMImageSource.h"
#include "MMImageWriter.h"
#include "MMJpegCodec.h"
#include "MMJpegLosslessCrop.h"
#include "MMJpegPlaneDecoder.h"
#include "MMJpegProgressiveEncoder.h"
#include "MMJpegRegionDecoder.h"
#include "MMMetadata.h"
#include "MMMirrorCommand.h"
#include "MMPngCodec.h"
#include "MMRotateCommand.h"
#include "MMRunProgress.h"
#include "MMYuvPlanes.h"
#include <QFile>
#include <functional>
#include <future>
#include <malloc.h>
#include <sys/stat.h>

namespace {
// Where a save's steps end, in permille of the whole (MMRunProgress): the
// decode takes most of the time, then the encode; the write is quick.
const int kRead = 20, kDecoded = 600, kEdited = 650, kWriting = 950, kDone = 1000;

bool isSameFile(const QString &a, const QString &b)
{
    struct stat sa, sb;
    if (::stat(QFile::encodeName(a).constData(), &sa) != 0 || ::stat(QFile::encodeName(b).constData(), &sb) != 0)
        return false;
    return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
}

// The single turn or flip that a list of rotations and mirrors amounts to;
// false when the list holds anything else.
bool composeGeometry(const std::list<MMCommand *> &commands, MMOrientation &result)
{
    MMOrientation total;
    for (const MMCommand *command : commands) {
        if (command->type() == MMCommand::CMD_ROTATE) {
            const int degree = static_cast<const MMRotateCommand *>(command)->getDegree();
            if (degree % 90 != 0)
                return false;
            total = total.then(MMOrientation::rotation(degree));
        } else if (command->type() == MMCommand::CMD_MIRROR) {
            total = total.then(MMOrientation::mirror(static_cast<const MMMirrorCommand *>(command)->getMirrorType()));
        } else {
            return false;
        }
    }
    result = total;
    return true;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

// Writes a stream made without loss from the source's coefficients, its
// copied metadata fixed for the new size and orientation. When that cannot
// be fixed, a stale orientation would turn the picture again: bare() then
// gives the same stream without the copied markers, and the metadata is
// carried over afresh. 0, -1 when bare() fails, -2 when the write fails
// or the save is cancelled.
int writeLossless(const QString &in, const QString &out, QByteArray made, const QSize &size,
                  const std::function<QByteArray()> &bare, MMRunProgress *progress)
{
    const auto picture = [&made] { return MMMetadata::thumbnailSource(made); };
    QByteArray result = MMMetadata::normalize(made, size, picture);
    if (result.isEmpty()) {
        made = bare();
        if (made.isEmpty())
            return -1;
        result = MMMetadata::transplant(in, made, size, picture, true);
        if (result.isEmpty())
            result = made;
    }
    if (progress) {
        progress->reach(kWriting);
        if (progress->isCancelled())
            return -2;
    }
    return MMAtomicFile::write(out, result) == 0 ? 0 : -2;
}

// Turns a JPEG by moving its DCT coefficients: no loss, and the markers are
// kept. -1 when the size does not allow a perfect transform (or the stream
// will not transform), so the caller decodes instead.
int runLossless(const QString &in, const QByteArray &source, const QString &out, const MMImageHeader &header,
                const MMOrientation &edits, MMRunProgress *progress)
{
    if (source.isEmpty())
        return -1;
    // The stored pixels are first turned upright, then edited.
    const MMOrientation total = header.orientation().then(edits);
    const bool progressive = header.jpeg().isProgressive();
    const QByteArray turned = MMJpegCodec::transform(source, total, true, progressive);
    if (turned.isEmpty())
        return -1;
    return writeLossless(in, out, turned, edits.map(header.uprightSize()),
                         [&] { return MMJpegCodec::transform(source, total, false, progressive); }, progress);
}

// Cuts a JPEG by copying the coefficients of the kept blocks, then turns
// the cut without loss when the plan turns it too (and its size allows).
// The same return values as runLossless.
int runLosslessCut(const QString &in, const QByteArray &source, const QString &out, const MMImageHeader &header,
                   const MMEditPlanner::Plan &plan, MMRunProgress *progress)
{
    if (source.isEmpty())
        return -1;
    const bool progressive = header.jpeg().isProgressive();
    const auto make = [&](bool keepMarkers) {
        const QByteArray cut = MMJpegLosslessCrop::crop(source, plan.decodeRect, keepMarkers);
        if (cut.isEmpty() || plan.orientation.isIdentity())
            return cut;
        return MMJpegCodec::transform(cut, plan.orientation, keepMarkers, progressive);
    };
    const QByteArray made = make(true);
    if (made.isEmpty())
        return -1;
    return writeLossless(in, out, made, plan.orientation.map(plan.decodeRect.size()), [&] { return make(false); },
                         progress);
}

MMEncodeOptions encodeOptions(const MMImageHeader &header, const QByteArray &format, const QString &in)
{
    MMEncodeOptions options;
    options.format = format;
    options.metadataSource = in;
    // A WebP stays lossless or lossy as it was; other pictures turned into
    // WebP keep every pixel unless they were JPEG photos.
    options.webpLossless = header.format() == MM_FORMAT_WEBP ? header.isLossless() : header.format() != MM_FORMAT_JPEG;
    if (format == "heif" && header.format() == MM_FORMAT_HEIF)
        options.heifExif = MMHeifCodec::exif(readFile(in));
    if (header.format() == MM_FORMAT_JPEG) {
        const MMJpegHeader &jpeg = header.jpeg();
        const int quality = jpeg.estimatedQuality();
        if (quality > 0)
            options.jpegQuality = quality;
        options.jpegSubsampling = jpeg.subsampling();
        options.jpegProgressive = jpeg.isProgressive();
        // A CMYK profile does not describe the RGB we write.
        options.keepIccProfile = jpeg.components() == 3 || jpeg.components() == 1;
    }
    return options;
}

// A PNG saved as PNG: decoded at its own depth, edited, and written a row
// at a time in its own colour type and depth, with its colour and text
// chunks.
int runPng(const QString &in, const QString &out, const std::list<MMCommand *> &commands)
{
    MMPngCodec::Chunks chunks;
    QImage image = MMPngCodec::decode(readFile(in), &chunks);
    if (image.isNull())
        return -1;
    for (const MMCommand *command : commands) {
        if (command->apply(image) != 0)
            return -1;
    }
    const QByteArray bytes = MMPngCodec::encode(image, chunks);
    return bytes.isEmpty() ? -1 : MMAtomicFile::write(out, bytes);
}

// Below this many pixels decoding to RGB is as quick as to planes.
const qint64 kPlanesPixels = 1 << 20;

// A large JPEG only turned or flipped is turned in its own YCbCr planes and
// re-encoded from them: no colour conversion or chroma resampling either
// way, a smaller frame, and the file's own chroma kept. A progressive one
// is re-encoded progressive. -1 on failure, 1 when the stream does not suit
// (nothing done).
int runPlanes(QByteArray &source, const QString &out, const MMImageHeader &header,
              const MMEditPlanner::Plan &plan, const MMEncodeOptions &options, MMRunProgress *progress)
{
    const QSize stored = header.storedSize();
    if (!plan.rest.empty() || plan.resizeTo.isValid() || plan.scaleDenom != 1
        || plan.decodeRect != QRect(QPoint(0, 0), stored) || qint64(stored.width()) * stored.height() < kPlanesPixels
        || (header.jpeg().buffersWholePicture() && !(header.jpeg().isProgressive() && options.jpegProgressive)))
        return 1;
    MMYuvPlanes planes;
    // A progressive picture decoded as luma and chroma apart has its chroma
    // whole well before luma: chroma's scans are coded from then on, while
    // luma is still decoded and then coded. They wait for the stream to
    // have been read whole and freed, so that their encoder's memory is not
    // held beside the file's and luma's every coefficient at once.
    std::promise<bool> chromaWhole, streamRead;
    bool signalled = false, read = false;
    std::future<QByteArray> chroma;
    MMJpegPlaneDecoder::ChromaDone chromaDone;
    if (options.jpegProgressive) {
        chroma = std::async(std::launch::async, [&planes, &options, whole = chromaWhole.get_future(),
                                                 freed = streamRead.get_future()]() mutable {
            return whole.get() && freed.get()
                ? MMJpegProgressiveEncoder::chromaScans(planes, qBound(1, options.jpegQuality, 100))
                : QByteArray();
        });
        chromaDone = [&](const MMYuvPlanes &) {
            signalled = true;
            chromaWhole.set_value(true);
        };
    }
    if (progress)
        progress->beginStep(kRead, kDecoded);
    const MMJpegPlaneDecoder::Result result
        = MMJpegPlaneDecoder::decode(source, plan.orientation, &planes, chromaDone, [&] {
              source = QByteArray();
              read = true;
              if (chroma.valid())
                  streamRead.set_value(true);
          }, progress);
    if (chroma.valid() && !signalled)
        chromaWhole.set_value(false);
    if (chroma.valid() && !read)
        streamRead.set_value(false);
    if (result != MMJpegPlaneDecoder::Decoded) {
        if (chroma.valid())
            chroma.wait(); // it may be reading the planes
        return result == MMJpegPlaneDecoder::Unsuited ? 1 : -1;
    }
    source = QByteArray(); // not held through the encode
#ifdef __GLIBC__
    // Freed blocks of tens of MB stay in glibc's heap unless given back,
    // and the encoders' buffers come next.
    malloc_trim(0);
#endif
    std::function<QByteArray()> chromaScans;
    if (signalled)
        chromaScans = [&chroma] { return chroma.get(); };
    if (progress && progress->isCancelled()) {
        if (chroma.valid())
            chroma.wait();
        return -1;
    }
    return MMImageWriter::write(planes, out, options, chromaScans);
}

// Replays a plan on a 1- or 3-component JPEG: only the needed part is
// decoded, already turned. A null image when the plan cannot be replayed.
// The source is freed as soon as it has been read.
QImage decodePlanned(QByteArray &source, const MMImageHeader &header, const MMEditPlanner::Plan &plan, bool toJpeg,
                     MMRunProgress *progress)
{
    // Three bytes a pixel when nothing but the encoder will read them.
    const bool packed = toJpeg && plan.rest.empty();
    QImage image = MMJpegRegionDecoder::decode(source, header.storedSize(), plan.scaleDenom, plan.decodeRect,
                                               plan.orientation, packed ? QImage::Format_RGB888 : QImage::Format_RGB32,
                                               plan.resizeTo, [&source] { source = QByteArray(); }, progress);
    source = QByteArray();
    if (image.isNull() || !plan.resizeTo.isValid())
        return image;
    return image.rect() == plan.keep ? image : image.copy(plan.keep);
}
}

int MMCommandRunner::run(const MMImageSource &source, const MMImageSource &destination,
                         const std::list<MMCommand *> &commands)
{
    return run(source, destination, commands, nullptr);
}

int MMCommandRunner::run(const MMImageSource &source, const MMImageSource &destination,
                         const std::list<MMCommand *> &commands, MMRunProgress *progress)
{
    // Between steps: stopped when cancelled, else at least at value.
    const auto going = [progress](int value) {
        if (!progress)
            return true;
        progress->reach(value);
        return !progress->isCancelled();
    };
    if (!going(0))
        return -1;
    // Once the destination is written the save is done, cancelled or not.
    const auto done = [progress](int result) {
        if (result == 0 && progress)
            progress->reach(kDone);
        return result == 0 ? 0 : -1;
    };
    const QString in = QString::fromStdString(source.getFileName());
    const QString out = QString::fromStdString(destination.getFileName());
    if (in.isEmpty() || out.isEmpty())
        return -1;
    for (const MMCommand *command : commands) {
        if (!command)
            return -1;
    }
    const MMImageHeader header = MMImageHeader::read(in);
    if (!header.isValid())
        return -1;
    // Written over itself a picture keeps its own format, whatever its name
    // says; a format we cannot write fails here, before any work.
    const QByteArray format = MMFileFormat::forOutput(out, header.qtFormat(), isSameFile(in, out));
    if (format.isEmpty())
        return -1;
    const bool sameFormat = format == header.qtFormat();

    MMOrientation edits;
    const bool geometryOnly = composeGeometry(commands, edits);
    if (geometryOnly && edits.isIdentity() && sameFormat) {
        // The picture does not change: keep the file's bytes as they are.
        if (isSameFile(in, out))
            return 0;
        const QByteArray bytes = readFile(in);
        return bytes.isEmpty() ? -1 : MMAtomicFile::write(out, bytes);
    }
    if (header.frames() > 1 && sameFormat)
        return MMFrameEditor::run(in, out, format, commands, encodeOptions(header, format, in));
    // A JPEG is read once, whether it is then turned losslessly or decoded.
    QByteArray jpegBytes;
    if (header.format() == MM_FORMAT_JPEG)
        jpegBytes = readFile(in);
    if (geometryOnly && sameFormat && header.format() == MM_FORMAT_JPEG) {
        if (!going(kRead))
            return -1;
        const int lossless = runLossless(in, jpegBytes, out, header, edits, progress);
        if (lossless == 0)
            return done(0);
        if (lossless == -2)
            return -1; // transformed, but the write failed; a re-encode would fail the same way
    }

    const int components = header.jpeg().components();
    if (header.format() == MM_FORMAT_JPEG && (components == 1 || components == 3)) {
        const MMEditPlanner::Plan plan = MMEditPlanner::plan(header.storedSize(), header.orientation(), commands);
        if (sameFormat && plan.isCut(header.storedSize())) {
            if (!going(kRead))
                return -1;
            const int lossless = runLosslessCut(in, jpegBytes, out, header, plan, progress);
            if (lossless != -1)
                return done(lossless);
        }
        if (plan.valid && format == "jpeg") {
            if (!going(kRead))
                return -1;
            const int planes = runPlanes(jpegBytes, out, header, plan, encodeOptions(header, format, in), progress);
            if (planes != 1)
                return done(planes);
        }
        if (plan.valid) {
            if (progress)
                progress->beginStep(kRead, kDecoded);
            QImage image = decodePlanned(jpegBytes, header, plan, format == "jpeg", progress);
            if (image.isNull() || !going(kDecoded))
                return -1;
            for (const MMCommand *command : plan.rest) {
                if (command->apply(image) != 0)
                    return -1;
            }
            if (!going(kEdited))
                return -1;
            return done(MMImageWriter::write(image, out, encodeOptions(header, format, in)));
        }
    }

    jpegBytes = QByteArray();
    if (header.format() == MM_FORMAT_PNG && format == "png")
        return runPng(in, out, commands);
    QImage image = MMImageDecoder::decode(in);
    if (image.isNull() || !going(kDecoded))
        return -1;
    if (image.depth() != 32 && image.format() != QImage::Format_Grayscale8)
        image = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    for (const MMCommand *command : commands) {
        if (command->apply(image) != 0)
            return -1;
    }
    if (!going(kEdited))
        return -1;
    return done(MMImageWriter::write(image, out, encodeOptions(header, format, in)));
}
