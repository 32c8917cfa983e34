// JPEG fidelity, checked with libjpeg-turbo's programs, exiftool and
// ImageMagick: lossless turns byte for byte as jpegtran makes them, EXIF
// orientation, and the quality estimate (what a save keeps of the
// description: tst_engine_metadata).
#include "EngineTestTools.h"
#include "MMImageDecoder.h"
#include "MMJpegCodec.h"
#include "MMJpegHeader.h"
#include "MMJpegPlaneDecoder.h"
#include "MMJpegProgressiveEncoder.h"
#include "MMJpegRegionDecoder.h"
#include "MMLanczosScaler.h"
#include "MMRunProgress.h"
#include <mutex>
#include "requiretool.h"
#include "datarows.h"
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>
#include <turbojpeg.h>

using namespace EngineTestTools;

namespace {
// Lanczos-3 by its direct formula, in double precision: every output sample
// the normalized sum over the source samples within three stretched lobes
// of its centre, both ways at once.
std::vector<double> lanczosWeights(int n, int m, int j, int *first)
{
    const double f = double(n) / m, centre = (j + 0.5) * f - 0.5, reach = 3 * f;
    std::vector<double> w;
    *first = -1;
    double sum = 0;
    for (int i = 0; i < n; ++i) {
        const double x = (i - centre) / f;
        if (std::fabs(i - centre) >= reach)
            continue;
        if (*first < 0)
            *first = i;
        w.push_back(x == 0 ? 1.0 : 3 * std::sin(M_PI * x) * std::sin(M_PI * x / 3) / (M_PI * M_PI * x * x));
        sum += w.back();
    }
    for (double &v : w)
        v /= sum;
    return w;
}

QByteArray lanczosReference(const QByteArray &pixels, const QSize &source, const QSize &target, int channels)
{
    QByteArray out(target.width() * target.height() * channels, 0);
    for (int j = 0; j < target.height(); ++j) {
        int top = 0;
        const std::vector<double> wy = lanczosWeights(source.height(), target.height(), j, &top);
        for (int x = 0; x < target.width(); ++x) {
            int left = 0;
            const std::vector<double> wx = lanczosWeights(source.width(), target.width(), x, &left);
            for (int c = 0; c < channels; ++c) {
                double v = 0;
                for (size_t i = 0; i < wy.size(); ++i)
                    for (size_t k = 0; k < wx.size(); ++k)
                        v += wy[i] * wx[k] * uchar(pixels[((top + int(i)) * source.width() + left + int(k)) * channels + c]);
                out[(j * target.width() + x) * channels + c] = char(int(qBound(0.0, std::floor(v + 0.5), 255.0)));
            }
        }
    }
    return out;
}

// The streamed shrink, its output rows split between scalers at splits,
// each fed only the source rows it asks for. Empty when a scaler writes a
// row that is not its own, or a row is written twice or never.
QByteArray streamShrink(const QByteArray &pixels, const QSize &source, const QSize &target, int channels,
                        QList<int> splits)
{
    const int rowBytes = target.width() * channels;
    QByteArray out(target.height() * rowBytes, 0);
    QList<int> written(target.height(), 0);
    splits.prepend(0);
    splits.append(target.height());
    bool ok = true;
    for (int p = 0; p + 1 < splits.size(); ++p) {
        int first = 0, end = 0;
        MMLanczosScaler::sourceRows(source.height(), target.height(), splits[p], splits[p + 1], &first, &end);
        MMLanczosScaler scaler(source, target, channels, splits[p], splits[p + 1]);
        for (int y = first; y < end; ++y)
            scaler.push(y, reinterpret_cast<const uchar *>(pixels.constData()) + y * source.width() * channels,
                        [&](int j) {
                            ok = ok && j >= splits[p] && j < splits[p + 1];
                            ++written[j];
                            return reinterpret_cast<uchar *>(out.data()) + j * rowBytes;
                        });
    }
    return ok && written.count(1) == target.height() ? out : QByteArray();
}
}

