// JPEG fidelity: lossless turns and flips (checked byte for byte against
// jpegtran), EXIF orientation, metadata kept through every kind of save,
// re-encoding at the source's quality and subsampling, and odd inputs.
#include "CraftedFiles.h"
#include "EngineTestTools.h"
#include "MMCommandRunner.h"
#include "MMImageDecoder.h"
#include "MMJpegHeader.h"
#include <QColorSpace>
#include <QTemporaryDir>
#include <QtTest>

class TestEngineJpeg : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void losslessMatchesJpegtran_data();
    void losslessMatchesJpegtran();
    void identityChainCopiesBytes();
    void imperfectSizeFallsBackToReencode();
    void orientationsComeOutUpright_data();
    void orientationsComeOutUpright();
    void metadataSurvivesSaves_data();
    void metadataSurvivesSaves();
    void thumbnailIsRedrawn();
    void qualityIsEstimated_data();
    void qualityIsEstimated();
    void reencodeKeepsQualityAndSubsampling_data();
    void reencodeKeepsQualityAndSubsampling();
    void greyStaysGreyUnlessColoured();
    void progressiveSource();
    void cmykSource();
    void brokenExifIsHarmless_data();
    void brokenExifIsHarmless();
    void damagedDataIsRefused_data();
    void damagedDataIsRefused();
    void strayBytesBeforeEndAreTolerated();

private:
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QString makeJpeg(const QImage &image, const QString &name, const QStringList &cjpegArgs);
    static int run(const QString &in, const QString &out, const QString &commands);
    QString blocks(int orientation, int blockSize);
    QTemporaryDir m_dir;
};

void TestEngineJpeg::initTestCase()
{
    for (const char *tool : { "cjpeg", "djpeg", "jpegtran", "exiftool", "convert", "identify" }) {
        if (!EngineTestTools::hasTool(tool))
            QSKIP(qPrintable(QString("reference tool %1 is not installed").arg(tool)));
    }
    QVERIFY(m_dir.isValid());
}

QString TestEngineJpeg::makeJpeg(const QImage &image, const QString &name, const QStringList &cjpegArgs)
{
    const QString ppm = path(name + ".ppm");
    image.convertToFormat(QImage::Format_RGB32).save(ppm, "PPM");
    const QString out = path(name);
    EngineTestTools::run("cjpeg", cjpegArgs + QStringList{ "-outfile", out, ppm });
    return out;
}

int TestEngineJpeg::run(const QString &in, const QString &out, const QString &commands)
{
    CommandList list;
    parseCommands(commands, list);
    return MMCommandRunner::run(EngineTestTools::source(in), EngineTestTools::source(out), list.list);
}

void TestEngineJpeg::losslessMatchesJpegtran_data()
{
    QTest::addColumn<QString>("commands");
    QTest::addColumn<QStringList>("jpegtran");
    QTest::newRow("right") << "r90" << QStringList{ "-rotate", "90" };
    QTest::newRow("half") << "r180" << QStringList{ "-rotate", "180" };
    QTest::newRow("left") << "r-90" << QStringList{ "-rotate", "270" };
    QTest::newRow("mirror horizontal") << "mh" << QStringList{ "-flip", "horizontal" };
    QTest::newRow("mirror vertical") << "mv" << QStringList{ "-flip", "vertical" };
    QTest::newRow("right then mirror is transpose") << "r90 mh" << QStringList{ "-transpose" };
    QTest::newRow("mirror then right is transverse") << "mh r90" << QStringList{ "-transverse" };
    QTest::newRow("three rights and both mirrors") << "r90 r90 r90 mh mv" << QStringList{ "-rotate", "90" };
    QTest::newRow("left twice") << "r-90 r-90" << QStringList{ "-rotate", "180" };
}

void TestEngineJpeg::losslessMatchesJpegtran()
{
    QFETCH(QString, commands);
    QFETCH(QStringList, jpegtran);
    // 4:2:0 with a size made of whole 16x16 blocks: every transform is
    // perfect.
    const QString in = makeJpeg(EngineTestTools::photo(256, 192), "lossless.jpg", { "-quality", "85" });
    const QString out = path("lossless-out.jpg");
    QByteArray reference;
    QVERIFY(EngineTestTools::run("jpegtran", QStringList{ "-perfect", "-copy", "all" } + jpegtran + QStringList{ in },
                                 &reference));

    QCOMPARE(run(in, out, commands), 0);

    // The source has no metadata to fix, so the file is what jpegtran
    // writes.
    QCOMPARE(EngineTestTools::bytes(out), reference);
}

