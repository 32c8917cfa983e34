// Commands applied to pictures in memory, checked against pixels worked out
// by hand.
#include "EngineTestTools.h"
#include "datarows.h"
#include <QTemporaryDir>
#include <QtTest>

using namespace EngineTestTools;

static const char *const kStart = "ABCD/EFGH/IJKL";

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
        QTest::newRow("unknown effect") << "e7" << "-";
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
