// Replays a command list read from the input (rotate, mirror, crop, resize,
// effect, overlay, with any parameters) on a small picture, as a save does,
// through the same runner. A run that reports success must have written a
// picture that opens; one that fails must leave the destination untouched.
#include "FuzzScratch.h"
#include "MMGifCodec.h"
#include "MMCommandRunner.h"
#include "MMCropCommand.h"
#include "MMEffectCommand.h"
#include "MMImageDecoder.h"
#include "MMImageHeader.h"
#include "MMImageSource.h"
#include "MMImageWriter.h"
#include "MMMirrorCommand.h"
#include "MMOverlayImageCommand.h"
#include "MMResizeCommand.h"
#include "MMRotateCommand.h"
#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <list>
#include <memory>
#include <vector>

namespace {
// Resizes beyond this only cost time and memory: the limit itself is a
// plain comparison checked by the engine tests.
const qint64 kResizePixels = 2LL * 1000 * 1000;
const int kMaxCommands = 24;

QImage picture(int width, int height, bool alpha)
{
    QImage image(width, height, alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgba(x * 255 / width, y * 255 / height, (x ^ y) & 0xFF, alpha ? (x * 7) & 0xFF : 255));
    return image;
}

// The pictures a list is replayed on: odd sizes (partial JPEG blocks at the
// edges), several formats and subsamplings.
QStringList sources()
{
    static QStringList list;
    if (!list.isEmpty())
        return list;
    struct Made { const char *name; int w, h; bool alpha; MMJpegHeader::Subsampling sub; bool progressive; };
    const Made made[] = {
        { "s420.jpg", 37, 23, false, MMJpegHeader::Sub420, false },
        { "s444p.jpg", 48, 32, false, MMJpegHeader::Sub444, true },
        { "grey.jpg", 17, 40, false, MMJpegHeader::SubGray, false },
        { "alpha.png", 21, 13, true, MMJpegHeader::Sub420, false },
        { "still.gif", 19, 11, true, MMJpegHeader::Sub420, false },
        { "lossy.webp", 23, 17, false, MMJpegHeader::Sub420, false },
    };
    for (const Made &m : made) {
        MMEncodeOptions options;
        options.jpegSubsampling = m.sub;
        options.jpegProgressive = m.progressive;
        QImage image = picture(m.w, m.h, m.alpha);
        if (m.sub == MMJpegHeader::SubGray)
            image = image.convertToFormat(QImage::Format_Grayscale8);
        const QString path = fuzz::scratchPath(QStringLiteral("src-") + QLatin1String(m.name));
        fuzz::require(MMImageWriter::write(image, path, options) == 0);
        list << path;
    }
    // An animation whose frames have their own places, delays and disposal.
    MMGifCodec::Writer gif(QSize(24, 18), 0);
    MMAnimationFrame frame;
    frame.image = picture(24, 18, false);
    frame.delayMs = 100;
    fuzz::require(gif.addFrame(frame));
    frame.image = picture(9, 7, true);
    frame.offset = QPoint(11, 5);
    frame.disposal = MMAnimationFrame::DisposeBackground;
    fuzz::require(gif.addFrame(frame));
    const QString animation = fuzz::scratchPath(QStringLiteral("src-anim.gif"));
    fuzz::require(fuzz::writeFile(animation, gif.finish()));
    list << animation;
    return list;
}

QString element()
{
    static const QString path = [] {
        const QString p = fuzz::scratchPath(QStringLiteral("element.png"));
        fuzz::require(MMImageWriter::write(picture(9, 5, true), p) == 0);
        return p;
    }();
    return path;
}

MMCommand *readCommand(fuzz::Reader &in)
{
    switch (in.byte() % 6) {
    case 0: {
        auto *c = new MMRotateCommand;
        c->setDegree(in.byte() & 1 ? in.number() : 90 * int(int8_t(in.byte())));
        return c;
    }
    case 1: {
        auto *c = new MMMirrorCommand;
        c->setMirrorType(in.byte() & 1);
        return c;
    }
    case 2: {
        auto *c = new MMCropCommand;
        const int x = in.number(), y = in.number(), w = in.number(), h = in.number();
        c->setRect(MMRect(x, y, w, h));
        return c;
    }
    case 3: {
        auto *c = new MMResizeCommand;
        const int w = in.number(), h = in.number();
        if (w > 0 && h > 0 && qint64(w) * h > kResizePixels && qint64(w) * h <= MMImageDecoder::MaxPixels)
            return nullptr;
        c->setTargetSize(MMSize(w, h));
        return c;
    }
    case 4: {
        auto *c = new MMEffectCommand;
        c->setEffect(in.byte() & 0x80 ? in.number() : in.byte() % MMEffectCommand::EFFECT_COUNT);
        return c;
    }
    default: {
        auto *c = new MMOverlayImageCommand;
        MMImageSource image(MMImageSource::SOURCE_ELEMENT);
        image.setFile(in.byte() % 8 ? element().toStdString() : std::string("/nonexistent/element.png"));
        const int x = in.number(), y = in.number(), w = in.number(), h = in.number();
        c->setData(MMRect(x, y, w, h), image);
        return c;
    }
    }
}
}

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::Reader in(data, size);
    const QStringList from = sources();
    const QString sourcePath = from.at(in.byte() % from.size());
    static const char *const kOut[] = { "out.jpg", "out.png", "out.bmp", "out", "out.gif", "out.webp" };
    const QString outPath = fuzz::scratchPath(QLatin1String(kOut[in.byte() % 6]));

    std::vector<std::unique_ptr<MMCommand>> owned;
    std::list<MMCommand *> commands;
    while (!in.atEnd() && int(owned.size()) < kMaxCommands) {
        MMCommand *c = readCommand(in);
        if (!c)
            return -1; // not kept in the corpus
        owned.emplace_back(c);
        commands.push_back(c);
    }

    // A marker file: a failed run must leave it as it was.
    const QByteArray marker("not a picture, must survive a failed run");
    fuzz::require(fuzz::writeFile(outPath, marker));
    MMImageSource source, destination;
    source.setFile(sourcePath.toStdString());
    destination.setFile(outPath.toStdString());
    if (MMCommandRunner::run(source, destination, commands) == 0) {
        fuzz::require(MMImageHeader::read(outPath).isValid());
    } else {
        QFile f(outPath);
        fuzz::require(f.open(QIODevice::ReadOnly) && f.readAll() == marker);
    }
    return 0;
}