void TestEngineJpeg::identityChainCopiesBytes()
{
    const QString in = makeJpeg(EngineTestTools::photo(100, 70), "identity.jpg", { "-quality", "80" });
    const QString out = path("identity-out.jpg");

    QCOMPARE(run(in, out, "r90 mh r90 mh"), 0);

    QCOMPARE(EngineTestTools::bytes(out), EngineTestTools::bytes(in));
}

void TestEngineJpeg::imperfectSizeFallsBackToReencode()
{
    // 250 wide is no whole number of 16-pixel blocks: jpegtran -perfect
    // refuses, and so do we; the picture is decoded and turned instead.
    const QString in = makeJpeg(EngineTestTools::photo(250, 170), "odd.jpg", { "-quality", "90" });
    QVERIFY(!EngineTestTools::run("jpegtran", { "-perfect", "-rotate", "90", in }));
    const QString out = path("odd-out.jpg");
    const QString ref = path("odd-ref.png");
    QVERIFY(EngineTestTools::run("convert", { in, "-rotate", "90", ref }));

    QCOMPARE(run(in, out, "r90"), 0);

    // The loss must be that of one re-encode at the source's settings, as
    // ImageMagick's own re-encode shows it.
    const QString imReencoded = path("odd-im.jpg");
    QVERIFY(EngineTestTools::run("convert", { in, "-rotate", "90", "-quality", "90", "-sampling-factor", "2x2", imReencoded }));
    const double allowed = EngineTestTools::meanChannelDifference(EngineTestTools::djpeg(imReencoded), QImage(ref));
    const QImage result = EngineTestTools::djpeg(out);
    QCOMPARE(result.size(), QSize(170, 250));
    const double mean = EngineTestTools::meanChannelDifference(result, QImage(ref));
    QVERIFY2(mean <= allowed * 1.1 + 0.2, qPrintable(QString("%1 against %2").arg(mean).arg(allowed)));
}

QString TestEngineJpeg::blocks(int orientation, int blockSize)
{
    // Stored ABC/DEF as blocks, tagged with the orientation by exiftool.
    const QImage image = EngineTestTools::fromLetters("ABC/DEF").scaled(3 * blockSize, 2 * blockSize);
    const QString name = QString("blocks-%1-%2.jpg").arg(orientation).arg(blockSize);
    const QString file = makeJpeg(image, name, { "-quality", "95" });
    EngineTestTools::run("exiftool", { "-q", "-overwrite_original", QString("-Orientation#=%1").arg(orientation), file });
    return file;
}

void TestEngineJpeg::orientationsComeOutUpright_data()
{
    QTest::addColumn<int>("orientation");
    QTest::addColumn<int>("blockSize");
    QTest::addColumn<QString>("commands");
    QTest::addColumn<QString>("expected");
    // The upright picture of each orientation (as EXIF defines it), then
    // turned right: what the user saw and asked for.
    const char *upright[] = { nullptr, "ABC/DEF", "CBA/FED", "FED/CBA", "DEF/ABC", "AD/BE/CF", "DA/EB/FC", "FC/EB/DA", "CF/BE/AD" };
    for (int o = 1; o <= 8; ++o) {
        const QImage turned = EngineTestTools::fromLetters(upright[o]).transformed(QTransform().rotate(90));
        const QString expected = EngineTestTools::toLetters(turned);
        // 16-pixel blocks allow a perfect transform, 20-pixel ones do not.
        QTest::addRow("%d lossless", o) << o << 16 << "r90" << expected;
        QTest::addRow("%d re-encoded", o) << o << 20 << "r90" << expected;
        QTest::addRow("%d decoded", o) << o << 16 << "r90 e0 c0,0,1000,1000" << expected;
        QTest::addRow("%d as shown", o) << o << 16 << "r90 r-90 mh mh r360 r-360 r180" << EngineTestTools::toLetters(
            EngineTestTools::fromLetters(upright[o]).transformed(QTransform().rotate(180)));
    }
}

void TestEngineJpeg::orientationsComeOutUpright()
{
    QFETCH(int, orientation);
    QFETCH(int, blockSize);
    QFETCH(QString, commands);
    QFETCH(QString, expected);
    const QString in = blocks(orientation, blockSize);
    QCOMPARE(EngineTestTools::exifTag(in, "Orientation"), QString::number(orientation));
    const QString out = path("upright-out.jpg");

    QCOMPARE(run(in, out, commands), 0);

    // djpeg ignores EXIF: the stored pixels themselves must be upright.
    const QImage stored = EngineTestTools::djpeg(out);
    QCOMPARE(EngineTestTools::blockLetters(stored, blockSize), expected);
    const QString tag = EngineTestTools::exifTag(out, "Orientation");
    QVERIFY2(tag.isEmpty() || tag == "1", qPrintable(tag));
}

