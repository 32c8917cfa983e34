// Commands applied to pictures in memory, checked against pixels worked out
// by hand.
#include "EngineTestTools.h"
#include "MMOrientation.h"
#include <QTemporaryDir>
#include <QtTest>

class TestEngineCommands : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void geometry_data();
    void geometry();
    void fourRightTurnsGiveOriginal();
    void orientationComposesLikeSuccessiveApplication();
    void crop_data();
    void crop();
    void resizeGivesTargetSize();
    void resizeAveragesOnReduction();
    void pointEffects_data();
    void pointEffects();
    void neighbourhoodEffects_data();
    void neighbourhoodEffects();
    void uniformPictureSurvivesFilters_data();
    void uniformPictureSurvivesFilters();
    void effectsKeepAlpha();
    void overlayBlendsWithAlphaAndScales();
    void overlayClipsAtPictureEdge();
    void refusedCommandLeavesImage_data();
    void refusedCommandLeavesImage();

private:
    QTemporaryDir m_dir;
};

void TestEngineCommands::initTestCase()
{
    // Overlay elements: a red strip opaque, half and fully clear, and a
    // green dot.
    QImage strip(3, 1, QImage::Format_ARGB32);
    strip.setPixel(0, 0, qRgba(255, 0, 0, 255));
    strip.setPixel(1, 0, qRgba(255, 0, 0, 128));
    strip.setPixel(2, 0, qRgba(255, 0, 0, 0));
    QVERIFY(strip.save(m_dir.filePath("strip.png")));
    QImage dot(1, 1, QImage::Format_ARGB32);
    dot.fill(qRgba(0, 255, 0, 255));
    QVERIFY(dot.save(m_dir.filePath("dot.png")));
    QVERIFY(EngineTestTools::writeBytes(m_dir.filePath("text.png"), "not a picture"));
}

void TestEngineCommands::geometry_data()
{
    QTest::addColumn<QString>("commands");
    QTest::addColumn<QString>("expected");
    // Start picture:  ABC
    //                 DEF
    QTest::newRow("right") << "r90" << "DA/EB/FC";
    QTest::newRow("half") << "r180" << "FED/CBA";
    QTest::newRow("left") << "r-90" << "CF/BE/AD";
    QTest::newRow("270 is left") << "r270" << "CF/BE/AD";
    QTest::newRow("-270 is right") << "r-270" << "DA/EB/FC";
    QTest::newRow("450 is right") << "r450" << "DA/EB/FC";
    QTest::newRow("full turn") << "r360" << "ABC/DEF";
    QTest::newRow("mirror horizontal") << "mh" << "CBA/FED";
    QTest::newRow("mirror vertical") << "mv" << "DEF/ABC";
    QTest::newRow("right then mirror h is transpose") << "r90 mh" << "AD/BE/CF";
    QTest::newRow("mirror h then right is transverse") << "mh r90" << "FC/EB/DA";
    QTest::newRow("both mirrors are a half turn") << "mh mv" << "FED/CBA";
    QTest::newRow("crop after turn") << "r90 c0,1,2,2" << "EB/FC";
}

void TestEngineCommands::geometry()
{
    QFETCH(QString, commands);
    QFETCH(QString, expected);
    CommandList list;
    parseCommands(commands, list);
    QImage image = EngineTestTools::fromLetters("ABC/DEF");

    QVERIFY(applyAll(list, image));

    QCOMPARE(EngineTestTools::toLetters(image), expected);
}

void TestEngineCommands::fourRightTurnsGiveOriginal()
{
    for (QImage::Format format : { QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_Grayscale8 }) {
        const QImage original = EngineTestTools::noise(37, 21).convertToFormat(format);
        QImage image = original;
        CommandList list;
        parseCommands("r90 r90 r90 r90", list);

        QVERIFY(applyAll(list, image));

        QCOMPARE(image, original);
    }
}

void TestEngineCommands::orientationComposesLikeSuccessiveApplication()
{
    const QImage start = EngineTestTools::fromLetters("ABC/DEF");
    for (int a = 1; a <= 8; ++a) {
        for (int b = 1; b <= 8; ++b) {
            const MMOrientation first = MMOrientation::fromExif(a), second = MMOrientation::fromExif(b);
            QVERIFY2(second.apply(first.apply(start)) == first.then(second).apply(start),
                     qPrintable(QString("%1 then %2").arg(a).arg(b)));
        }
    }
}

void TestEngineCommands::crop_data()
{
    QTest::addColumn<MMRect>("rect");
    QTest::addColumn<QString>("expected");
    // Start picture: ABCD / EFGH / IJKL
    QTest::newRow("single top-left") << MMRect(0, 0, 1, 1) << "A";
    QTest::newRow("single bottom-right") << MMRect(3, 2, 1, 1) << "L";
    QTest::newRow("middle") << MMRect(1, 1, 2, 2) << "FG/JK";
    QTest::newRow("clipped right and bottom") << MMRect(2, 1, 10, 10) << "GH/KL";
    QTest::newRow("clipped left and top") << MMRect(-5, -1, 7, 2) << "AB";
    QTest::newRow("huge does not wrap") << MMRect(1, 1, INT_MAX, INT_MAX) << "FGH/JKL";
}

