// Opens the input as the editor's working store opens a picture it is
// handed: header, size and orientation, the screen-sized preview (decoded
// at reduced scale and written as the preview copy), and, for pictures small
// enough to keep the fuzzer fast, the full decode a save starts from.
#include "FuzzScratch.h"
#include "MMCommandRunner.h"
#include "MMRotateCommand.h"
#include "MMImageDecoder.h"
#include "MMImageHeader.h"
#include "MMImageInfo.h"
#include "MMImageScaler.h"
#include "MMImageSource.h"
#include <QCoreApplication>

namespace {
const QSize kScreen(240, 320);
// Full decodes above this only cost time: the size checks are the same.
const qint64 kFullDecodePixels = 4LL * 1000 * 1000;
}

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication app(*argc, *argv); // Qt finds its image plugins through it
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // The name does not decide the format (a PNG may be called .jpg): vary
    // it with the size so that every content is also tried under each name.
    static const char *const kNames[] = { "in.jpg", "in.png", "in.bmp", "in" };
    const QString path = fuzz::scratchPath(QLatin1String(kNames[size % 4]));
    if (!fuzz::writeFile(path, QByteArray(reinterpret_cast<const char *>(data), int(size))))
        return 0;

    MMImageSource source;
    source.setFile(path.toStdString());
    MMImageInfo info;
    const bool known = source.getImageInfo(info) == 0;
    const MMImageHeader header = MMImageHeader::read(path);
    fuzz::require(known == header.isValid());
    if (!known) {
        fuzz::require(info.width == 0 && info.height == 0);
        return 0;
    }
    fuzz::require(MMImageHeader::isAcceptableSize(header.storedSize()));
    fuzz::require(QSize(info.width, info.height) == header.uprightSize());

    const QImage shown = MMImageDecoder::decodeFitting(path, kScreen);
    if (!shown.isNull())
        fuzz::require(shown.width() <= kScreen.width() && shown.height() <= kScreen.height());

    const QSize preview = header.uprightSize().scaled(kScreen, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    const QString previewPath = fuzz::scratchPath(QStringLiteral("preview.") + QLatin1String(kNames[size % 3] + 3));
    if (MMImageScaler::scaleFile(path, previewPath, preview) == 0) {
        const MMImageHeader written = MMImageHeader::read(previewPath);
        fuzz::require(written.isValid() && written.uprightSize() == preview);
    }

    const QSize stored = header.storedSize();
    if (qint64(stored.width()) * stored.height() <= kFullDecodePixels) {
        const QImage full = MMImageDecoder::decode(path);
        if (!full.isNull())
            fuzz::require(full.size() == header.uprightSize());
    }
    // An animation is saved frame by frame: turn it, and what is written
    // must be an animation of as many frames, turned.
    if (header.frames() > 1 && qint64(stored.width()) * stored.height() * header.frames() <= kFullDecodePixels) {
        MMRotateCommand turn;
        turn.setDegree(90);
        const QString out = fuzz::scratchPath(QStringLiteral("turned.") + QString::fromLatin1(header.qtFormat()));
        MMImageSource destination;
        destination.setFile(out.toStdString());
        if (MMCommandRunner::run(source, destination, {&turn}) == 0) {
            const MMImageHeader written = MMImageHeader::read(out);
            fuzz::require(written.isValid() && written.frames() == header.frames()
                          && written.uprightSize() == header.uprightSize().transposed());
        }
    }
    return 0;
}