class TestEngineJpeg : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        VO_REQUIRE_TOOL("cjpeg");
        VO_REQUIRE_TOOL("djpeg");
        VO_REQUIRE_TOOL("jpegtran");
        VO_REQUIRE_TOOL("exiftool");
    }

    void losslessMatchesJpegtran_data()
    {
        columns<QString, QStringList, QString, QSize>({"commands", "jpegtran", "colour", "size"});
        const QSize small(256, 192), large(1280, 1024);
        QTest::newRow("right") << "r90" << QStringList{ "-rotate", "90" } << "2x2" << small;
        QTest::newRow("left") << "r-90" << QStringList{ "-rotate", "270" } << "2x2" << small;
        QTest::newRow("mirror horizontal") << "mh" << QStringList{ "-flip", "horizontal" } << "2x2" << small;
        QTest::newRow("right then mirror: transpose") << "r90 mh" << QStringList{ "-transpose" } << "2x2" << small;
        QTest::newRow("mirror then right: transverse") << "mh r90" << QStringList{ "-transverse" } << "2x2" << small;
        QTest::newRow("three rights and both mirrors") << "r90 r90 r90 mh mv" << QStringList{ "-rotate", "90" } << "2x2"
                                                       << small;
        QTest::newRow("4:2:2 right, small") << "r90" << QStringList{ "-rotate", "90" } << "2x1" << small;
        // Partial MCUs on a side the transform keeps in place.
        QTest::newRow("left, partial last row") << "r-90" << QStringList{ "-rotate", "270" } << "2x2" << QSize(256, 200);
        QTest::newRow("mirror, partial last row") << "mh" << QStringList{ "-flip", "horizontal" } << "2x2"
                                                  << QSize(256, 200);
        QTest::newRow("transpose, partial on both sides") << "r90 mh" << QStringList{ "-transpose" } << "2x1"
                                                          << QSize(100, 70);
        // Large pictures are coded in strips on two threads.
        QTest::newRow("strips: 4:2:0 right") << "r90" << QStringList{ "-rotate", "90" } << "2x2" << large;
        QTest::newRow("strips: 4:2:2 left, chroma turned") << "r-90" << QStringList{ "-rotate", "270" } << "2x1"
                                                          << large;
        QTest::newRow("strips: 4:2:2 half turn") << "r90 r90" << QStringList{ "-rotate", "180" } << "2x1" << large;
        QTest::newRow("strips: 4:4:4 transverse") << "mh r90" << QStringList{ "-transverse" } << "1x1" << large;
        QTest::newRow("strips: grey, mirror vertical") << "mv" << QStringList{ "-flip", "vertical" } << "grey" << large;
        QTest::newRow("strips: left, partial last row") << "r-90" << QStringList{ "-rotate", "270" } << "2x2"
                                                        << QSize(1280, 1000);
    }

    void losslessMatchesJpegtran()
    {
        auto [commands, jpegtran, colour, size] = fetch<QString, QStringList, QString, QSize>({"commands", "jpegtran", "colour", "size"});
        // No metadata; every transform here is perfect.
        const QStringList options = colour == "grey" ? QStringList{ "-grayscale" } : QStringList{ "-sample", colour };
        const QString in = makeJpeg(detailedPhoto(size), "lossless.jpg", 85, options), out = path("lossless-out.jpg");
        const QString reference = path("lossless-ref.jpg");
        QVERIFY(run("jpegtran", QStringList{ "-perfect", "-copy", "all", "-outfile", reference } + jpegtran + QStringList{ in }));

        QCOMPARE(runCommands(in, out, commands), 0);

        if (size.width() * size.height() < 1 << 20) {
            // One piece: just what jpegtran writes.
            QCOMPARE(bytes(out), bytes(reference));
        } else {
            // Strips joined by restart markers: the same coefficients.
            QVERIFY(bytes(out).contains("\xFF\xDD"));
            const QImage turned = djpeg(out);
            QVERIFY(!turned.isNull());
            QCOMPARE(turned, djpeg(reference));
        }
    }

    void losslessCutMatchesJpegtran_data()
    {
        // jpegtran's passes are separated by "|": it cuts after it turns.
        columns<QString, QString, QString, QSize>({"commands", "jpegtran", "options", "size"});
        const QSize small(256, 192), large(1280, 1024);
        QTest::newRow("4:2:0, partial right and bottom MCUs") << "c16,32,100,90" << "-crop 100x90+16+32" << "-sample 2x2"
                                                             << small;
        QTest::newRow("4:2:2, 16 x 8 MCUs") << "c32,8,120,64" << "-crop 120x64+32+8" << "-sample 2x1" << small;
        QTest::newRow("4:4:4, 8 x 8 MCUs") << "c8,8,200,101" << "-crop 200x101+8+8" << "-sample 1x1" << small;
        QTest::newRow("grey") << "c8,16,50,50" << "-crop 50x50+8+16" << "-grayscale" << small;
        QTest::newRow("to both far edges") << "c48,64,208,128" << "-crop 208x128+48+64" << "-sample 2x2" << small;
        QTest::newRow("from the origin, odd sides") << "c0,0,121,77" << "-crop 121x77+0+0" << "-sample 2x1"
                                                    << QSize(250, 190);
        QTest::newRow("progressive 4:2:0") << "c16,16,150,120" << "-crop 150x120+16+16" << "-sample 2x2 -progressive"
                                           << small;
        QTest::newRow("progressive 4:2:2, bottom rows") << "c64,128,96,64" << "-crop 96x64+64+128"
                                                        << "-sample 2x1 -progressive" << small;
        QTest::newRow("restart every row") << "c32,48,120,100" << "-crop 120x100+32+48" << "-sample 2x2 -restart 1"
                                           << small;
        QTest::newRow("restart every 5 MCUs, progressive") << "c16,32,130,90" << "-crop 130x90+16+32"
                                                           << "-sample 2x1 -restart 5B -progressive" << small;
        QTest::newRow("large, middle: read stops early") << "c320,256,640,512" << "-crop 640x512+320+256"
                                                         << "-sample 2x2" << large;
        QTest::newRow("large progressive, middle") << "c320,256,640,510" << "-crop 640x510+320+256"
                                                   << "-sample 2x1 -progressive" << large;
        QTest::newRow("cut then turn") << "c16,32,96,80 r90" << "-crop 96x80+16+32 | -perfect -rotate 90"
                                       << "-sample 2x2" << small;
        QTest::newRow("turn then cut") << "r90 c16,16,96,80" << "-perfect -rotate 90 | -crop 96x80+16+16"
                                       << "-sample 2x2" << small;
    }

    void losslessCutMatchesJpegtran()
    {
        auto [commands, jpegtran, options, size] = fetch<QString, QString, QString, QSize>({"commands", "jpegtran", "options", "size"});
        const QString in = makeJpeg(detailedPhoto(size), "cut.jpg", 90, options.split(' ')), out = path("cut-out.jpg");
        QString reference = in;
        int pass = 0;
        for (const QString &step : jpegtran.split('|')) {
            const QString next = path(QString("cut-ref%1.jpg").arg(pass++));
            QVERIFY(run("jpegtran", QStringList{ "-copy", "all" } + step.split(' ', Qt::SkipEmptyParts)
                                        + QStringList{ "-outfile", next, reference }));
            reference = next;
        }

        QCOMPARE(runCommands(in, out, commands), 0);

        // A re-encode would not give the very same pixels.
        const QImage cut = djpeg(out);
        QVERIFY(!cut.isNull());
        QCOMPARE(cut, djpeg(reference));
    }

    void progressIsReportedAndCancelStops_data()
    {
        // stripsAtLeast: distinct values the listener must see, more than
        // the steps alone give when the decoder reports its strips.
        columns<QString, QString, QSize, int>({"commands", "options", "size", "stripsAtLeast"});
        const QSize large(1280, 1024);
        QTest::newRow("progressive turn, planes in two parts") << "r90" << "-sample 2x1 -progressive" << QSize(1270, 1018) << 20;
        QTest::newRow("baseline turn, planes") << "r90 r90" << "-sample 2x2" << QSize(1200, 1000) << 20;
        QTest::newRow("crop, region decode") << "c5,7,900,700" << "-sample 2x2" << large << 20;
        QTest::newRow("progressive shrink") << "s640,512" << "-sample 2x2 -progressive" << large << 20;
        QTest::newRow("lossless cut: steps only") << "c16,16,640,512" << "-sample 2x2" << large << 2;
    }

    void progressIsReportedAndCancelStops()
    {
        auto [commands, options, size, stripsAtLeast] = fetch<QString, QString, QSize, int>({"commands", "options", "size", "stripsAtLeast"});
        const QString in = makeJpeg(detailedPhoto(size), "progress.jpg", 90, options.split(' '));
        CommandList list;
        parseCommands(commands, list);

        std::mutex mutex;
        std::vector<int> seen;
        MMRunProgress progress([&](int permille) {
            std::lock_guard<std::mutex> lock(mutex);
            seen.push_back(permille);
        });
        const QString out = path("progress-out.jpg");
        QFile::remove(out);
        QCOMPARE(MMCommandRunner::run(EngineTestTools::source(in), EngineTestTools::source(out), list.list, &progress), 0);
        QCOMPARE(progress.permille(), 1000);
        std::sort(seen.begin(), seen.end());
        QVERIFY(std::adjacent_find(seen.begin(), seen.end()) == seen.end()); // each value once
        QVERIFY2(int(seen.size()) >= stripsAtLeast, qPrintable(QString::number(seen.size()) + " values, last " + QString::number(seen.back())));
        QCOMPARE(seen.back(), 1000);

        // Cancelled from the working thread part way: no result, and an
        // existing destination is left as it was.
        const QString kept = path("progress-kept.jpg");
        QFile::remove(kept);
        QVERIFY(QFile::copy(in, kept));
        const QByteArray before = bytes(kept);
        MMRunProgress cancelling;
        MMRunProgress *self = &cancelling;
        MMRunProgress halfway([&self](int permille) {
            if (permille >= 100)
                self->cancel();
        });
        self = &halfway;
        QCOMPARE(MMCommandRunner::run(EngineTestTools::source(in), EngineTestTools::source(kept), list.list, &halfway), -1);
        QCOMPARE(bytes(kept), before);
        QVERIFY(halfway.permille() < 1000);
        // Cancelled before it starts.
        MMRunProgress early;
        early.cancel();
        QCOMPARE(MMCommandRunner::run(EngineTestTools::source(in), EngineTestTools::source(kept), list.list, &early), -1);
        QCOMPARE(bytes(kept), before);
    }

    void identityChainLeavesBytesUnchanged()
    {
        // 100x70 allows no perfect transform: nothing may be re-encoded.
        const QString in = makeJpeg(photo(100, 70), "identity.jpg", 80), out = path("identity-out.jpg");
        const QByteArray before = bytes(in);

        QCOMPARE(runCommands(in, out, "r90 mh r90 mh"), 0);
        QCOMPARE(runCommands(in, in, "r-90 r180 mv mh r90"), 0);

        QCOMPARE(bytes(out), before);
        QCOMPARE(bytes(in), before);
    }

    void orientationsComeOutUpright_data()
    {
        columns<int, int, QString>({"orientation", "block", "upright"});
        // Stored ABC/DEF as it is shown under each orientation, as EXIF defines
        // them. 16-pixel blocks allow a perfect transform, 20-pixel ones do not.
        const char *upright[] = { "ABC/DEF", "CBA/FED", "FED/CBA", "DEF/ABC", "AD/BE/CF", "DA/EB/FC", "FC/EB/DA", "CF/BE/AD" };
        for (int o = 1; o <= 8; ++o) {
            QTest::addRow("%d lossless", o) << o << 16 << upright[o - 1];
            QTest::addRow("%d re-encoded", o) << o << 20 << upright[o - 1];
        }
    }

    void orientationsComeOutUpright()
    {
        auto [orientation, block, upright] = fetch<int, int, QString>({"orientation", "block", "upright"});
        const QString in = makeJpeg(fromLetters("ABC/DEF").scaled(3 * block, 2 * block), "oriented.jpg", 95);
        QVERIFY(run("exiftool", { "-q", "-overwrite_original", QString("-Orientation#=%1").arg(orientation), in }));
        const QString out = path("oriented-out.jpg");
        const QString turned = toLetters(fromLetters(upright).transformed(QTransform().rotate(90)));
        MMImageInfo info;

        QCOMPARE(source(in).getImageInfo(info), 0);
        QCOMPARE(runCommands(in, out, "r90"), 0);

        QCOMPARE(info.orientation, orientation);
        QCOMPARE(QSize(info.width, info.height), orientation >= 5 ? QSize(2, 3) * block : QSize(3, 2) * block);
        QCOMPARE(toLetters(MMImageDecoder::decode(in), block), upright);
        // The stored pixels themselves are upright (then turned as asked).
        QCOMPARE(toLetters(djpeg(out), block), turned);
        QByteArray tag;
        QVERIFY(run("exiftool", { "-s3", "-n", "-Orientation", out }, &tag));
        QVERIFY2(tag.trimmed().isEmpty() || tag.trimmed() == "1", tag.constData());
    }

    void qualityIsEstimated_data()
    {
        QTest::addColumn<int>("quality");
        for (int q : { 25, 75, 90, 100 })
            QTest::addRow("%d", q) << q;
    }

    void qualityIsEstimated()
    {
        QFETCH(int, quality);
        QFile file(makeJpeg(photo(64, 48), QString("q%1.jpg").arg(quality), quality));
        QVERIFY(file.open(QIODevice::ReadOnly));
        MMJpegHeader header;

        QVERIFY(header.read(file));

        QVERIFY2(qAbs(header.estimatedQuality() - quality) <= 2, qPrintable(QString::number(header.estimatedQuality())));
    }

    void regionDecodeEqualsFullDecode_data()
    {
        columns<QString, int, QRect, int, QSize>({"sampling", "scale", "rect", "orientation", "size"});
        // Odd offsets inside blocks, the picture's edges, every orientation.
        QTest::newRow("4:2:0 inner") << "2x2" << 1 << QRect(37, 21, 101, 77) << 1 << QSize(176, 120);
        QTest::newRow("4:2:0 on block edges") << "2x2" << 1 << QRect(32, 32, 64, 48) << 1 << QSize(176, 120);
        QTest::newRow("4:2:2 on block edges, half scale") << "2x1" << 2 << QRect(16, 8, 32, 24) << 1 << QSize(176, 120);
        QTest::newRow("4:2:0 turned right") << "2x2" << 1 << QRect(17, 33, 90, 50) << 6 << QSize(176, 120);
        QTest::newRow("4:2:2 transverse") << "2x1" << 1 << QRect(1, 1, 170, 110) << 7 << QSize(176, 120);
        QTest::newRow("4:4:4 left, to the bottom") << "1x1" << 1 << QRect(0, 40, 63, 80) << 8 << QSize(176, 120);
        QTest::newRow("4:2:2 whole, mirrored") << "2x1" << 1 << QRect(0, 0, 176, 120) << 2 << QSize(176, 120);
        QTest::newRow("4:2:0 progressive, below the top") << "2x2 -progressive" << 1 << QRect(21, 57, 80, 40) << 6 << QSize(176, 120);
        QTest::newRow("grey transposed") << "grey" << 1 << QRect(15, 9, 48, 100) << 5 << QSize(176, 120);
        QTest::newRow("4:2:0 half scale, upside down") << "2x2" << 2 << QRect(9, 7, 61, 44) << 3 << QSize(176, 120);
        QTest::newRow("4:2:2 eighth scale") << "2x1" << 8 << QRect(3, 2, 18, 13) << 4 << QSize(176, 120);
        // Large enough to be decoded by two threads, the second starting mid-picture.
        QTest::newRow("split 4:2:0 turned right") << "2x2" << 1 << QRect(3, 5, 1271, 1013) << 6 << QSize(1280, 1024);
        QTest::newRow("split 4:2:2 region, mirrored") << "2x1" << 1 << QRect(41, 300, 1100, 700) << 2 << QSize(1280, 1024);
        QTest::newRow("split grey whole") << "grey" << 1 << QRect(0, 0, 1280, 1024) << 1 << QSize(1280, 1024);
        QTest::newRow("split 4:2:0 half scale") << "2x2" << 2 << QRect(0, 0, 1100, 1000) << 8 << QSize(2200, 2000);
        // Progressive and large: luma and chroma decoded apart, then joined.
        QTest::newRow("split progressive 4:2:0 turned right") << "2x2 -progressive" << 1 << QRect(7, 9, 1200, 1000) << 6 << QSize(1280, 1024);
        QTest::newRow("split progressive 4:2:2 region, mirrored") << "2x1 -progressive" << 1 << QRect(41, 300, 1100, 700) << 2 << QSize(1280, 1024);
        QTest::newRow("split progressive 4:4:4 whole, turned left") << "1x1 -progressive" << 1 << QRect(0, 0, 1280, 1024) << 8 << QSize(1280, 1024);
    }

    void regionDecodeEqualsFullDecode()
    {
        auto [sampling, scale, rect, orientation, size] =
            fetch<QString, int, QRect, int, QSize>({"sampling", "scale", "rect", "orientation", "size"});
        const QStringList colour = sampling == "grey" ? QStringList{ "-grayscale" } : ("-sample " + sampling).split(' ');
        const QString jpeg = makeJpeg(photo(size.width(), size.height()), "region.jpg", 85, colour);
        QVERIFY(!jpeg.isEmpty());
        const QByteArray data = bytes(jpeg);
        const MMOrientation turn = MMOrientation::fromExif(orientation);
        const QSize stored = size, scaled((size.width() + scale - 1) / scale, (size.height() + scale - 1) / scale);
        const QImage full = scale == 1 ? MMJpegCodec::decode(data)
                                       : MMJpegRegionDecoder::decode(data, stored, scale, QRect(QPoint(0, 0), scaled),
                                                                     MMOrientation(), QImage::Format_RGB32);
        QCOMPARE(full.size(), scaled);

        const QImage region = MMJpegRegionDecoder::decode(data, stored, scale, rect, turn, QImage::Format_RGB32);

        QCOMPARE(region, turn.apply(full.copy(rect)));
        const QImage packed = MMJpegRegionDecoder::decode(data, stored, scale, rect, turn, QImage::Format_RGB888);
        QCOMPARE(packed.convertToFormat(region.format()), region);
    }

    void plannedSaveMatchesNaiveReplay_data()
    {
        columns<int, QString>({"orientation", "commands"});
        QTest::newRow("crop") << 1 << "c21,13,77,51";
        QTest::newRow("turn, mirror, crop") << 1 << "r90 mh c11,19,50,71";
        QTest::newRow("half size") << 1 << "s88,60";
        QTest::newRow("crop off the scaled grid, then a fifth") << 1 << "c13,9,131,101 s26,20";
        QTest::newRow("crop on the scaled grid, then a quarter") << 1 << "c16,8,131,101 s32,25";
        QTest::newRow("stored on its side, chain, then sepia") << 6 << "r90 mh c8,20,100,80 s33,27 e2";
        QTest::newRow("resize, then turn and crop as they are") << 8 << "s40,60 r-90 c5,5,30,30";
    }

    void plannedSaveMatchesNaiveReplay()
    {
        auto [orientation, commands] = fetch<int, QString>({"orientation", "commands"});
        const QString in = makeJpeg(photo(176, 120), "plan.jpg", 90), out = path("plan-out.jpg");
        QVERIFY(run("exiftool", { "-q", "-overwrite_original", QString("-Orientation#=%1").arg(orientation), in }));
        CommandList list;
        parseCommands(commands, list);
        QImage naive = MMImageDecoder::decode(in);
        QVERIFY(applyAll(list, naive));
        naive = naive.convertToFormat(QImage::Format_RGB32);
        const double reencoding =
            meanDifference(naive, MMJpegCodec::decode(MMJpegCodec::encode(naive, 90, MMJpegHeader::Sub420, false)));

        QCOMPARE(MMCommandRunner::run(source(in), source(out), list.list), 0);

        const QImage planned = djpeg(out);
        QCOMPARE(planned.size(), naive.size());
        // The saved file is one re-encode away from the naive result; planning
        // may add at most as much again.
        const double difference = meanDifference(planned, naive);
        QVERIFY2(difference <= 2 * reencoding + 0.25, qPrintable(QString("%1 vs %2").arg(difference).arg(reencoding)));
    }

    void shrinkWhileDecodingFollowsLanczos_data()
    {
        columns<QSize, int, QSize>({"size", "orientation", "target"});
        QTest::newRow("half, one thread") << QSize(300, 200) << 1 << QSize(150, 100);
        QTest::newRow("uneven, turned right, two threads") << QSize(1280, 1024) << 6 << QSize(391, 517);
        QTest::newRow("just below full, mirrored") << QSize(1281, 1023) << 2 << QSize(1280, 1021);
        QTest::newRow("one row") << QSize(1600, 900) << 1 << QSize(800, 1);
    }

    // A shrink while decoding is the direct Lanczos-3 sum over the full
    // decode, whichever part of the picture each thread makes.
    void shrinkWhileDecodingFollowsLanczos()
    {
        auto [size, orientation, target] = fetch<QSize, int, QSize>({"size", "orientation", "target"});
        const QString jpeg = makeJpeg(photo(size.width(), size.height()), "shrink.jpg", 90);
        const QImage full = djpeg(jpeg).convertToFormat(QImage::Format_RGB888);
        QVERIFY(!full.isNull());
        const MMOrientation turn = MMOrientation::fromExif(orientation);
        const QSize stored = turn.map(target);
        QByteArray pixels;
        for (int y = 0; y < full.height(); ++y)
            pixels.append(reinterpret_cast<const char *>(full.constScanLine(y)), full.width() * 3);
        const QByteArray reference = lanczosReference(pixels, size, stored, 3);
        const QImage expected = turn.apply(
            QImage(reinterpret_cast<const uchar *>(reference.constData()), stored.width(), stored.height(),
                   stored.width() * 3, QImage::Format_RGB888).convertToFormat(QImage::Format_RGB32));

        const QImage shrunk = MMJpegRegionDecoder::decode(bytes(jpeg), size, 1, QRect(QPoint(0, 0), size), turn,
                                                          QImage::Format_RGB32, target);

        QCOMPARE(shrunk.size(), target);
        const int worst = maxDifference(shrunk, expected);
        QVERIFY2(worst <= 1, qPrintable(QString("worst difference %1").arg(worst)));
    }

    void lanczosShrinkStreams_data()
    {
        columns<QString, QSize, QSize, int, QList<int>>({"pattern", "source", "target", "channels", "splits"});
        QTest::newRow("flat, three channels, split in three") << "flat" << QSize(301, 203) << QSize(150, 101) << 3 << QList<int>{ 37, 100 };
        QTest::newRow("flat, grey, a tenth") << "flat" << QSize(250, 120) << QSize(25, 12) << 1 << QList<int>{ 1, 11 };
        QTest::newRow("ramp, four channels, uneven") << "ramp" << QSize(110, 100) << QSize(43, 37) << 4 << QList<int>{ 20 };
        QTest::newRow("ramp, three channels, half") << "ramp" << QSize(110, 100) << QSize(55, 50) << 3 << QList<int>{ 1, 25, 49 };
        QTest::newRow("noise, three channels, a third") << "noise" << QSize(640, 480) << QSize(213, 160) << 3 << QList<int>{ 1, 80, 159 };
        QTest::newRow("blocks, four channels") << "blocks" << QSize(97, 61) << QSize(31, 20) << 4 << QList<int>{ 10 };
        QTest::newRow("across only") << "noise" << QSize(100, 10) << QSize(30, 10) << 3 << QList<int>{ 3, 4 };
        QTest::newRow("three rows high") << "noise" << QSize(40, 3) << QSize(13, 2) << 3 << QList<int>{ 1 };
        QTest::newRow("two rows to one") << "blocks" << QSize(7, 2) << QSize(2, 1) << 1 << QList<int>{};
        QTest::newRow("four rows, narrower than the window") << "ramp" << QSize(5, 4) << QSize(4, 3) << 4 << QList<int>{ 2 };
    }

    // The streamed shrink: the direct formula within a level, the same bytes
    // however its rows are split between scalers, a flat picture flat to the
    // edges (no ringing where windows are cut) and a ramp still the ramp
    // where windows are whole.
    void lanczosShrinkStreams()
    {
        auto [pattern, source, target, channels, splits] =
            fetch<QString, QSize, QSize, int, QList<int>>({"pattern", "source", "target", "channels", "splits"});
        const int w = source.width(), h = source.height();
        auto level = [&](int x, int y, int c) {
            if (pattern == "flat")
                return c == 0 ? 200 : c == 1 ? 17 : 255;
            if (pattern == "ramp")
                return c % 2 ? 10 + 2 * x : 230 - 2 * y;
            if (pattern == "blocks")
                return (x / 10 + y / 8 + c) % 2 ? 255 : 0;
            return int((unsigned(x * 7919 + y * 104729 + c * 31) * 2654435761u) >> 24);
        };
        QByteArray pixels(w * h * channels, 0);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                for (int c = 0; c < channels; ++c)
                    pixels[(y * w + x) * channels + c] = char(level(x, y, c));

        const QByteArray whole = streamShrink(pixels, source, target, channels, {});
        QCOMPARE(whole.size(), target.width() * target.height() * channels);
        QCOMPARE(streamShrink(pixels, source, target, channels, splits), whole);
        const QByteArray reference = lanczosReference(pixels, source, target, channels);
        const double fx = double(w) / target.width(), fy = double(h) / target.height();
        for (int j = 0; j < target.height(); ++j)
            for (int x = 0; x < target.width(); ++x)
                for (int c = 0; c < channels; ++c) {
                    const int i = (j * target.width() + x) * channels + c, got = uchar(whole[i]);
                    QVERIFY2(qAbs(got - uchar(reference[i])) <= 1,
                             qPrintable(QString("(%1, %2, %3): %4 vs %5").arg(x).arg(j).arg(c).arg(got).arg(uchar(reference[i]))));
                    if (pattern == "flat")
                        QCOMPARE(got, level(0, 0, c));
                    const double sx = (x + 0.5) * fx - 0.5, sy = (j + 0.5) * fy - 0.5;
                    const bool inner = sx >= 3 * fx && sx <= w - 1 - 3 * fx && sy >= 3 * fy && sy <= h - 1 - 3 * fy;
                    if (pattern == "ramp" && inner) {
                        const double ramp = c % 2 ? 10 + 2 * sx : 230 - 2 * sy;
                        QVERIFY2(qAbs(got - ramp) <= 0.6, qPrintable(QString("(%1, %2, %3): %4 vs %5").arg(x).arg(j).arg(c).arg(got).arg(ramp)));
                    }
                }
    }

    void progressiveEighthReadsOnlyWhatItNeeds_data()
    {
        columns<QString, QSize>({"colour", "size"});
        QTest::newRow("4:2:2") << "-sample 2x1" << QSize(1203, 901);
        QTest::newRow("4:2:0") << "-sample 2x2" << QSize(640, 480);
        QTest::newRow("grey") << "-grayscale" << QSize(333, 250);
    }

    // A whole progressive picture at 1/8 scale, read only until its DC is
    // whole, equals djpeg's decode of every scan at 1/8; a stream cut off
    // before then is refused.
    void progressiveEighthReadsOnlyWhatItNeeds()
    {
        auto [colour, size] = fetch<QString, QSize>({"colour", "size"});
        const QString jpeg = makeJpeg(detailedPhoto(size), "eighth.jpg", 95, colour.split(' ') + QStringList{ "-progressive" });
        QVERIFY(!jpeg.isEmpty());
        QByteArray reference;
        QVERIFY(run("djpeg", { "-scale", "1/8", "-pnm", jpeg }, &reference));
        const QImage expected = QImage::fromData(reference).convertToFormat(QImage::Format_RGB32);
        const QRect whole(0, 0, (size.width() + 7) / 8, (size.height() + 7) / 8);
        const QByteArray data = bytes(jpeg);

        const QImage eighth = MMJpegRegionDecoder::decode(data, size, 8, whole, MMOrientation(), QImage::Format_RGB32);

        QCOMPARE(eighth.convertToFormat(QImage::Format_RGB32), expected);
        // Cut inside the first (DC) scan: damage, not a picture.
        const int firstScan = data.indexOf("\xFF\xDA");
        QVERIFY(firstScan > 0);
        QVERIFY(MMJpegRegionDecoder::decode(data.left(firstScan + 40), size, 8, whole, MMOrientation(),
                                            QImage::Format_RGB32).isNull());
    }

    void stripEncodeDecodesAsOnePiece_data()
    {
        columns<QSize, QString, int, bool>({"size", "sampling", "quality", "progressive"});
        QTest::newRow("4:2:0, partial blocks at the edges") << QSize(1283, 1021) << "2x2" << 90 << false;
        QTest::newRow("4:2:2 tall") << QSize(700, 3001) << "2x1" << 92 << false;
        QTest::newRow("4:4:4, more strips than threads") << QSize(2048, 2056) << "1x1" << 90 << false;
        QTest::newRow("grey") << QSize(1100, 1000) << "grey" << 75 << false;
        QTest::newRow("small: one piece") << QSize(300, 200) << "2x2" << 90 << false;
        QTest::newRow("4:2:2 at quality 100") << QSize(1300, 1000) << "2x1" << 100 << false;
        // Progressive: luma and chroma scans written apart, then joined.
        QTest::newRow("progressive 4:2:2 at quality 100") << QSize(1301, 1003) << "2x1" << 100 << true;
        QTest::newRow("progressive 4:2:0") << QSize(1283, 1021) << "2x2" << 85 << true;
        QTest::newRow("progressive 4:4:4") << QSize(1024, 1100) << "1x1" << 92 << true;
        QTest::newRow("progressive grey: one piece") << QSize(1100, 1000) << "grey" << 90 << true;
    }

    // Strips (or scans) encoded apart and joined decode to exactly the pixels of
    // the same picture encoded in one piece by cjpeg, without a warning from
    // djpeg: the same coefficients, however the stream is cut.
    void stripEncodeDecodesAsOnePiece()
    {
        auto [size, sampling, quality, progressive] = fetch<QSize, QString, int, bool>({"size", "sampling", "quality", "progressive"});
        QImage image = detailedPhoto(size);
        const bool grey = sampling == "grey";
        if (grey)
            image = image.convertToFormat(QImage::Format_Grayscale8);
        const MMJpegHeader::Subsampling sub = grey ? MMJpegHeader::SubGray
            : sampling == "2x2" ? MMJpegHeader::Sub420 : sampling == "2x1" ? MMJpegHeader::Sub422 : MMJpegHeader::Sub444;
        const QString ours = path("strips.jpg"), ppm = path("strips.pnm"), theirs = path("strips-ref.jpg");
        const QByteArray encoded = MMJpegCodec::encode(image, quality, sub, progressive);
        QVERIFY(writeBytes(ours, encoded));
        QCOMPARE(encoded.contains("\xFF\xC2"), progressive);
        QVERIFY(image.save(ppm, grey ? "PGM" : "PPM"));
        const QStringList colour = grey ? QStringList{ "-grayscale" } : QStringList{ "-sample", sampling };
        // TurboJPEG encodes with the fast DCT below quality 96.
        const QString dct = quality < 96 ? "fast" : "int";
        QVERIFY(run("cjpeg", colour + QStringList{ "-dct", dct, "-quality", QString::number(quality), "-outfile", theirs, ppm }));

        const QImage decoded = djpeg(ours);
        QCOMPARE(decoded.size(), size);
        QCOMPARE(decoded, djpeg(theirs));
    }

    void planeDecodeEqualsRawDecode_data()
    {
        // turned: the planes' subsampling; -1: unsuited
        columns<QString, QSize, int, int>({"colour", "size", "orientation", "turned"});
        // Above a megapixel two parts decode, the second from the middle.
        QTest::newRow("4:2:2 turned right, odd height") << "-sample 2x1" << QSize(1283, 1021) << 6 << int(MMJpegHeader::Sub440);
        QTest::newRow("4:2:0 turned left") << "-sample 2x2" << QSize(1290, 1022) << 8 << int(MMJpegHeader::Sub420);
        QTest::newRow("4:4:4 transverse") << "-sample 1x1" << QSize(1100, 1001) << 7 << int(MMJpegHeader::Sub444);
        QTest::newRow("4:4:0 mirrored, odd sides") << "-sample 1x2" << QSize(1203, 1001) << 2 << int(MMJpegHeader::Sub440);
        QTest::newRow("4:2:2 upright") << "-sample 2x1" << QSize(1280, 1030) << 1 << int(MMJpegHeader::Sub422);
        QTest::newRow("grey upside down") << "-grayscale" << QSize(1111, 999) << 3 << int(MMJpegHeader::SubGray);
        QTest::newRow("4:2:0 transposed, one part") << "-sample 2x2" << QSize(301, 203) << 5 << int(MMJpegHeader::Sub420);
        // Progressive: luma's and chroma's scans decoded apart.
        QTest::newRow("progressive 4:2:2 turned right, odd height") << "-sample 2x1 -progressive" << QSize(1283, 1021) << 6 << int(MMJpegHeader::Sub440);
        QTest::newRow("progressive 4:2:0 transverse") << "-sample 2x2 -progressive" << QSize(1290, 1022) << 7 << int(MMJpegHeader::Sub420);
        QTest::newRow("progressive 4:4:4 upright") << "-sample 1x1 -progressive" << QSize(1100, 1001) << 1 << int(MMJpegHeader::Sub444);
        QTest::newRow("progressive grey turned left") << "-grayscale -progressive" << QSize(1111, 999) << 8 << int(MMJpegHeader::SubGray);
        // A reversed side ending in half a chroma sample.
        QTest::newRow("4:2:0 half turn, odd width") << "-sample 2x2" << QSize(1281, 1024) << 3 << -1;
        QTest::newRow("4:2:2 turned left, odd width") << "-sample 2x1" << QSize(1281, 1024) << 8 << -1;
        QTest::newRow("progressive 4:2:2 turned left, odd width") << "-sample 2x1 -progressive" << QSize(1281, 1024) << 8 << -1;
    }

    // The turned planes hold exactly the samples of TurboJPEG's raw decode of
    // the stored picture, turned: no sample lost, moved or recomputed.
    void planeDecodeEqualsRawDecode()
    {
        auto [colour, size, orientation, turned] = fetch<QString, QSize, int, int>({"colour", "size", "orientation", "turned"});
        const QByteArray data = bytes(makeJpeg(detailedPhoto(size), "planes.jpg", 90, colour.split(' ')));
        QVERIFY(!data.isEmpty());
        const MMOrientation turn = MMOrientation::fromExif(orientation);
        MMYuvPlanes planes;
        // What the chroma planes hold when they are announced as whole.
        std::vector<QImage> early;
        const auto chromaDone = [&early](const MMYuvPlanes &p) {
            for (int i = 1; i < 3; ++i)
                early.push_back(QImage(p.plane(i), p.planeSize(i).width(), p.planeSize(i).height(),
                                       p.planeSize(i).width(), QImage::Format_Grayscale8).copy());
        };

        const MMJpegPlaneDecoder::Result result = MMJpegPlaneDecoder::decode(data, turn, &planes, chromaDone);

        if (turned < 0) {
            QCOMPARE(result, MMJpegPlaneDecoder::Unsuited);
            return;
        }
        QCOMPARE(result, MMJpegPlaneDecoder::Decoded);
        QCOMPARE(int(planes.subsampling()), turned);
        QCOMPARE(planes.size(), turn.map(size));
        const std::vector<QImage> reference = rawPlanes(data);
        QCOMPARE(int(reference.size()), planes.count());
        for (int i = 0; i < planes.count(); ++i) {
            const QImage expected = turn.apply(reference[size_t(i)]);
            QCOMPARE(planes.planeSize(i), expected.size());
            const QImage ours(planes.plane(i), expected.width(), expected.height(), expected.width(),
                              QImage::Format_Grayscale8);
            // Past the picture luma is padded with its edge, not decoded.
            const QRect kept = i == 0 ? QRect(QPoint(0, 0), planes.size()) : ours.rect();
            QCOMPARE(ours.copy(kept), expected.copy(kept));
            QCOMPARE(ours.pixel(ours.rect().bottomRight()), ours.pixel(kept.bottomRight()));
            if (i > 0 && !early.empty())
                QCOMPARE(early[size_t(i - 1)], expected);
        }
    }

    void damageIsRefused_data()
    {
        // component: whose first AC scan is hit; -1: any scan. at: where in the
        // coded data (or that scan's), as a share of it.
        columns<QString, QSize, int, double, bool>({"colour", "size", "component", "at", "cut"});
        const QSize odd(1283, 1021), even(1280, 1024);
        QTest::newRow("damage in the first part's rows") << "-sample 2x1" << odd << -1 << 0.1 << false;
        QTest::newRow("damage in the second part's rows only") << "-sample 2x1" << odd << -1 << 0.95 << false;
        QTest::newRow("cut short") << "-sample 2x1" << odd << -1 << 0.5 << true;
        QTest::newRow("progressive, damage in a luma scan") << "-sample 2x1 -progressive" << odd << 0 << 0.5 << false;
        QTest::newRow("progressive, damage in a chroma scan") << "-sample 2x1 -progressive" << odd << 2 << 0.5 << false;
        QTest::newRow("progressive, cut short") << "-sample 2x1 -progressive" << odd << -1 << 0.7 << true;
        // Whole blocks: the lossless turn codes these in strips on two threads.
        QTest::newRow("strips, cut in the first strip's rows") << "-sample 2x2" << even << -1 << 0.3 << true;
        QTest::newRow("strips, cut in the second strip's rows") << "-sample 2x2" << even << -1 << 0.9 << true;
        QTest::newRow("strips, progressive, damage in luma's scan") << "-sample 2x2 -progressive" << even << 0 << 0.5 << false;
        QTest::newRow("strips, progressive, damage in chroma's scan") << "-sample 2x2 -progressive" << even << 2 << 0.5 << false;
    }

    // Damage that any part of any decoder reads fails that decoder and the
    // save, never a picture with grey blocks: the plane decoder's and the
    // region decoder's parts (the second of a sequential stream reads the
    // first's rows only to skip them; a progressive one's parts read luma's
    // scans and chroma's), and the lossless turn's strips, where it applies.
    void damageIsRefused()
    {
        auto [colour, size, component, at, cut] = fetch<QString, QSize, int, double, bool>({"colour", "size", "component", "at", "cut"});
        const QString in = makeJpeg(detailedPhoto(size), "damaged.jpg", 90, colour.split(' '));
        QByteArray data = bytes(in);
        const MMOrientation right = MMOrientation::rotation(90);
        const QRect whole(QPoint(), size);
        MMYuvPlanes planes;
        QCOMPARE(MMJpegPlaneDecoder::decode(data, right, &planes), MMJpegPlaneDecoder::Decoded);
        QVERIFY(!MMJpegRegionDecoder::decode(data, size, 1, whole, MMOrientation(), QImage::Format_RGB32).isNull());
        const bool lossless = !MMJpegCodec::transform(data, right, true, false).isEmpty();
        QCOMPARE(lossless, size == QSize(1280, 1024));
        qsizetype scan = data.indexOf("\xFF\xDA"), end = data.size() - 2;
        for (; component >= 0 && scan > 0; scan = data.indexOf("\xFF\xDA", scan + 2)) {
            // One component (selector 1 + its index), AC coefficients.
            const auto *b = reinterpret_cast<const unsigned char *>(data.constData()) + scan;
            if (b[4] == 1 && b[5] == 1 + component && b[8] > 0) {
                end = data.indexOf("\xFF\xC4", scan + 2);
                break;
            }
        }
        QVERIFY(scan > 0 && end > scan + 40);
        const qsizetype where = scan + 20 + qsizetype(at * double(end - scan - 20));
        if (cut) {
            data.truncate(where);
        } else {
            // A marker in the middle of the coded data cuts it short.
            data[where] = char(0xFF);
            data[where + 1] = char(0xD3);
        }

        QCOMPARE(MMJpegPlaneDecoder::decode(data, right, &planes), MMJpegPlaneDecoder::Failed);
        QVERIFY(MMJpegRegionDecoder::decode(data, size, 1, whole, MMOrientation(), QImage::Format_RGB32).isNull());
        QVERIFY(!lossless || MMJpegCodec::transform(data, right, true, false).isEmpty());
        const QString out = path("damaged-out.jpg");
        QVERIFY(writeBytes(in, data));
        QCOMPARE(runCommands(in, out, "r90"), -1);
        QVERIFY(!QFile::exists(out));
    }

    void progressivePlaneEncodeEqualsOnePiece_data()
    {
        columns<QString, QSize, int, int>({"colour", "size", "orientation", "quality"});
        QTest::newRow("4:4:0, odd sides, fast DCT") << "-sample 2x1" << QSize(1283, 1021) << 6 << 90;
        QTest::newRow("4:2:0, accurate DCT") << "-sample 2x2" << QSize(1290, 1022) << 1 << 97;
        QTest::newRow("4:4:4, odd sides") << "-sample 1x1" << QSize(1101, 1003) << 8 << 85;
        QTest::newRow("4:2:2, odd width") << "-sample 2x1" << QSize(1281, 1024) << 1 << 100;
    }

    // Luma's and chroma's scans coded apart (chroma as a picture of its own)
    // and joined make the coefficients of TurboJPEG's one-piece progressive
    // encode of the same planes: their raw decodes are the same.
    void progressivePlaneEncodeEqualsOnePiece()
    {
        auto [colour, size, orientation, quality] = fetch<QString, QSize, int, int>({"colour", "size", "orientation", "quality"});
        const QByteArray source = bytes(makeJpeg(detailedPhoto(size), "planes-encode.jpg", 95, colour.split(' ')));
        MMYuvPlanes planes;
        QCOMPARE(MMJpegPlaneDecoder::decode(source, MMOrientation::fromExif(orientation), &planes),
                 MMJpegPlaneDecoder::Decoded);

        const QByteArray ours = MMJpegProgressiveEncoder::encode(planes, quality);

        QVERIFY(ours.contains("\xFF\xC2"));
        tjhandle tj = tjInitCompress();
        const unsigned char *pointers[3];
        int strides[3];
        for (int i = 0; i < 3; ++i) {
            pointers[i] = planes.plane(i);
            strides[i] = planes.planeSize(i).width();
        }
        unsigned char *buffer = nullptr;
        unsigned long length = 0;
        // The DCT the encoder picks for this quality.
        const int flags = TJFLAG_PROGRESSIVE | (quality >= 96 ? TJFLAG_ACCURATEDCT : TJFLAG_FASTDCT);
        QCOMPARE(tjCompressFromYUVPlanes(tj, pointers, planes.size().width(), strides, planes.size().height(),
                                         int(planes.subsampling()), &buffer, &length, quality, flags),
                 0);
        const QByteArray theirs(reinterpret_cast<const char *>(buffer), int(length));
        tjFree(buffer);
        tjDestroy(tj);
        const std::vector<QImage> a = rawPlanes(ours), b = rawPlanes(theirs);
        QCOMPARE(int(a.size()), 3);
        QCOMPARE(int(b.size()), 3);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(a[size_t(i)], b[size_t(i)]);
    }

    void planeSaveEqualsReferenceTurn_data()
    {
        // sampling: of the saved file
        // psnr: at least, in dB
        columns<QString, QSize, int, QString, int, double>({"colour", "size", "orientation", "commands", "sampling", "psnr"});
        QTest::newRow("4:2:2 turned right") << "-sample 2x1" << QSize(1283, 1021) << 1 << "r90" << int(MMJpegHeader::Sub440) << 42.0;
        QTest::newRow("4:2:0 turned left") << "-sample 2x2" << QSize(1290, 1022) << 1 << "r-90" << int(MMJpegHeader::Sub420) << 42.0;
        QTest::newRow("stored on its side, then mirrored") << "-sample 2x1" << QSize(1283, 1021) << 6 << "mh" << int(MMJpegHeader::Sub440) << 42.0;
        QTest::newRow("grey half turn") << "-grayscale" << QSize(1111, 999) << 1 << "r180" << int(MMJpegHeader::SubGray) << 42.0;
        QTest::newRow("progressive 4:2:2 turned right") << "-sample 2x1 -progressive" << QSize(1283, 1021) << 1 << "r90" << int(MMJpegHeader::Sub440) << 42.0;
        QTest::newRow("progressive 4:2:0 stored on its side, flipped") << "-sample 2x2 -progressive" << QSize(1290, 1022) << 8 << "mv" << int(MMJpegHeader::Sub420) << 42.0;
        QTest::newRow("progressive grey turned left") << "-grayscale -progressive" << QSize(1111, 999) << 1 << "r-90" << int(MMJpegHeader::SubGray) << 42.0;
        // Half a chroma sample at a reversed side: decoded to RGB as before,
        // its chroma subsampled anew across the checkerboard's edges.
        QTest::newRow("4:2:0 odd width turned left") << "-sample 2x2" << QSize(1283, 1024) << 1 << "r-90" << int(MMJpegHeader::Sub420) << 30.0;
    }

    // A large turned picture saved through the runner is one re-encode away
    // from the decoded source turned, and its sampling turns with it.
    void planeSaveEqualsReferenceTurn()
    {
        auto [colour, size, orientation, commands, sampling, psnr] =
            fetch<QString, QSize, int, QString, int, double>({"colour", "size", "orientation", "commands", "sampling", "psnr"});
        const QString in = makeJpeg(photo(size.width(), size.height()), "planes-save.jpg", 92, colour.split(' '));
        QVERIFY(run("exiftool", { "-q", "-overwrite_original", QString("-Orientation#=%1").arg(orientation), in }));
        const QString out = path("planes-save-out.jpg");
        CommandList list;
        parseCommands(commands, list);
        QImage expected = djpeg(in);
        expected = MMOrientation::fromExif(orientation).apply(expected);
        QVERIFY(applyAll(list, expected));

        QCOMPARE(runCommands(in, out, commands), 0);

        QFile file(out);
        QVERIFY(file.open(QIODevice::ReadOnly));
        MMJpegHeader header;
        QVERIFY(header.read(file));
        QCOMPARE(int(header.subsampling()), sampling);
        QCOMPARE(header.isProgressive(), colour.contains("-progressive"));
        const QImage saved = djpeg(out);
        QCOMPARE(saved.size(), expected.size());
        int worst = 0;
        double squares = 0;
        for (int y = 0; y < saved.height(); ++y)
            for (int x = 0; x < saved.width(); ++x) {
                const QRgb a = saved.pixel(x, y), b = expected.pixel(x, y);
                for (int d : { qRed(a) - qRed(b), qGreen(a) - qGreen(b), qBlue(a) - qBlue(b) }) {
                    worst = qMax(worst, qAbs(d));
                    squares += d * d;
                }
            }
        const double measured = 10 * std::log10(255.0 * 255.0 * 3 * saved.width() * saved.height() / qMax(squares, 1.0));
        QVERIFY2(measured >= psnr && worst <= 40, qPrintable(QString("PSNR %1 dB, worst %2").arg(measured).arg(worst)));
    }

