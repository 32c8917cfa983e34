// Commands applied to pictures in memory, checked against pixels worked out
// by hand.
#include "EngineTestTools.h"
#include "MMPixelFilters.h"
#include "datarows.h"
#include "requiretool.h"
#include <QTemporaryDir>
#include <QtTest>

using namespace EngineTestTools;

static const char *const kStart = "ABCD/EFGH/IJKL";

// Every hue at every lightness: red across, green down, blue the other way.
static QImage colourful(int w, int h)
{
    QImage image(w, h, QImage::Format_RGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            image.setPixel(x, y, qRgb(255 * x / (w - 1), 255 * y / (h - 1), 255 - 255 * (x + y) / (w + h - 2)));
    return image;
}

// The largest jump between neighbours along each row, and whether every
// channel only rises from left to right.
static int largestStep(const QImage &image, bool *rising)
{
    int largest = 0;
    *rising = true;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 1; x < image.width(); ++x) {
            const QRgb a = image.pixel(x - 1, y), b = image.pixel(x, y);
            for (int shift : {0, 8, 16}) {
                const int from = (a >> shift) & 0xFF, to = (b >> shift) & 0xFF;
                largest = qMax(largest, qAbs(to - from));
                *rising = *rising && to >= from;
            }
        }
    }
    return largest;
}

