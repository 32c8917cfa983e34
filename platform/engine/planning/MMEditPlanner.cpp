#include "MMEditPlanner.h"
#include "MMCropCommand.h"
#include "MMImageDecoder.h"
#include "MMMirrorCommand.h"
#include "MMResizeCommand.h"
#include "MMRotateCommand.h"
#include <cmath>

namespace {
// The crop as MMCropCommand clips it to a picture of size; empty when it
// keeps nothing.
QRect clippedCrop(const MMRect &r, const QSize &size)
{
    if (r.width <= 0 || r.height <= 0)
        return QRect();
    const qint64 left = qMax<qint64>(r.x, 0), top = qMax<qint64>(r.y, 0);
    const qint64 right = qMin<qint64>(qint64(r.x) + r.width, size.width());
    const qint64 bottom = qMin<qint64>(qint64(r.y) + r.height, size.height());
    if (right <= left || bottom <= top)
        return QRect();
    return QRect(int(left), int(top), int(right - left), int(bottom - top));
}

// The largest DCT scaling that still leaves at least target's pixels and
// whose scaled pixels start where the region does: a region starting inside
// a scaled pixel would come out shifted by a fraction of an output pixel.
int scaleFor(const QRect &region, const QSize &target)
{
    int denom = 8;
    while (denom > 1
           && (qint64(region.width()) < qint64(target.width()) * denom
               || qint64(region.height()) < qint64(target.height()) * denom || region.x() % denom != 0
               || region.y() % denom != 0))
        denom /= 2;
    return denom;
}

// Halves round down: a scaled pixel half inside the region is left out.
int roundDiv(int a, int b) { return (a + (b - 1) / 2) / b; }
}

MMEditPlanner::Plan MMEditPlanner::plan(const QSize &storedSize, const MMOrientation &fileOrientation,
                                        const std::list<MMCommand *> &commands)
{
    Plan plan;
    QRect region(QPoint(0, 0), storedSize);
    MMOrientation orientation = fileOrientation;
    auto it = commands.begin();
    for (; it != commands.end(); ++it) {
        const MMCommand *command = *it;
        if (command->type() == MMCommand::CMD_ROTATE) {
            const int degree = static_cast<const MMRotateCommand *>(command)->getDegree();
            if (degree % 90 != 0)
                return Plan();
            orientation = orientation.then(MMOrientation::rotation(degree));
        } else if (command->type() == MMCommand::CMD_MIRROR) {
            orientation = orientation.then(
                MMOrientation::mirror(static_cast<const MMMirrorCommand *>(command)->getMirrorType()));
        } else if (command->type() == MMCommand::CMD_CROP) {
            const QSize shown = orientation.map(region.size());
            const QRect kept = clippedCrop(static_cast<const MMCropCommand *>(command)->getRect(), shown);
            if (kept.isEmpty())
                return Plan();
            region = orientation.inverted().mapRect(kept, shown).translated(region.topLeft());
        } else {
            break;
        }
    }

    plan.valid = true;
    plan.orientation = orientation;
    plan.decodeRect = region;
    if (it != commands.end() && (*it)->type() == MMCommand::CMD_RESIZE) {
        const MMSize t = static_cast<const MMResizeCommand *>(*it)->getTargetSize();
        // Stored orientation: a transposing orientation swaps back the same way.
        const QSize target = orientation.map(QSize(t.width, t.height));
        const bool shrinks = t.width > 0 && t.height > 0 && qint64(t.width) * t.height <= MMImageDecoder::MaxPixels
            && target.width() <= region.width() && target.height() <= region.height();
        if (shrinks) {
            // DCT scaling only down to twice the target: below that it
            // blurs less than the filter that follows, and aliases.
            const int denom = scaleFor(region, target * 2);
            // A last scaled pixel mostly outside the region is left out; one
            // mostly inside is kept, and what it covers beyond the region is
            // cut off after the resize.
            const int x1 = qMax(roundDiv(region.x() + region.width(), denom), region.x() / denom + 1);
            const int y1 = qMax(roundDiv(region.y() + region.height(), denom), region.y() / denom + 1);
            const int spanW = qMin(x1 * denom, storedSize.width()) - region.x();
            const int spanH = qMin(y1 * denom, storedSize.height()) - region.y();
            const QSize covered(qMax(int(std::lround(double(spanW) * target.width() / region.width())), target.width()),
                                qMax(int(std::lround(double(spanH) * target.height() / region.height())), target.height()));
            plan.scaleDenom = denom;
            plan.decodeRect = QRect(region.x() / denom, region.y() / denom, x1 - region.x() / denom,
                                    y1 - region.y() / denom);
            plan.resizeTo = orientation.map(covered);
            plan.keep = orientation.mapRect(QRect(QPoint(0, 0), target), covered);
            ++it;
        }
    }
    plan.rest.assign(it, commands.end());
    return plan;
}