private:
    QString path(const QString &name) const { return m_dir.filePath(name); }
    // The picture as cjpeg codes it, with the options given.
    QString makeJpeg(const QImage &image, const QString &name, int quality, const QStringList &options = {});
    // photo() with fine detail, so that a block or strip out of place shows.
    static QImage detailedPhoto(const QSize &size);
    // TurboJPEG's raw decode of a JPEG: its planes, each as a grey picture.
    static std::vector<QImage> rawPlanes(const QByteArray &jpeg);
    QTemporaryDir m_dir;
};

QString TestEngineJpeg::makeJpeg(const QImage &image, const QString &name, int quality, const QStringList &options)
{
    const QString ppm = path(name + ".ppm"), out = path(name);
    const bool made = image.save(ppm, "PPM")
        && run("cjpeg", options + QStringList{ "-quality", QString::number(quality), "-outfile", out, ppm });
    return made ? out : QString();
}

QImage TestEngineJpeg::detailedPhoto(const QSize &size)
{
    QImage image = photo(size.width(), size.height());
    for (int y = 0; y < size.height(); y += 3)
        for (int x = (y * 7) % 5; x < size.width(); x += 5)
            image.setPixel(x, y, qRgb((x * 31) % 256, (y * 17) % 256, ((x + y) * 13) % 256));
    return image;
}

std::vector<QImage> TestEngineJpeg::rawPlanes(const QByteArray &jpeg)
{
    tjhandle tj = tjInitDecompress();
    const auto *data = reinterpret_cast<const unsigned char *>(jpeg.constData());
    int width = 0, height = 0, sampling = 0, colourspace = 0;
    std::vector<QImage> planes;
    if (tjDecompressHeader3(tj, data, (unsigned long)jpeg.size(), &width, &height, &sampling, &colourspace) == 0) {
        unsigned char *pointers[3] = {};
        int strides[3] = {};
        for (int i = 0; i < (sampling == TJSAMP_GRAY ? 1 : 3); ++i) {
            planes.emplace_back(tjPlaneWidth(i, width, sampling), tjPlaneHeight(i, height, sampling),
                                QImage::Format_Grayscale8);
            pointers[i] = planes.back().bits();
            strides[i] = int(planes.back().bytesPerLine());
        }
        if (tjDecompressToYUVPlanes(tj, data, (unsigned long)jpeg.size(), pointers, width, strides, height, 0) != 0)
            planes.clear();
    }
    tjDestroy(tj);
    return planes;
}

QTEST_GUILESS_MAIN(TestEngineJpeg)
#include "tst_engine_jpeg.moc"
