#pragma once
// Helpers for the engine tests: small pictures with known pixels, files,
// and the reference tools (ImageMagick, libjpeg-turbo's programs, exiftool)
// that results are checked against.
#include "MMCropCommand.h"
#include "MMEffectCommand.h"
#include "MMImageSource.h"
#include "MMMirrorCommand.h"
#include "MMOverlayImageCommand.h"
#include "MMResizeCommand.h"
#include "MMRotateCommand.h"
#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <list>
#include <memory>
#include <vector>

class EngineTestTools
{
public:
    // A distinct colour for each letter, so that expected pictures can be
    // written as rows of letters ("ABC/DEF").
    static QRgb letterColour(QChar letter)
    {
        const int i = letter.unicode() - 'A';
        return qRgb(20 + 37 * i % 230, 200 - 23 * i % 180, 40 + 61 * i % 210);
    }

    static QImage fromLetters(const QString &rows, QImage::Format format = QImage::Format_RGB32)
    {
        const QStringList lines = rows.split('/');
        QImage image(int(lines.first().size()), int(lines.size()), format);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, letterColour(lines[y][x]));
        }
        return image;
    }

    // The letters of an image made by fromLetters (or a transform of one);
    // '?' for a colour that is no letter's.
    static QString toLetters(const QImage &image)
    {
        QString rows;
        for (int y = 0; y < image.height(); ++y) {
            if (y)
                rows += '/';
            for (int x = 0; x < image.width(); ++x) {
                QChar found('?');
                for (char c = 'A'; c <= 'Z'; ++c) {
                    if ((image.pixel(x, y) & 0xFFFFFF) == (letterColour(QChar(c)) & 0xFFFFFF))
                        found = QChar(c);
                }
                rows += found;
            }
        }
        return rows;
    }

    // The letters of a picture made of letter blocks (fromLetters scaled up
    // and JPEG-compressed): the nearest letter colour at each block centre.
    static QString blockLetters(const QImage &image, int block)
    {
        QString rows;
        for (int y = block / 2; y < image.height(); y += block) {
            if (!rows.isEmpty())
                rows += '/';
            for (int x = block / 2; x < image.width(); x += block) {
                char best = '?';
                int bestDistance = 60;
                for (char c = 'A'; c <= 'F'; ++c) {
                    const QRgb p = image.pixel(x, y), q = letterColour(QChar(c));
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

    // A picture whose every pixel differs from its neighbours, for
    // comparing transforms on larger sizes.
    static QImage noise(int width, int height, quint32 seed = 1)
    {
        QImage image(width, height, QImage::Format_RGB32);
        quint32 s = seed;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                s = s * 1664525u + 1013904223u;
                image.setPixel(x, y, qRgb(s >> 24, (s >> 16) & 0xFF, (s >> 8) & 0xFF));
            }
        }
        return image;
    }

    // A smooth photo-like picture (gradients and soft shapes) that JPEG
    // compresses well.
    static QImage photo(int width, int height)
    {
        QImage image(width, height, QImage::Format_RGB32);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const int r = 255 * x / qMax(1, width - 1);
                const int g = 255 * y / qMax(1, height - 1);
                const int b = ((x / 16 + y / 16) % 2) ? 200 : 60;
                image.setPixel(x, y, qRgb(r, g, b));
            }
        }
        return image;
    }

    // Pixel comparisons ignore colour-space tags (ImageMagick marks its
    // PNGs as sRGB, Qt leaves them untagged), which QImage::operator==
    // does not.
    static int maxChannelDifference(const QImage &a, const QImage &b)
    {
        if (a.size() != b.size())
            return 256;
        int worst = 0;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x) {
                const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
                worst = qMax(worst, qAbs(qRed(p) - qRed(q)));
                worst = qMax(worst, qAbs(qGreen(p) - qGreen(q)));
                worst = qMax(worst, qAbs(qBlue(p) - qBlue(q)));
            }
        }
        return worst;
    }

    static double meanChannelDifference(const QImage &a, const QImage &b)
    {
        if (a.size() != b.size())
            return 256;
        qint64 sum = 0;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x) {
                const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
                sum += qAbs(qRed(p) - qRed(q)) + qAbs(qGreen(p) - qGreen(q)) + qAbs(qBlue(p) - qBlue(q));
            }
        }
        return double(sum) / (3.0 * a.width() * a.height());
    }

    static QByteArray bytes(const QString &path)
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    static bool writeBytes(const QString &path, const QByteArray &data)
    {
        QFile f(path);
        return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(data) == data.size();
    }

    static MMImageSource source(const QString &path)
    {
        MMImageSource s(MMImageSource::SOURCE_FILE);
        s.setFile(path.toStdString());
        return s;
    }

    static bool hasTool(const QString &name) { return !QStandardPaths::findExecutable(name).isEmpty(); }

    // Runs a reference tool; true when it exits with 0. stdout is returned
    // through out when given.
    static bool run(const QString &program, const QStringList &args, QByteArray *out = nullptr)
    {
        QProcess p;
        p.start(program, args);
        if (!p.waitForFinished(60000))
            return false;
        if (out)
            *out = p.readAllStandardOutput();
        return p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    }

    // Pixels of a JPEG as libjpeg's own djpeg decodes them.
    static QImage djpeg(const QString &path)
    {
        QByteArray ppm;
        if (!run("djpeg", { "-pnm", path }, &ppm))
            return QImage();
        return QImage::fromData(ppm).convertToFormat(QImage::Format_RGB32);
    }

    static QString exifTag(const QString &path, const QString &tag)
    {
        QByteArray out;
        if (!run("exiftool", { "-s3", "-n", "-" + tag, path }, &out))
            return QString();
        return QString::fromUtf8(out).trimmed();
    }
};

// Owns a command list the way the editor does.
class CommandList
{
public:
    CommandList() = default;
    CommandList(const CommandList &) = delete;
    CommandList &operator=(const CommandList &) = delete;
    ~CommandList() { for (MMCommand *c : list) delete c; }
    template <typename T>
    T *add()
    {
        T *c = new T;
        list.push_back(c);
        return c;
    }
    std::list<MMCommand *> list;
};

// Builds a command list from a short text: "r90" rotate, "mh"/"mv" mirror,
// "c1,2,3,4" crop, "s40,30" resize, "e2" effect, "o1,2,3,4,name.png"
// overlay of a file in dir; separated by blanks.
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
        case 's': commands.add<MMResizeCommand>()->setTargetSize(MMSize(n[0].toInt(), n[1].toInt())); break;
        case 'e': commands.add<MMEffectCommand>()->setEffect(arg.toInt()); break;
        case 'o': {
            MMImageSource element(MMImageSource::SOURCE_ELEMENT);
            element.setFile((dir + '/' + n.value(4)).toStdString());
            commands.add<MMOverlayImageCommand>()->setData(rect, element);
            break;
        }
        default: break;
        }
    }
}

// Applies the commands to an image in memory, as the runner does; false as
// soon as one refuses.
inline bool applyAll(const CommandList &commands, QImage &image)
{
    for (const MMCommand *c : commands.list) {
        if (c->apply(image) != 0)
            return false;
    }
    return true;
}