void TestEngineJpeg::metadataSurvivesSaves_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("commands");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("lossless turn") << QSize(128, 96) << "r90" << QSize(96, 128);
    QTest::newRow("re-encoded turn") << QSize(130, 90) << "r-90" << QSize(90, 130);
    QTest::newRow("crop") << QSize(128, 96) << "c10,10,50,40" << QSize(50, 40);
    QTest::newRow("resize and style") << QSize(128, 96) << "s64,48 e2" << QSize(64, 48);
}

void TestEngineJpeg::metadataSurvivesSaves()
{
    QFETCH(QSize, size);
    QFETCH(QString, commands);
    QFETCH(QSize, expected);
    const QString icc = path("srgb.icc");
    QVERIFY(EngineTestTools::writeBytes(icc, QColorSpace(QColorSpace::SRgb).iccProfile()));
    const QString in = makeJpeg(EngineTestTools::photo(size.width(), size.height()), "meta.jpg", { "-quality", "90" });
    QVERIFY(EngineTestTools::run("exiftool", { "-q", "-overwrite_original", "-Make=VoTestMake", "-Orientation#=1",
                                               QString("-ExifImageWidth=%1").arg(size.width()),
                                               QString("-ExifImageHeight=%1").arg(size.height()),
                                               "-DateTimeOriginal=2020:01:02 03:04:05", "-XMP-dc:Title=Harbour",
                                               "-ICC_Profile<=" + icc, in }));
    const QString out = path("meta-out.jpg");

    QCOMPARE(run(in, out, commands), 0);

    QByteArray tags;
    QVERIFY(EngineTestTools::run("exiftool", { "-s3", "-n", "-Make", "-DateTimeOriginal", "-XMP-dc:Title",
                                               "-ICC_Profile:ProfileDescription", "-ExifImageWidth",
                                               "-ExifImageHeight", "-Orientation", out }, &tags));
    const QStringList lines = QString::fromUtf8(tags).trimmed().split('\n');
    QCOMPARE(lines.size(), 7);
    QCOMPARE(lines[0], QString("VoTestMake"));
    QCOMPARE(lines[1], QString("2020:01:02 03:04:05"));
    QCOMPARE(lines[2], QString("Harbour"));
    QVERIFY(!lines[3].isEmpty());
    QCOMPARE(lines[4].toInt(), expected.width());
    QCOMPARE(lines[5].toInt(), expected.height());
    QCOMPARE(lines[6], QString("1"));
    QCOMPARE(EngineTestTools::djpeg(out).size(), expected);
}

void TestEngineJpeg::thumbnailIsRedrawn()
{
    const QString in = makeJpeg(EngineTestTools::photo(320, 240), "thumb.jpg", { "-quality", "90" });
    const QString thumb = makeJpeg(EngineTestTools::photo(160, 120), "thumb-small.jpg", { "-quality", "70" });
    QVERIFY(EngineTestTools::run("exiftool", { "-q", "-overwrite_original", "-Make=VoTestMake",
                                               "-ThumbnailImage<=" + thumb, in }));
    const QString out = path("thumb-out.jpg");

    QCOMPARE(run(in, out, "r90"), 0);

    QByteArray embedded;
    QVERIFY(EngineTestTools::run("exiftool", { "-b", "-ThumbnailImage", out }, &embedded));
    const QImage small = QImage::fromData(embedded, "JPEG");
    QVERIFY(!small.isNull());
    QVERIFY2(small.height() > small.width(), "the thumbnail still shows the old, unturned picture");
}

void TestEngineJpeg::qualityIsEstimated_data()
{
    QTest::addColumn<int>("quality");
    for (int q : { 20, 50, 75, 85, 90, 95, 100 })
        QTest::addRow("%d", q) << q;
}

void TestEngineJpeg::qualityIsEstimated()
{
    QFETCH(int, quality);
    const QString in = makeJpeg(EngineTestTools::photo(64, 48), QString("q%1.jpg").arg(quality),
                                { "-quality", QString::number(quality) });
    QFile file(in);
    QVERIFY(file.open(QIODevice::ReadOnly));
    MMJpegHeader header;

    QVERIFY(header.read(file));

    QVERIFY2(qAbs(header.estimatedQuality() - quality) <= 2, qPrintable(QString::number(header.estimatedQuality())));
}

