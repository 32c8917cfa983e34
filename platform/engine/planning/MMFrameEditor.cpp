#include "MMFrameEditor.h"
#include "MMAtomicFile.h"
#include "MMCommand.h"
#include "MMCropCommand.h"
#include "MMEncodeOptions.h"
#include "MMGifCodec.h"
#include "MMMirrorCommand.h"
#include "MMOrientation.h"
#include "MMResizeCommand.h"
#include "MMRotateCommand.h"
#include "MMWebpCodec.h"
#include <QFile>
#include <QPainter>
#include <cmath>
#include <memory>

namespace {
// Where rect of a canvas of size lands after command, and the new size.
void follow(const MMCommand *command, QRect &rect, QSize &size)
{
    switch (command->type()) {
    case MMCommand::CMD_ROTATE:
    case MMCommand::CMD_MIRROR: {
        const MMOrientation o = command->type() == MMCommand::CMD_ROTATE
            ? MMOrientation::rotation(static_cast<const MMRotateCommand *>(command)->getDegree())
            : MMOrientation::mirror(static_cast<const MMMirrorCommand *>(command)->getMirrorType());
        rect = o.mapRect(rect, size);
        size = o.map(size);
        break;
    }
    case MMCommand::CMD_CROP: {
        const MMRect r = static_cast<const MMCropCommand *>(command)->getRect();
        const QRect kept = QRect(r.x, r.y, r.width, r.height).intersected(QRect(QPoint(0, 0), size));
        rect = rect.intersected(kept).translated(-kept.topLeft());
        size = kept.size();
        break;
    }
    case MMCommand::CMD_RESIZE: {
        const MMSize t = static_cast<const MMResizeCommand *>(command)->getTargetSize();
        const double sx = double(t.width) / size.width(), sy = double(t.height) / size.height();
        // Outward: the smoothing spreads an edge over the pixel beside it.
        const int left = int(std::floor(rect.left() * sx)), top = int(std::floor(rect.top() * sy));
        const int right = int(std::ceil((rect.right() + 1) * sx)), bottom = int(std::ceil((rect.bottom() + 1) * sy));
        size = QSize(t.width, t.height);
        rect = QRect(QPoint(left, top), QPoint(right - 1, bottom - 1)).intersected(QRect(QPoint(0, 0), size));
        break;
    }
    default:
        break; // styles and overlays change pixels, not places
    }
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
}

bool MMFrameEditor::editFrame(MMAnimationFrame &frame, QSize &canvas, const std::list<MMCommand *> &commands)
{
    QImage picture(canvas, QImage::Format_ARGB32);
    if (picture.isNull())
        return false;
    picture.fill(Qt::transparent);
    {
        QPainter painter(&picture);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(frame.offset, frame.image);
    }
    QRect rect = frame.rect();
    QSize size = canvas;
    for (const MMCommand *command : commands) {
        if (command->apply(picture) != 0)
            return false;
        follow(command, rect, size);
    }
    if (picture.size() != size)
        return false;
    canvas = size;
    if (rect.isEmpty()) {
        // Cropped away: a transparent pixel keeps the frame's time.
        frame.image = QImage(1, 1, QImage::Format_ARGB32);
        frame.image.fill(Qt::transparent);
        frame.offset = QPoint(0, 0);
        frame.disposal = MMAnimationFrame::DisposeNone;
        return !frame.image.isNull();
    }
    frame.image = picture.copy(rect).convertToFormat(QImage::Format_ARGB32);
    frame.offset = rect.topLeft();
    return !frame.image.isNull();
}

int MMFrameEditor::run(const QString &in, const QString &out, const QByteArray &format,
                       const std::list<MMCommand *> &commands, const MMEncodeOptions &options)
{
    const QByteArray data = readFile(in);
    if (data.isEmpty() || (format != "gif" && format != "webp"))
        return -1;
    MMAnimation info;
    std::unique_ptr<MMGifCodec::Writer> gif;
    std::unique_ptr<MMWebpCodec::Writer> webp;
    bool failed = false;
    // Frames are edited and encoded one at a time: one canvas in memory.
    const auto sink = [&](MMAnimationFrame &frame) {
        QSize canvas = info.canvas;
        failed = !editFrame(frame, canvas, commands);
        if (failed)
            return false;
        if (format == "gif") {
            if (!gif)
                gif = std::make_unique<MMGifCodec::Writer>(canvas, info.loopCount);
            failed = !gif->addFrame(frame);
            return !failed;
        }
        if (!webp)
            webp = std::make_unique<MMWebpCodec::Writer>(canvas, info.loopCount, options.webpLossless,
                                                        options.webpQuality);
        failed = !webp->addFrame(frame);
        return !failed;
    };
    const bool decoded = format == "gif" ? MMGifCodec::decode(data, info, sink) : MMWebpCodec::decodeFrames(data, info, sink);
    if (!decoded || failed)
        return -1;
    const QByteArray bytes = gif ? gif->finish() : webp ? webp->finish() : QByteArray();
    if (bytes.isEmpty())
        return -1;
    return MMAtomicFile::write(out, bytes);
}