void TestEngineCommands::crop()
{
    QFETCH(MMRect, rect);
    QFETCH(QString, expected);
    QImage image = EngineTestTools::fromLetters("ABCD/EFGH/IJKL");
    MMCropCommand crop;
    crop.setRect(rect);

    QCOMPARE(crop.apply(image), 0);

    QCOMPARE(EngineTestTools::toLetters(image), expected);
}

void TestEngineCommands::resizeGivesTargetSize()
{
    for (const QSize target : { QSize(50, 30), QSize(10, 60), QSize(250, 150), QSize(1, 1) }) {
        QImage image = EngineTestTools::noise(100, 60);
        MMResizeCommand resize;
        resize.setTargetSize(MMSize(target.width(), target.height()));

        QCOMPARE(resize.apply(image), 0);

        QCOMPARE(image.size(), target);
    }
}

void TestEngineCommands::resizeAveragesOnReduction()
{
    // One-pixel checkerboard: area averaging gives mid grey everywhere,
    // point sampling would give black or white.
    QImage image(120, 120, QImage::Format_RGB32);
    for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 120; ++x)
            image.setPixel(x, y, (x + y) % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
    MMResizeCommand resize;
    resize.setTargetSize(MMSize(12, 12));

    QCOMPARE(resize.apply(image), 0);

    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 12; ++x)
            QVERIFY(qAbs(qGray(image.pixel(x, y)) - 128) <= 8);
}

void TestEngineCommands::pointEffects_data()
{
    QTest::addColumn<int>("effect");
    QTest::addColumn<QRgb>("input");
    QTest::addColumn<QRgb>("expected");
    // Grey = round((299 R + 587 G + 114 B) / 1000).
    QTest::newRow("grey of orange") << 1 << qRgb(200, 100, 50) << qRgb(124, 124, 124);
    QTest::newRow("grey of blue") << 1 << qRgb(0, 0, 255) << qRgb(29, 29, 29);
    // Sepia rows .393 .769 .189 / .349 .686 .168 / .272 .534 .131.
    QTest::newRow("sepia of orange") << 2 << qRgb(200, 100, 50) << qRgb(165, 147, 114);
    QTest::newRow("sepia of white clips") << 2 << qRgb(255, 255, 255) << qRgb(255, 255, 239);
    QTest::newRow("negative") << 3 << qRgb(200, 100, 50) << qRgb(55, 155, 205);
    QTest::newRow("none") << 0 << qRgb(200, 100, 50) << qRgb(200, 100, 50);
}

void TestEngineCommands::pointEffects()
{
    QFETCH(int, effect);
    QFETCH(QRgb, input);
    QFETCH(QRgb, expected);
    QImage image(3, 2, QImage::Format_RGB32);
    image.fill(input);
    QImage reference(3, 2, QImage::Format_RGB32);
    reference.fill(expected);
    MMEffectCommand command;
    command.setEffect(effect);

    QCOMPARE(command.apply(image), 0);

    QCOMPARE(image, reference);
}

void TestEngineCommands::neighbourhoodEffects_data()
{
    QTest::addColumn<int>("effect");
    QTest::addColumn<QPoint>("at");
    QTest::addColumn<int>("expected");
    // A 5x5 grey (100) picture with a lighter centre (140).
    // Sharpen: 5 x centre - the four sides.
    QTest::newRow("sharpen centre clips") << 5 << QPoint(2, 2) << 255;
    QTest::newRow("sharpen side") << 5 << QPoint(2, 1) << 60;
    QTest::newRow("sharpen diagonal untouched") << 5 << QPoint(1, 1) << 100;
    // Soft focus on a small picture: radius-1 box blur (rounded per pass)
    // averaged with the sharp picture.
    QTest::newRow("soft focus centre") << 4 << QPoint(2, 2) << 122;
    QTest::newRow("soft focus diagonal") << 4 << QPoint(1, 1) << 102;
    QTest::newRow("soft focus far") << 4 << QPoint(0, 4) << 100;
    // Emboss: 128 - three upper-left neighbours + three lower-right ones.
    QTest::newRow("emboss before the bump") << 6 << QPoint(1, 1) << 168;
    QTest::newRow("emboss after the bump") << 6 << QPoint(3, 3) << 88;
    QTest::newRow("emboss beside the diagonal") << 6 << QPoint(3, 1) << 128;
}

void TestEngineCommands::neighbourhoodEffects()
{
    QFETCH(int, effect);
    QFETCH(QPoint, at);
    QFETCH(int, expected);
    QImage image(5, 5, QImage::Format_RGB32);
    image.fill(qRgb(100, 100, 100));
    image.setPixel(2, 2, qRgb(140, 140, 140));
    MMEffectCommand command;
    command.setEffect(effect);

    QCOMPARE(command.apply(image), 0);

    QCOMPARE(image.pixel(at) & 0xFFFFFF, qRgb(expected, expected, expected) & 0xFFFFFF);
}