void TestEngineJpeg::reencodeKeepsQualityAndSubsampling_data()
{
    QTest::addColumn<int>("quality");
    QTest::addColumn<QString>("sample");
    QTest::addColumn<QString>("sampling");
    QTest::newRow("50 4:2:0") << 50 << "2x2" << "2x2,1x1,1x1";
    QTest::newRow("75 4:2:2") << 75 << "2x1" << "2x1,1x1,1x1";
    QTest::newRow("90 4:4:4") << 90 << "1x1" << "1x1,1x1,1x1";
    QTest::newRow("95 4:4:0") << 95 << "1x2" << "1x2,1x1,1x1";
}

void TestEngineJpeg::reencodeKeepsQualityAndSubsampling()
{
    QFETCH(int, quality);
    QFETCH(QString, sample);
    QFETCH(QString, sampling);
    const QString in = makeJpeg(EngineTestTools::photo(120, 80), "reencode.jpg",
                                { "-quality", QString::number(quality), "-sample", sample });
    const QString out = path("reencode-out.jpg");

    QCOMPARE(run(in, out, "e3"), 0);

    // ImageMagick's own estimate of the quality.
    QByteArray info;
    QVERIFY(EngineTestTools::run("identify", { "-format", "%Q %[jpeg:sampling-factor]", out }, &info));
    const QStringList fields = QString::fromUtf8(info).split(' ');
    QVERIFY2(qAbs(fields[0].toInt() - quality) <= 2, info.constData());
    QCOMPARE(fields[1], sampling);
}

void TestEngineJpeg::greyStaysGreyUnlessColoured()
{
    const QString in = makeJpeg(EngineTestTools::photo(64, 48), "grey.jpg", { "-quality", "85", "-grayscale" });
    const QString out = path("grey-out.jpg"), sepia = path("grey-sepia.jpg");

    QCOMPARE(run(in, out, "e3"), 0);
    QCOMPARE(run(in, sepia, "e2"), 0);

    QCOMPARE(EngineTestTools::exifTag(out, "ColorComponents"), QString("1"));
    QCOMPARE(EngineTestTools::exifTag(sepia, "ColorComponents"), QString("3"));
}

void TestEngineJpeg::progressiveSource()
{
    const QString in = makeJpeg(EngineTestTools::photo(128, 96), "progressive.jpg", { "-quality", "85", "-progressive" });
    const QString out = path("progressive-out.jpg"), styled = path("progressive-styled.jpg");
    QByteArray reference;
    QVERIFY(EngineTestTools::run("jpegtran", { "-perfect", "-copy", "all", "-progressive", "-rotate", "270", in }, &reference));

    QCOMPARE(run(in, out, "r-90"), 0);
    QCOMPARE(run(in, styled, "e3"), 0);

    EngineTestTools::writeBytes(path("progressive-ref.jpg"), reference);
    QCOMPARE(EngineTestTools::maxChannelDifference(EngineTestTools::djpeg(out), EngineTestTools::djpeg(path("progressive-ref.jpg"))), 0);
    QCOMPARE(EngineTestTools::exifTag(out, "EncodingProcess"), QString("2")); // progressive, Huffman
    QCOMPARE(EngineTestTools::exifTag(styled, "EncodingProcess"), QString("2"));
    QCOMPARE(EngineTestTools::djpeg(styled).size(), QSize(128, 96));
}

void TestEngineJpeg::cmykSource()
{
    const QString rgb = makeJpeg(EngineTestTools::photo(128, 96), "cmyk-rgb.jpg", { "-quality", "90" });
    const QString in = path("cmyk.jpg");
    QVERIFY(EngineTestTools::run("convert", { rgb, "-colorspace", "CMYK", "-quality", "90", in }));
    const QString turned = path("cmyk-turned.jpg"), styled = path("cmyk-styled.jpg");
    const QString ref = path("cmyk-ref.png");
    QVERIFY(EngineTestTools::run("convert", { in, "-colorspace", "sRGB", "-rotate", "90", ref }));

    QCOMPARE(run(in, turned, "r90"), 0);
    QCOMPARE(run(in, styled, "r90 e0 s96,128"), 0);

    // Lossless: still CMYK, turned.
    QByteArray info;
    QVERIFY(EngineTestTools::run("identify", { "-format", "%[colorspace] %wx%h", turned }, &info));
    QCOMPARE(info, QByteArray("CMYK 96x128"));
    // Re-encoded: RGB, and the colours are those ImageMagick sees.
    const QImage result = MMImageDecoder::decode(styled);
    QCOMPARE(result.size(), QSize(96, 128));
    const double mean = EngineTestTools::meanChannelDifference(result, QImage(ref));
    QVERIFY2(mean < 4.0, qPrintable(QString::number(mean)));
}