class TestEngineCommands : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Overlay elements: a red strip opaque, half and fully clear; a green
        // dot; a file that is no picture.
        QImage strip(3, 1, QImage::Format_ARGB32);
        strip.setPixel(0, 0, qRgba(255, 0, 0, 255));
        strip.setPixel(1, 0, qRgba(255, 0, 0, 128));
        strip.setPixel(2, 0, qRgba(255, 0, 0, 0));
        QVERIFY(strip.save(m_dir.filePath("strip.png")));
        QImage dot(1, 1, QImage::Format_ARGB32);
        dot.fill(qRgba(0, 255, 0, 255));
        QVERIFY(dot.save(m_dir.filePath("dot.png")));
        QVERIFY(writeBytes(m_dir.filePath("text.png"), "not a picture"));
    }

    void commands_data()
    {
        // expected: "-": refused, picture untouched
        columns<QString, QString>({"commands", "expected"});
        QTest::newRow("right") << "r90" << "IEA/JFB/KGC/LHD";
        QTest::newRow("half") << "r180" << "LKJI/HGFE/DCBA";
        QTest::newRow("left") << "r-90" << "DHL/CGK/BFJ/AEI";
        QTest::newRow("270 is left") << "r270" << "DHL/CGK/BFJ/AEI";
        QTest::newRow("four rights") << "r90 r90 r90 r90" << kStart;
        QTest::newRow("mirror horizontal") << "mh" << "DCBA/HGFE/LKJI";
        QTest::newRow("mirror vertical") << "mv" << "IJKL/EFGH/ABCD";
        QTest::newRow("right, mirror: transpose") << "r90 mh" << "AEI/BFJ/CGK/DHL";
        QTest::newRow("mirror, right: transverse") << "mh r90" << "LHD/KGC/JFB/IEA";
        QTest::newRow("crop top-left pixel") << "c0,0,1,1" << "A";
        QTest::newRow("crop bottom-right pixel") << "c3,2,1,1" << "L";
        QTest::newRow("crop clipped right and bottom") << "c2,1,10,10" << "GH/KL";
        QTest::newRow("crop clipped left and top") << "c-5,-1,7,2" << "AB";
        QTest::newRow("crop too large to add up") << "c1,1,2147483647,2147483647" << "FGH/JKL";
        QTest::newRow("crop after a turn") << "r90 c0,1,2,2" << "JF/KG";
        QTest::newRow("turn not a quarter") << "r45" << "-";
        QTest::newRow("crop of zero width") << "c0,0,0,2" << "-";
        QTest::newRow("crop just right of the picture") << "c4,0,2,2" << "-";
        QTest::newRow("crop ending at the left edge") << "c-2,0,2,2" << "-";
        QTest::newRow("resize to nothing") << "s0,10" << "-";
        QTest::newRow("resize beyond the pixel limit") << "s60000,60000" << "-";
        QTest::newRow("unknown effect") << "e9" << "-";
        QTest::newRow("overlay of a missing file") << "o0,0,2,2,missing.png" << "-";
        QTest::newRow("overlay of a file that is no picture") << "o0,0,2,2,text.png" << "-";
        QTest::newRow("overlay into an empty rectangle") << "o0,0,0,2,dot.png" << "-";
    }

    void commands()
    {
        auto [commands, expected] = fetch<QString, QString>({"commands", "expected"});
        CommandList list;
        parseCommands(commands, list, m_dir.path());
        QImage image = fromLetters(kStart), null;
        const bool refused = expected == "-";

        QCOMPARE(applyAll(list, image), !refused);
        QVERIFY(!applyAll(list, null));

        QCOMPARE(toLetters(image), refused ? QString(kStart) : expected);
    }

    void resize_data()
    {
        columns<QSize, bool>({"target", "reduced"});
        QTest::newRow("tenfold smaller") << QSize(12, 12) << true;
        QTest::newRow("smaller, unevenly") << QSize(40, 60) << true;
        QTest::newRow("one pixel") << QSize(1, 1) << true;
        QTest::newRow("larger") << QSize(250, 130) << false;
    }

    void resize()
    {
        auto [target, reduced] = fetch<QSize, bool>({"target", "reduced"});
        // One-pixel checkerboard: area averaging gives mid grey, point sampling
        // black or white.
        QImage image(120, 120, QImage::Format_RGB32);
        for (int y = 0; y < 120; ++y)
            for (int x = 0; x < 120; ++x)
                image.setPixel(x, y, (x + y) % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
        CommandList list;
        parseCommands(QString("s%1,%2").arg(target.width()).arg(target.height()), list);

        QVERIFY(applyAll(list, image));

        QCOMPARE(image.size(), target);
        for (int y = 0; reduced && y < target.height(); ++y)
            for (int x = 0; x < target.width(); ++x)
                QVERIFY2(qAbs(qGray(image.pixel(x, y)) - 128) <= 8, qPrintable(QString("at %1,%2").arg(x).arg(y)));
    }

    void effects_data()
    {
        // background: with a centre pixel 40 lighter
        columns<int, QSize, QRgb, QPoint, QRgb>({"effect", "size", "background", "at", "expected"});
        const QRgb orange = qRgb(200, 100, 50), grey = qRgb(100, 100, 100), sky = qRgb(10, 120, 230);
        const QSize small(5, 5);
        // Grey = round((299 R + 587 G + 114 B) / 1000).
        QTest::newRow("grey of orange") << 1 << small << orange << QPoint(0, 0) << qRgb(124, 124, 124);
        // Sepia rows .393 .769 .189 / .349 .686 .168 / .272 .534 .131.
        QTest::newRow("sepia of orange") << 2 << small << orange << QPoint(4, 0) << qRgb(165, 147, 114);
        QTest::newRow("sepia of white clips") << 2 << small << qRgb(255, 255, 255) << QPoint(0, 1) << qRgb(255, 255, 239);
        QTest::newRow("negative") << 3 << small << orange << QPoint(4, 4) << qRgb(55, 155, 205);
        // Soft focus on a small picture:
        // radius-1 box blur (rounded per pass) averaged with the sharp picture.
        QTest::newRow("soft focus centre") << 4 << small << grey << QPoint(2, 2) << qRgb(122, 122, 122);
        QTest::newRow("soft focus diagonal") << 4 << small << grey << QPoint(1, 1) << qRgb(102, 102, 102);
        QTest::newRow("soft focus, large picture, far corner") << 4 << QSize(900, 700) << sky << QPoint(899, 0) << sky;
        // Sharpen: 5 x centre - the four sides.
        QTest::newRow("sharpen centre clips") << 5 << small << grey << QPoint(2, 2) << qRgb(255, 255, 255);
        QTest::newRow("sharpen side") << 5 << small << grey << QPoint(2, 1) << qRgb(60, 60, 60);
        QTest::newRow("sharpen diagonal untouched") << 5 << small << grey << QPoint(1, 1) << grey;
        QTest::newRow("sharpen, flat edge") << 5 << small << sky << QPoint(0, 3) << sky;
        // Emboss: 128 - three upper-left neighbours + three lower-right ones.
        QTest::newRow("emboss before the bump") << 6 << small << grey << QPoint(1, 1) << qRgb(168, 168, 168);
        QTest::newRow("emboss after the bump") << 6 << small << grey << QPoint(3, 3) << qRgb(88, 88, 88);
        QTest::newRow("emboss, flat corner") << 6 << small << sky << QPoint(4, 4) << qRgb(128, 128, 128);
    }

    void effects()
    {
        auto [effect, size, background, at, expected] = fetch<int, QSize, QRgb, QPoint, QRgb>({"effect", "size", "background", "at", "expected"});
        QImage image(size, QImage::Format_RGB32);
        image.fill(background);
        image.setPixel(size.width() / 2, size.height() / 2,
                       qRgb(qMin(255, qRed(background) + 40), qMin(255, qGreen(background) + 40), qMin(255, qBlue(background) + 40)));
        CommandList list;
        parseCommands(QString("e%1").arg(effect), list);

        QVERIFY(applyAll(list, image));

        QCOMPARE(image.pixel(at) & 0xFFFFFF, expected & 0xFFFFFF);
    }

    // Brightness and contrast as ImageMagick's -brightness-contrast,
    // saturation as its -modulate (HSL), on a picture with every hue and
    // lightness; no change at all leaves the picture as it was, bit for bit.
    // More colour stops at full saturation, where ImageMagick lets the
    // channels clip (and the hue shift): compared on a muted picture.
    void adjustMatchesImageMagick_data()
    {
        columns<QString, QStringList>({"adjust", "reference"});
        QTest::newRow("no change") << "0,0,0" << QStringList{};
        QTest::newRow("brighter") << "20,0,0" << QStringList{"-brightness-contrast", "20x0"};
        QTest::newRow("darker, harder") << "-30,50,0" << QStringList{"-brightness-contrast", "-30x50"};
        QTest::newRow("flatter") << "0,-40,0" << QStringList{"-brightness-contrast", "0x-40"};
        QTest::newRow("brightest, flattest") << "100,-100,0" << QStringList{"-brightness-contrast", "100x-100"};
        QTest::newRow("more colour") << "0,0,60" << QStringList{"-modulate", "100,160"};
        QTest::newRow("no colour") << "0,0,-100" << QStringList{"-modulate", "100,0"};
        QTest::newRow("all three") << "10,20,-30" << QStringList{"-brightness-contrast", "10x20", "-modulate", "100,70"};
    }

    void adjustMatchesImageMagick()
    {
        auto [adjust, reference] = fetch<QString, QStringList>({"adjust", "reference"});
        QImage picture = colourful(96, 64);
        if (adjust.endsWith(",60"))
            MMPixelFilters::adjust(picture, {0, -50, 0}); // at most half saturated
        QImage adjusted = picture;
        CommandList list;
        parseCommands("e8:" + adjust, list);

        QVERIFY(applyAll(list, adjusted));

        if (reference.isEmpty()) {
            QCOMPARE(adjusted, picture);
            return;
        }
        VO_REQUIRE_TOOL("convert");
        const QString in = m_dir.filePath("adjust-in.png"), ref = m_dir.filePath("adjust-ref.png");
        QVERIFY(picture.save(in));
        QVERIFY(run("convert", QStringList{in} + reference + QStringList{"-depth", "8", ref}));
        const QImage expected = QImage(ref).convertToFormat(QImage::Format_RGB32);
        QVERIFY2(maxDifference(adjusted, expected) <= 3, qPrintable(QString::number(maxDifference(adjusted, expected))));
        QVERIFY2(meanDifference(adjusted, expected) <= 0.6, qPrintable(QString::number(meanDifference(adjusted, expected))));
    }

    // Saved through the runner (decode, adjust, encode), a ramp of every
    // grey and a colour ramp stay smooth: every channel still only rises,
    // and no neighbours are further apart than the contrast's slope makes
    // them (1 at no more contrast, 2 at 40 and less).
    void adjustedGradientHasNoBands_data()
    {
        columns<QString, int>({"adjust", "step"});
        QTest::newRow("brighter") << "30,0,0" << 1;
        QTest::newRow("darker and flatter") << "-20,-50,0" << 1;
        QTest::newRow("harder") << "0,40,0" << 2;
        QTest::newRow("more colour") << "0,0,40" << 2;
        QTest::newRow("less colour, brighter") << "15,0,-60" << 1;
    }

    void adjustedGradientHasNoBands()
    {
        auto [adjust, step] = fetch<QString, int>({"adjust", "step"});
        QImage ramp(256, 2, QImage::Format_RGB32);
        for (int x = 0; x < 256; ++x) {
            ramp.setPixel(x, 0, qRgb(x, x, x));
            ramp.setPixel(x, 1, qRgb(x, x * 3 / 4, x / 2));
        }
        const QString in = m_dir.filePath("ramp.png"), out = m_dir.filePath("ramp-adjusted.png");
        QVERIFY(ramp.save(in));

        QCOMPARE(runCommands(in, out, "e8:" + adjust), 0);

        bool rising = false;
        const QImage adjusted = QImage(out).convertToFormat(QImage::Format_RGB32);
        // The colour row's own values are rounded (3x/4, x/2): only the
        // grey row is exact enough to rise at every step.
        largestStep(adjusted.copy(0, 0, 256, 1), &rising);
        QVERIFY(rising);
        const int largest = largestStep(adjusted, &rising);
        QVERIFY2(largest <= step, qPrintable(QString::number(largest)));
    }

    // A dull picture with a blue cast (each channel in a narrow band, a few
    // stray pixels beyond it): auto-fix stretches each band to the full
    // range, leaving the stray half percent to clip, so the cast goes. A
    // flat picture is stretched no more than eightfold. Levels given to the
    // command are used as they are, not measured again on the picture it
    // changes: that is how the full-size save repeats the preview.
    void autoFixStretchesEachChannel()
    {
        QImage dull(200, 100, QImage::Format_RGB32);
        for (int y = 0; y < dull.height(); ++y) {
            for (int x = 0; x < dull.width(); ++x) {
                const int v = x * 64 / dull.width(); // 0 .. 63
                dull.setPixel(x, y, qRgb(90 + v, 80 + v, 150 + v));
            }
        }
        for (int i = 0; i < 40; ++i) // 0.2 %: clipped
            dull.setPixel(i, 0, i % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
        const MMPixelFilters::Levels levels = MMPixelFilters::measureLevels(dull);
        for (int c = 0; c < 3; ++c) {
            const int base = c == 0 ? 90 : (c == 1 ? 80 : 150);
            QVERIFY2(qAbs(levels.low[c] - base) <= 1 && qAbs(levels.high[c] - (base + 63)) <= 1,
                     qPrintable(QString("channel %1: %2..%3").arg(c).arg(levels.low[c]).arg(levels.high[c])));
        }
        QImage fixed = dull;
        CommandList list;
        parseCommands("e7", list);
        QVERIFY(applyAll(list, fixed));
        // The band's ends become black and white, and the grey ramp it was
        // meant to be is grey again.
        QCOMPARE(fixed.pixel(0, 50) & 0xFFFFFF, 0x000000u);
        QCOMPARE(fixed.pixel(199, 50) & 0xFFFFFF, 0xFFFFFFu);
        for (int x = 0; x < 200; x += 7) {
            const QRgb p = fixed.pixel(x, 50);
            QVERIFY2(qAbs(qRed(p) - qGreen(p)) <= 1 && qAbs(qBlue(p) - qGreen(p)) <= 1, qPrintable(QString::number(p, 16)));
        }

        QImage flat(50, 50, QImage::Format_RGB32);
        flat.fill(qRgb(128, 128, 128));
        flat.setPixel(0, 0, qRgb(131, 131, 131));
        const MMPixelFilters::Levels flatLevels = MMPixelFilters::measureLevels(flat);
        QCOMPARE(flatLevels.high[0] - flatLevels.low[0], 32);
        MMPixelFilters::applyLevels(flat, flatLevels);
        QVERIFY(qAbs(qRed(flat.pixel(1, 1)) - 128) <= 4);

        MMEffectCommand given;
        given.setEffect(MMEffectCommand::EFFECT_AUTO_FIX);
        given.setLevels(MMPixelFilters::Levels());
        QImage kept = dull;
        QCOMPARE(given.apply(kept), 0);
        QCOMPARE(kept, dull);
    }

    void overlayBlendsScalesAndClips()
    {
        // On blue: the strip at 1,1; the dot grown to 2x3 at 2,2, once more
        // mostly off the bottom-right corner, and once wholly off the picture.
        QImage image(6, 5, QImage::Format_RGB32);
        image.fill(qRgb(0, 0, 255));
        CommandList list;
        parseCommands("o1,1,3,1,strip.png o2,2,2,3,dot.png o5,4,4,4,dot.png o10,10,2,2,dot.png", list, m_dir.path());

        QVERIFY(applyAll(list, image));

        QCOMPARE(image.size(), QSize(6, 5));
        QCOMPARE(image.pixel(1, 1) & 0xFFFFFF, 0xFF0000u);
        const QRgb half = image.pixel(2, 1); // half-covering red over blue
        QVERIFY2(qAbs(qRed(half) - 128) <= 1 && qGreen(half) == 0 && qAbs(qBlue(half) - 127) <= 1,
                 qPrintable(QString::number(half, 16)));
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 6; ++x) {
                if (y == 1 && (x == 1 || x == 2))
                    continue;
                const bool green = QRect(2, 2, 2, 3).contains(x, y) || (x == 5 && y == 4);
                QCOMPARE(image.pixel(x, y) & 0xFFFFFF, green ? 0x00FF00u : 0x0000FFu);
            }
        }
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestEngineCommands)
#include "tst_engine_commands.moc"
