#pragma once
// Helpers for the engine tests: small pictures with known pixels, files,
// and the reference tools (ImageMagick, libjpeg-turbo's programs, exiftool)
// that results are checked against.
#include "MMCommandRunner.h"
#include "MMCropCommand.h"
#include "MMEffectCommand.h"
#include "MMImageSource.h"
#include "MMMirrorCommand.h"
#include "MMOverlayImageCommand.h"
#include "MMResizeCommand.h"
#include "MMRotateCommand.h"
#include "testimages.h"
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <algorithm>
#include <list>

namespace EngineTestTools {

// A distinct colour for each letter, so that pictures can be written as
// rows of letters ("ABC/DEF").
inline QRgb letterColour(char letter)
{
    const int i = letter - 'A';
    return qRgb(20 + 37 * i % 230, 200 - 23 * i % 180, 40 + 61 * i % 210);
}

inline QImage fromLetters(const QString &rows)
{
    const QStringList lines = rows.split('/');
    QImage image(int(lines.first().size()), int(lines.size()), QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, letterColour(lines[y][x].toLatin1()));
    return image;
}

// The letters of a picture made by fromLetters with each letter grown to a
// block (and maybe JPEG-compressed): the nearest letter colour at each block
// centre, '?' where none is near. Single pixels must match exactly.
inline QString toLetters(const QImage &image, int block = 1)
{
    QString rows;
    for (int y = block / 2; y < image.height(); y += block) {
        if (!rows.isEmpty())
            rows += '/';
        for (int x = block / 2; x < image.width(); x += block) {
            char best = '?';
            int bestDistance = block > 1 ? 60 : 1;
            for (char c = 'A'; c <= 'L'; ++c) {
                const QRgb p = image.pixel(x, y), q = letterColour(c);
                const int d = qAbs(qRed(p) - qRed(q)) + qAbs(qGreen(p) - qGreen(q)) + qAbs(qBlue(p) - qBlue(q));
                if (d < bestDistance) {
                    bestDistance = d;
                    best = c;
                }
            }
            rows += QChar(best);
        }
    }
    return rows;
}

// A smooth picture (gradients and a coarse checkerboard) that JPEG
// compresses well and in which every turn or shift shows.
inline QImage photo(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(255 * x / (width - 1), 255 * y / (height - 1), (x / 16 + y / 16) % 2 ? 200 : 60));
    return image;
}

using testimages::bytes;
using testimages::writeBytes;

inline MMImageSource source(const QString &path, MMImageSource::ImageSourceType type = MMImageSource::SOURCE_FILE)
{
    MMImageSource s(type);
    s.setFile(path.toStdString());
    return s;
}


// Runs a reference tool; true when it exits with 0. Its stdout goes to out.
inline bool run(const QString &program, const QStringList &args, QByteArray *out = nullptr)
{
    QProcess p;
    p.start(program, args);
    const bool ok = p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    if (out)
        *out = p.readAllStandardOutput();
    return ok;
}

// Of two same-sized pictures: the mean absolute difference per channel
// (red, green, blue, and alpha when asked).
inline double meanDifference(const QImage &a, const QImage &b, bool alpha = false)
{
    qint64 sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            sum += qAbs(qRed(p) - qRed(q)) + qAbs(qGreen(p) - qGreen(q)) + qAbs(qBlue(p) - qBlue(q))
                + (alpha ? qAbs(qAlpha(p) - qAlpha(q)) : 0);
        }
    return double(sum) / ((alpha ? 4.0 : 3.0) * a.width() * a.height());
}

// Of two same-sized pictures: the largest difference of any channel of any
// pixel.
inline int maxDifference(const QImage &a, const QImage &b)
{
    int worst = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            worst = qMax(worst, qMax(qAbs(qRed(p) - qRed(q)), qMax(qAbs(qGreen(p) - qGreen(q)), qAbs(qBlue(p) - qBlue(q)))));
        }
    return worst;
}

// Pixels of a JPEG as libjpeg's own djpeg decodes them (EXIF ignored).
inline QImage djpeg(const QString &path)
{
    QByteArray ppm;
    return run("djpeg", { "-pnm", path }, &ppm) ? QImage::fromData(ppm).convertToFormat(QImage::Format_RGB32) : QImage();
}

} // namespace EngineTestTools

// Owns a command list the way the editor does.
struct CommandList
{
    ~CommandList() { for (MMCommand *c : list) delete c; }
    template <typename T> T *add() { T *c = new T; list.push_back(c); return c; }
    std::list<MMCommand *> list;
};

// Builds a command list from a short text: "r90" rotate, "mh"/"mv" mirror,
// "c1,2,3,4" crop, "s40,30" resize, "e2" effect ("e8:10,-20,30" adjust:
// brightness, contrast, saturation), "o1,2,3,4,name.png" overlay of a file
// in dir; separated by blanks.
inline void parseCommands(const QString &text, CommandList &commands, const QString &dir = QString())
{
    for (const QString &word : text.split(' ', Qt::SkipEmptyParts)) {
        const QString arg = word.mid(1);
        const QStringList n = arg.split(',');
        const MMRect rect = n.size() >= 4 ? MMRect(n[0].toInt(), n[1].toInt(), n[2].toInt(), n[3].toInt()) : MMRect();
        switch (word[0].toLatin1()) {
        case 'r': commands.add<MMRotateCommand>()->setDegree(arg.toInt()); break;
        case 'm': commands.add<MMMirrorCommand>()->setMirrorType(arg == "h"); break;
        case 'c': commands.add<MMCropCommand>()->setRect(rect); break;
        case 's': commands.add<MMResizeCommand>()->setTargetSize(MMSize(n[0].toInt(), n.value(1).toInt())); break;
        case 'e': {
            auto *effect = commands.add<MMEffectCommand>();
            const QStringList v = arg.section(':', 1).split(',');
            effect->setEffect(arg.section(':', 0, 0).toInt());
            effect->setAdjustment({v.value(0).toInt(), v.value(1).toInt(), v.value(2).toInt()});
            break;
        }
        case 'o':
            commands.add<MMOverlayImageCommand>()->setData(
                rect, EngineTestTools::source(dir + '/' + n.value(4), MMImageSource::SOURCE_ELEMENT));
            break;
        default: break;
        }
    }
}

// Applies the commands to an image in memory, as the runner does; false as
// soon as one refuses.
inline bool applyAll(const CommandList &commands, QImage &image)
{
    return std::all_of(commands.list.begin(), commands.list.end(), [&](const MMCommand *c) { return c->apply(image) == 0; });
}

// Runs the commands written as for parseCommands on file in, writing out,
// as the editor's save does; the runner's result.
inline int runCommands(const QString &in, const QString &out, const QString &commands, const QString &dir = QString())
{
    CommandList list;
    parseCommands(commands, list, dir);
    return MMCommandRunner::run(EngineTestTools::source(in), EngineTestTools::source(out), list.list);
}