void TestEngineJpeg::brokenExifIsHarmless_data()
{
    QTest::addColumn<QByteArray>("exif");
    QTest::newRow("orientation 0") << CraftedFiles::exifOrientation(0);
    QTest::newRow("orientation 99") << CraftedFiles::exifOrientation(99);
    QTest::newRow("IFD beyond the block") << CraftedFiles::exifOrientation(6, true, 5000);
    QTest::newRow("IFD offset wraps") << CraftedFiles::exifOrientation(6, false, 0xFFFFFFF0u);
    QTest::newRow("entry count too large") << CraftedFiles::exifOrientation(6, true, 8, 60000);
    QTest::newRow("bad byte order") << QByteArray(CraftedFiles::exifOrientation(6)).replace("MM", "XY");
    QTest::newRow("empty EXIF") << CraftedFiles::segment(0xE1, QByteArray("Exif\0\0", 6));
}

void TestEngineJpeg::brokenExifIsHarmless()
{
    QFETCH(QByteArray, exif);
    const QString plain = makeJpeg(EngineTestTools::fromLetters("ABC/DEF").scaled(48, 32), "broken-plain.jpg", { "-quality", "95" });
    const QString in = path("broken.jpg");
    QVERIFY(EngineTestTools::writeBytes(in, CraftedFiles::withSegment(EngineTestTools::bytes(plain), exif)));
    const QString out = path("broken-out.jpg"), styled = path("broken-styled.jpg");
    MMImageInfo info;

    QCOMPARE(EngineTestTools::source(in).getImageInfo(info), 0);
    QCOMPARE(QSize(info.width, info.height), QSize(48, 32));
    QCOMPARE(run(in, out, "r90"), 0);
    QCOMPARE(run(in, styled, "r90 e0 s32,48"), 0);

    // The pixels are taken as stored and turned once.
    QCOMPARE(EngineTestTools::blockLetters(EngineTestTools::djpeg(out), 16), QString("DA/EB/FC"));
    QCOMPARE(EngineTestTools::blockLetters(EngineTestTools::djpeg(styled), 16), QString("DA/EB/FC"));
}

void TestEngineJpeg::damagedDataIsRefused_data()
{
    QTest::addColumn<QByteArray>("damage");
    QTest::addColumn<QString>("commands");
    // Written over the middle of the compressed data; the file still ends
    // with its end marker, so only the decoder can tell.
    QTest::newRow("end marker, turned") << QByteArray("\xFF\xD9", 2) << "r90";
    QTest::newRow("end marker, styled") << QByteArray("\xFF\xD9", 2) << "e1";
    QTest::newRow("restart marker out of place") << QByteArray("\xFF\xD5", 2) << "e1";
    QTest::newRow("frame marker in the data") << QByteArray("\xFF\xC4\x00\x02", 4) << "c0,0,10,10";
}

void TestEngineJpeg::damagedDataIsRefused()
{
    QFETCH(QByteArray, damage);
    QFETCH(QString, commands);
    const QString whole = makeJpeg(EngineTestTools::noise(128, 96), "whole.jpg", { "-quality", "90" });
    QByteArray bytes = EngineTestTools::bytes(whole);
    bytes.replace(bytes.size() / 2, damage.size(), damage);
    const QString in = path("damaged.jpg");
    QVERIFY(EngineTestTools::writeBytes(in, bytes));
    const QString out = path("damaged-out.jpg");
    QVERIFY(EngineTestTools::writeBytes(out, "previous"));

    QVERIFY(MMImageDecoder::decode(in).isNull());
    QCOMPARE(run(in, out, commands), -1);

    QCOMPARE(EngineTestTools::bytes(out), QByteArray("previous"));
}

void TestEngineJpeg::strayBytesBeforeEndAreTolerated()
{
    // libjpeg warns about "extraneous bytes" here; many camera files have
    // them and are fine.
    const QString whole = makeJpeg(EngineTestTools::photo(64, 48), "stray.jpg", { "-quality", "90" });
    const QByteArray bytes = EngineTestTools::bytes(whole);
    const QString in = path("stray-in.jpg");
    QVERIFY(EngineTestTools::writeBytes(in, bytes.left(bytes.size() - 2) + "\x12\x34\x56" + bytes.right(2)));
    const QString out = path("stray-out.jpg");

    QCOMPARE(MMImageDecoder::decode(in).size(), QSize(64, 48));
    QCOMPARE(run(in, out, "r90"), 0);

    QCOMPARE(EngineTestTools::djpeg(out).size(), QSize(48, 64));
}

QTEST_GUILESS_MAIN(TestEngineJpeg)
#include "tst_engine_jpeg.moc"