void TestEngineCommands::uniformPictureSurvivesFilters_data()
{
    QTest::addColumn<int>("effect");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QRgb>("expected");
    QTest::newRow("soft focus, large radius") << 4 << QSize(900, 700) << qRgb(10, 120, 230);
    QTest::newRow("soft focus, one pixel") << 4 << QSize(1, 1) << qRgb(10, 120, 230);
    QTest::newRow("sharpen") << 5 << QSize(7, 5) << qRgb(10, 120, 230);
    QTest::newRow("emboss is flat grey") << 6 << QSize(7, 5) << qRgb(128, 128, 128);
}

void TestEngineCommands::uniformPictureSurvivesFilters()
{
    QFETCH(int, effect);
    QFETCH(QSize, size);
    QFETCH(QRgb, expected);
    QImage image(size, QImage::Format_RGB32);
    image.fill(qRgb(10, 120, 230));
    QImage reference(size, QImage::Format_RGB32);
    reference.fill(expected);
    MMEffectCommand command;
    command.setEffect(effect);

    QCOMPARE(command.apply(image), 0);

    QCOMPARE(image, reference);
}

void TestEngineCommands::effectsKeepAlpha()
{
    for (int effect = MMEffectCommand::EFFECT_GRAYSCALE; effect < MMEffectCommand::EFFECT_COUNT; ++effect) {
        QImage image(4, 3, QImage::Format_ARGB32);
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 4; ++x)
                image.setPixel(x, y, qRgba(40 * x, 60 * y, 90, 20 + 50 * x + 10 * y));
        MMEffectCommand command;
        command.setEffect(effect);

        QCOMPARE(command.apply(image), 0);

        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 4; ++x)
                QCOMPARE(qAlpha(image.pixel(x, y)), 20 + 50 * x + 10 * y);
    }
}

void TestEngineCommands::overlayBlendsWithAlphaAndScales()
{
    QImage image(6, 5, QImage::Format_RGB32);
    image.fill(qRgb(0, 0, 255));
    CommandList list;
    parseCommands("o1,1,3,1,strip.png o2,2,2,3,dot.png", list, m_dir.path());

    QVERIFY(applyAll(list, image));

    QCOMPARE(image.pixel(1, 1) & 0xFFFFFF, 0xFF0000u);
    // Half-covering red over blue: about half of each.
    const QRgb half = image.pixel(2, 1);
    QVERIFY(qAbs(qRed(half) - 128) <= 1 && qGreen(half) == 0 && qAbs(qBlue(half) - 127) <= 1);
    QCOMPARE(image.pixel(3, 1) & 0xFFFFFF, 0x0000FFu);
    // The dot, grown to fill its 2x3 rectangle and nothing else.
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x)
            if (y != 1)
                QCOMPARE(image.pixel(x, y) & 0xFFFFFF, QRect(2, 2, 2, 3).contains(x, y) ? 0x00FF00u : 0x0000FFu);
}

void TestEngineCommands::overlayClipsAtPictureEdge()
{
    QImage image(QSize(4, 4), QImage::Format_Grayscale8);
    image.fill(Qt::black);
    CommandList list;
    parseCommands("o3,3,4,4,dot.png o10,10,2,2,dot.png", list, m_dir.path());

    QVERIFY(applyAll(list, image));

    QCOMPARE(image.size(), QSize(4, 4));
    QCOMPARE(image.pixel(3, 3) & 0xFFFFFF, 0x00FF00u); // a grey picture takes colour
    QCOMPARE(image.pixel(2, 3) & 0xFFFFFF, 0u);
    QCOMPARE(image.pixel(3, 2) & 0xFFFFFF, 0u);
}

void TestEngineCommands::refusedCommandLeavesImage_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("rotation not a quarter turn") << "r45";
    QTest::newRow("crop of zero width") << "c0,0,0,2";
    QTest::newRow("crop of negative height") << "c0,0,2,-1";
    QTest::newRow("crop right of the picture") << "c3,0,2,2";
    QTest::newRow("crop ending at the left edge") << "c-2,0,2,2";
    QTest::newRow("resize to nothing") << "s0,10";
    QTest::newRow("resize beyond the pixel limit") << "s60000,60000";
    QTest::newRow("unknown effect") << "e7";
    QTest::newRow("overlay of a missing file") << "o0,0,2,2,missing.png";
    QTest::newRow("overlay of a file that is no picture") << "o0,0,2,2,text.png";
    QTest::newRow("overlay into an empty rectangle") << "o0,0,0,2,dot.png";
}

void TestEngineCommands::refusedCommandLeavesImage()
{
    QFETCH(QString, command);
    CommandList list;
    parseCommands(command, list, m_dir.path());
    QCOMPARE(int(list.list.size()), 1);
    QImage image = EngineTestTools::fromLetters("ABC/DEF");
    QImage null;

    QCOMPARE(list.list.front()->apply(image), -1);
    QCOMPARE(list.list.front()->apply(null), -1);

    QCOMPARE(EngineTestTools::toLetters(image), QString("ABC/DEF"));
}

QTEST_GUILESS_MAIN(TestEngineCommands)
#include "tst_engine_commands.moc"
