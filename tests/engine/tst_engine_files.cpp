// Reading, decoding and writing files: header information, bad input,
// orientation, reduced decoding of a real 20-megapixel photo, the command
// runner's output and its atomic replacement of the destination. Geometry
// is checked against ImageMagick. Memory is measured as the growth of the
// process's peak resident size, which the kernel lets us reset
// (/proc/self/clear_refs), so nothing here depends on timing.
#include "CraftedFiles.h"
#include "EngineTestTools.h"
#include "MMCommandRunner.h"
#include "MMImageDecoder.h"
#include "MMImageScaler.h"
#include "MMImageWriter.h"
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>
#include <sys/stat.h>
#include <unistd.h>

Q_DECLARE_METATYPE(MMImageFormat)

class TestEngineFiles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void imageInfo_data();
    void imageInfo();
    void badFilesAreRefused_data();
    void badFilesAreRefused();
    void trailingDataAfterJpegEndIsAccepted();
    void decodeIsUpright_data();
    void decodeIsUpright();
    void reducedDecodeSizes_data();
    void reducedDecodeSizes();
    void bigPhotoHeaderIsReadWithoutDecoding_data();
    void bigPhotoHeaderIsReadWithoutDecoding();
    void bigPhotoPreviewIsDecodedAtReducedScale();
    void runnerMatchesImageMagick_data();
    void runnerMatchesImageMagick();
    void runnerResizeIsCloseToImageMagick();
    void outputFormatFollowsExtension_data();
    void outputFormatFollowsExtension();
    void pngAlphaSurvives();
    void gifIsWrittenAsPng();
    void unusualPathsWork_data();
    void unusualPathsWork();
    void emptyListOnSameFileChangesNothing();
    void emptyListCopiesPicture();
    void failureLeavesDestinationUntouched_data();
    void failureLeavesDestinationUntouched();
    void permissionBitsAreKept();
    void symlinkAtDestinationIsReplacedNotFollowed();
    void writerRefusesUnknownExtension();
    void scaleFileWritesPreview_data();
    void scaleFileWritesPreview();

private:
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QString blocksJpeg(int orientation);
    QStringList tempFilesIn(const QString &dir) const;
    // Resets the peak resident size; false where the kernel cannot.
    static bool resetPeakMemory();
    static qint64 memoryKb(const char *field);
    QTemporaryDir m_dir;
};

void TestEngineFiles::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(EngineTestTools::photo(64, 48).save(path("photo.jpg"), "JPEG", 90));
    QVERIFY(EngineTestTools::noise(31, 17).save(path("noise.png"), "PNG"));
    QVERIFY(EngineTestTools::noise(30, 20).save(path("noise.bmp"), "BMP"));
    const QByteArray jpeg = EngineTestTools::bytes(path("photo.jpg"));
    QVERIFY(EngineTestTools::writeBytes(path("photo6.jpg"), CraftedFiles::withSegment(jpeg, CraftedFiles::exifOrientation(6))));
    QVERIFY(EngineTestTools::writeBytes(path("photo8le.jpg"), CraftedFiles::withSegment(jpeg, CraftedFiles::exifOrientation(8, false))));
}

void TestEngineFiles::imageInfo_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<MMImageFormat>("format");
    QTest::addColumn<int>("orientation");
    QTest::newRow("jpeg") << "photo.jpg" << QSize(64, 48) << MM_FORMAT_JPEG << 1;
    QTest::newRow("jpeg turned right is shown tall") << "photo6.jpg" << QSize(48, 64) << MM_FORMAT_JPEG << 6;
    QTest::newRow("jpeg little-endian EXIF") << "photo8le.jpg" << QSize(48, 64) << MM_FORMAT_JPEG << 8;
    QTest::newRow("png") << "noise.png" << QSize(31, 17) << MM_FORMAT_PNG << 1;
    QTest::newRow("bmp") << "noise.bmp" << QSize(30, 20) << MM_FORMAT_BMP << 1;
}

void TestEngineFiles::imageInfo()
{
    QFETCH(QString, file);
    QFETCH(QSize, size);
    QFETCH(MMImageFormat, format);
    QFETCH(int, orientation);
    MMImageInfo info;

    QCOMPARE(EngineTestTools::source(path(file)).getImageInfo(info), 0);

    QCOMPARE(QSize(info.width, info.height), size);
    QCOMPARE(info.format, format);
    QCOMPARE(info.orientation, orientation);
}

void TestEngineFiles::badFilesAreRefused_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray jpeg = EngineTestTools::bytes(path("photo.jpg"));
    const QByteArray png = EngineTestTools::bytes(path("noise.png"));
    QTest::newRow("zero bytes") << QByteArray();
    QTest::newRow("text") << QByteArray("this is not a picture\n");
    QTest::newRow("jpeg start marker only") << QByteArray("\xFF\xD8\xFF", 3);
    QTest::newRow("jpeg cut in its header") << jpeg.left(120);
    QTest::newRow("jpeg cut in its data") << jpeg.left(jpeg.size() * 2 / 3);
    QTest::newRow("jpeg missing last byte") << jpeg.left(jpeg.size() - 1);
    QTest::newRow("png cut in its data") << png.left(png.size() / 2);
    QTest::newRow("png missing end chunk") << png.left(png.size() - 12);
    QTest::newRow("png declaring 60000x60000") << CraftedFiles::pngHeaderOnly(60000, 60000);
    QTest::newRow("png side beyond 65535") << CraftedFiles::pngHeaderOnly(70000, 4);
    QTest::newRow("jpeg declaring 60000x60000") << CraftedFiles::jpegHeaderOnly(60000, 60000);
    QTest::newRow("jpeg declaring 20000x20000") << CraftedFiles::jpegHeaderOnly(20000, 20000);
}

void TestEngineFiles::badFilesAreRefused()
{
    QFETCH(QByteArray, content);
    const QString bad = path("bad.jpg");
    QVERIFY(EngineTestTools::writeBytes(bad, content));
    const QString out = path("bad-out.png");
    QVERIFY(EngineTestTools::writeBytes(out, "previous"));
    MMImageInfo info;
    info.width = 7;
    info.height = 7;
    info.format = MM_FORMAT_PNG;
    CommandList commands;
    parseCommands("r90", commands);

    QCOMPARE(EngineTestTools::source(bad).getImageInfo(info), -1);
    QCOMPARE(info.width, 0);
    QCOMPARE(info.height, 0);
    QCOMPARE(info.format, MM_FORMAT_UNKNOWN);
    QVERIFY(MMImageDecoder::decode(bad).isNull());
    QVERIFY(MMImageDecoder::decodeFitting(bad, QSize(100, 100)).isNull());
    QVERIFY(MMImageDecoder::decodeScaled(bad, QSize(10, 10)).isNull());
    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(bad), EngineTestTools::source(out), commands.list), -1);
    QCOMPARE(MMImageScaler::scaleFile(bad, out, QSize(10, 10)), -1);
    QCOMPARE(EngineTestTools::bytes(out), QByteArray("previous"));
}

void TestEngineFiles::trailingDataAfterJpegEndIsAccepted()
{
    // Some cameras append data after the picture's end marker.
    const QString file = path("trailing.jpg");
    QVERIFY(EngineTestTools::writeBytes(file, EngineTestTools::bytes(path("photo.jpg")) + QByteArray(5000, 'x')));
    MMImageInfo info;

    QCOMPARE(EngineTestTools::source(file).getImageInfo(info), 0);
    QCOMPARE(MMImageDecoder::decode(file).size(), QSize(64, 48));
}

QString TestEngineFiles::blocksJpeg(int orientation)
{
    // Letters as 16-pixel blocks, so that JPEG loss cannot blur one into
    // another: stored ABC/DEF.
    QImage blocks = EngineTestTools::fromLetters("ABC/DEF").scaled(48, 32);
    const QString plain = path(QString("blocks%1-plain.jpg").arg(orientation));
    blocks.save(plain, "JPEG", 95);
    const QString file = path(QString("blocks%1.jpg").arg(orientation));
    EngineTestTools::writeBytes(file, CraftedFiles::withSegment(EngineTestTools::bytes(plain),
                                                                CraftedFiles::exifOrientation(orientation)));
    return file;
}

void TestEngineFiles::decodeIsUpright_data()
{
    QTest::addColumn<int>("orientation");
    QTest::addColumn<QString>("upright");
    // What EXIF says each value means for stored ABC/DEF.
    QTest::newRow("1") << 1 << "ABC/DEF";
    QTest::newRow("2") << 2 << "CBA/FED";
    QTest::newRow("3") << 3 << "FED/CBA";
    QTest::newRow("4") << 4 << "DEF/ABC";
    QTest::newRow("5") << 5 << "AD/BE/CF";
    QTest::newRow("6") << 6 << "DA/EB/FC";
    QTest::newRow("7") << 7 << "FC/EB/DA";
    QTest::newRow("8") << 8 << "CF/BE/AD";
}

void TestEngineFiles::decodeIsUpright()
{
    QFETCH(int, orientation);
    QFETCH(QString, upright);
    const QString file = blocksJpeg(orientation);

    const QImage image = MMImageDecoder::decode(file);
    const QImage half = MMImageDecoder::decodeFitting(file, QSize(24, 24));

    QCOMPARE(EngineTestTools::blockLetters(image, 16), upright);
    QCOMPARE(EngineTestTools::blockLetters(half, 8), upright);
    if (EngineTestTools::hasTool("exiftool"))
        QCOMPARE(EngineTestTools::exifTag(file, "Orientation"), QString::number(orientation));
}

void TestEngineFiles::reducedDecodeSizes_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QSize>("bound");
    QTest::addColumn<QSize>("fitting");
    QTest::addColumn<QSize>("scaled");
    QTest::newRow("jpeg half") << "photo.jpg" << QSize(32, 32) << QSize(32, 24) << QSize(32, 32);
    QTest::newRow("jpeg not enlarged") << "photo.jpg" << QSize(640, 480) << QSize(64, 48) << QSize(640, 480);
    QTest::newRow("turned jpeg bound is upright") << "photo6.jpg" << QSize(24, 100) << QSize(24, 32) << QSize(24, 100);
    QTest::newRow("png") << "noise.png" << QSize(10, 10) << QSize(10, 5) << QSize(10, 10);
    QTest::newRow("bmp one pixel high") << "noise.bmp" << QSize(300, 1) << QSize(2, 1) << QSize(300, 1);
}

void TestEngineFiles::reducedDecodeSizes()
{
    QFETCH(QString, file);
    QFETCH(QSize, bound);
    QFETCH(QSize, fitting);
    QFETCH(QSize, scaled);

    QCOMPARE(MMImageDecoder::decodeFitting(path(file), bound).size(), fitting);
    QCOMPARE(MMImageDecoder::decodeScaled(path(file), bound).size(), scaled);
    QVERIFY(MMImageDecoder::decodeFitting(path(file), QSize(0, 10)).isNull());
    QVERIFY(MMImageDecoder::decodeScaled(path(file), QSize(-1, 10)).isNull());
}

static const char *const kKleiber = "/usr/share/backgrounds/Kleiber_by_Lukas_Baubkus.jpg";
static const char *const kPainting = "/usr/share/backgrounds/Painting-Colors_by__herobrine7gamer.jpg";

bool TestEngineFiles::resetPeakMemory()
{
    QFile clear("/proc/self/clear_refs");
    return clear.open(QIODevice::WriteOnly) && clear.write("5") == 1;
}

qint64 TestEngineFiles::memoryKb(const char *field)
{
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(field))
            return line.mid(qstrlen(field)).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

void TestEngineFiles::bigPhotoHeaderIsReadWithoutDecoding_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QSize>("size");
    QTest::newRow("Kleiber") << kKleiber << QSize(6028, 3391);
    QTest::newRow("Painting") << kPainting << QSize(6000, 4000);
}

void TestEngineFiles::bigPhotoHeaderIsReadWithoutDecoding()
{
    QFETCH(QString, file);
    QFETCH(QSize, size);
    if (!QFile::exists(file))
        QSKIP("the sample photos in /usr/share/backgrounds are not installed");
    if (!resetPeakMemory())
        QSKIP("this kernel does not let a process reset its peak memory");
    const qint64 before = memoryKb("VmRSS:");
    QElapsedTimer timer;
    timer.start();
    MMImageInfo info;

    QCOMPARE(EngineTestTools::source(file).getImageInfo(info), 0);

    const qint64 elapsed = timer.nsecsElapsed();
    const qint64 growth = memoryKb("VmHWM:") - before;
    QCOMPARE(QSize(info.width, info.height), size);
    QCOMPARE(info.format, MM_FORMAT_JPEG);
    // A decode needs four bytes a pixel: over 80 MB here.
    QVERIFY2(growth < 8 * 1024, qPrintable(QString("peak grew by %1 kB").arg(growth)));
    qInfo("getImageInfo: %.2f ms, peak memory +%lld kB", elapsed / 1e6, growth);
}

void TestEngineFiles::bigPhotoPreviewIsDecodedAtReducedScale()
{
    if (!QFile::exists(kKleiber))
        QSKIP("the sample photos in /usr/share/backgrounds are not installed");
    if (!resetPeakMemory())
        QSKIP("this kernel does not let a process reset its peak memory");
    const QString preview = path("preview.jpg");
    qint64 before = memoryKb("VmRSS:");
    QElapsedTimer timer;
    timer.start();

    const QImage fitted = MMImageDecoder::decodeFitting(kKleiber, QSize(480, 640));
    const int scaled = MMImageScaler::scaleFile(kKleiber, preview, QSize(480, 270));

    const qint64 elapsed = timer.nsecsElapsed();
    const qint64 growth = memoryKb("VmHWM:") - before;
    QCOMPARE(fitted.size(), QSize(480, 270));
    QCOMPARE(scaled, 0);
    QCOMPARE(QImage(preview).size(), QSize(480, 270));
    // At 1/8 DCT scale the decoded picture is 754x424 (1.3 MB).
    QVERIFY2(growth < 24 * 1024, qPrintable(QString("peak grew by %1 kB").arg(growth)));
    qInfo("decodeFitting + scaleFile to 480x270: %.1f ms, peak memory +%lld kB", elapsed / 1e6, growth);

    // The reduced decode looks like a full one scaled down smoothly; and
    // the full one shows that the measure above would have caught it.
    resetPeakMemory();
    before = memoryKb("VmRSS:");
    const QImage full = MMImageDecoder::decode(kKleiber);
    QVERIFY(memoryKb("VmHWM:") - before > 64 * 1024);
    const QImage reference = full.scaled(480, 270, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QVERIFY(EngineTestTools::meanChannelDifference(fitted, reference) < 3.0);
}

void TestEngineFiles::runnerMatchesImageMagick_data()
{
    QTest::addColumn<QString>("commands");
    QTest::addColumn<QStringList>("reference");
    QTest::addColumn<bool>("inPlace");
    QTest::newRow("right") << "r90" << QStringList{ "-rotate", "90" } << false;
    QTest::newRow("left") << "r-90" << QStringList{ "-rotate", "-90" } << false;
    QTest::newRow("half") << "r180" << QStringList{ "-rotate", "180" } << false;
    QTest::newRow("mirror horizontal") << "mh" << QStringList{ "-flop" } << false;
    QTest::newRow("mirror vertical") << "mv" << QStringList{ "-flip" } << false;
    QTest::newRow("crop") << "c3,2,10,7" << QStringList{ "-crop", "10x7+3+2", "+repage" } << false;
    QTest::newRow("crop clipped") << "c20,10,50,50" << QStringList{ "-crop", "11x7+20+10", "+repage" } << false;
    QTest::newRow("negative") << "e3" << QStringList{ "-negate" } << false;
    QTest::newRow("chain") << "r90 c2,3,10,8 mh e3"
                           << QStringList{ "-rotate", "90", "-crop", "10x8+2+3", "+repage", "-flop", "-negate" } << false;
    QTest::newRow("in place") << "r90 mv" << QStringList{ "-rotate", "90", "-flip" } << true;
}

void TestEngineFiles::runnerMatchesImageMagick()
{
    QFETCH(QString, commands);
    QFETCH(QStringList, reference);
    QFETCH(bool, inPlace);
    if (!EngineTestTools::hasTool("convert"))
        QSKIP("ImageMagick's convert is not installed");
    const QString in = inPlace ? path("inplace.png") : path("noise.png");
    if (inPlace) {
        QFile::remove(in);
        QVERIFY(QFile::copy(path("noise.png"), in));
    }
    const QString out = inPlace ? in : path("runner-out.png");
    const QString ref = path("runner-ref.png");
    QVERIFY(EngineTestTools::run("convert", QStringList{ in } + reference + QStringList{ ref }));
    CommandList list;
    parseCommands(commands, list);

    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(in), EngineTestTools::source(out), list.list), 0);

    const QImage result(out), expected(ref);
    QCOMPARE(result.size(), expected.size());
    QCOMPARE(EngineTestTools::maxChannelDifference(result, expected), 0);
    QVERIFY(tempFilesIn(m_dir.path()).isEmpty());
}

void TestEngineFiles::runnerResizeIsCloseToImageMagick()
{
    if (!EngineTestTools::hasTool("convert"))
        QSKIP("ImageMagick's convert is not installed");
    const QString in = path("smooth.png");
    QVERIFY(EngineTestTools::photo(400, 300).save(in));
    const QString out = path("smooth-out.png"), ref = path("smooth-ref.png");
    QVERIFY(EngineTestTools::run("convert", { in, "-resize", "100x60!", ref }));
    CommandList list;
    parseCommands("s100,60", list);

    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(in), EngineTestTools::source(out), list.list), 0);

    const QImage result(out);
    QCOMPARE(result.size(), QSize(100, 60));
    QVERIFY2(EngineTestTools::meanChannelDifference(result, QImage(ref)) < 4.0,
             qPrintable(QString::number(EngineTestTools::meanChannelDifference(result, QImage(ref)))));
}

void TestEngineFiles::outputFormatFollowsExtension_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("destination");
    QTest::addColumn<QByteArray>("magic");
    const QByteArray jpegMagic("\xFF\xD8\xFF", 3), pngMagic("\x89PNG", 4), bmpMagic("BM");
    QTest::newRow("jpeg to png") << "photo.jpg" << "f1.png" << pngMagic;
    QTest::newRow("png to jpg") << "noise.png" << "f2.jpg" << jpegMagic;
    QTest::newRow("png to JPEG upper case") << "noise.png" << "f3.JPEG" << jpegMagic;
    QTest::newRow("png to bmp") << "noise.png" << "f4.bmp" << bmpMagic;
    QTest::newRow("unknown extension keeps png") << "noise.png" << "f5.tmp" << pngMagic;
    QTest::newRow("unknown extension keeps jpeg") << "photo.jpg" << "f6.tmp" << jpegMagic;
    QTest::newRow("bare dot keeps jpeg") << "photo.jpg" << "f7." << jpegMagic;
    QTest::newRow("no extension keeps bmp") << "noise.bmp" << "f8" << bmpMagic;
}

void TestEngineFiles::outputFormatFollowsExtension()
{
    QFETCH(QString, source);
    QFETCH(QString, destination);
    QFETCH(QByteArray, magic);
    CommandList list;
    parseCommands("r90", list);

    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(path(source)), EngineTestTools::source(path(destination)),
                                  list.list), 0);

    QVERIFY(EngineTestTools::bytes(path(destination)).startsWith(magic));
    MMImageInfo in, out;
    QCOMPARE(EngineTestTools::source(path(source)).getImageInfo(in), 0);
    QCOMPARE(EngineTestTools::source(path(destination)).getImageInfo(out), 0);
    QCOMPARE(QSize(out.width, out.height), QSize(in.height, in.width));
}

void TestEngineFiles::pngAlphaSurvives()
{
    QImage alpha(4, 3, QImage::Format_ARGB32);
    alpha.fill(qRgba(200, 10, 10, 60));
    alpha.setPixel(0, 0, qRgba(0, 0, 0, 0));
    QVERIFY(alpha.save(path("alpha.png")));
    CommandList list;
    parseCommands("r90 e3", list);

    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(path("alpha.png")),
                                  EngineTestTools::source(path("alpha-out.png")), list.list), 0);

    const QImage result = QImage(path("alpha-out.png")).convertToFormat(QImage::Format_ARGB32);
    QVERIFY(result.hasAlphaChannel());
    QCOMPARE(result.size(), QSize(3, 4));
    QCOMPARE(qAlpha(result.pixel(2, 0)), 0); // the clear corner, turned
    QCOMPARE(result.pixel(0, 0), qRgba(55, 245, 245, 60));
}

void TestEngineFiles::gifIsWrittenAsPng()
{
    // Qt reads GIF but has no GIF writer: an edited GIF keeps its name and
    // holds a PNG, which every reader here recognises by its content.
    if (!EngineTestTools::hasTool("convert"))
        QSKIP("ImageMagick's convert is not installed");
    const QString gif = path("anim.gif");
    QVERIFY(EngineTestTools::run("convert", { "-size", "12x8", "xc:red", gif }));
    CommandList list;
    parseCommands("r90", list);

    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(gif), EngineTestTools::source(gif), list.list), 0);

    QVERIFY(EngineTestTools::bytes(gif).startsWith("\x89PNG"));
    MMImageInfo info;
    QCOMPARE(EngineTestTools::source(gif).getImageInfo(info), 0);
    QCOMPARE(QSize(info.width, info.height), QSize(8, 12));
    QCOMPARE(QImage(gif).pixel(3, 3) & 0xFFFFFF, 0xFF0000u);
}

void TestEngineFiles::unusualPathsWork_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blanks") << "my photo 1.jpg";
    QTest::newRow("non-ASCII") << QString::fromUtf8("f\xc3\xb6t\xc3\xb6-\xe5\x86\x99\xe7\x9c\x9f.jpg");
    QTest::newRow("two dots") << "a.b.jpg";
}

void TestEngineFiles::unusualPathsWork()
{
    QFETCH(QString, name);
    const QString file = path(name);
    QVERIFY(QFile::copy(path("photo6.jpg"), file));
    CommandList list;
    parseCommands("r90 e1", list);
    MMImageInfo info;

    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(file), EngineTestTools::source(file), list.list), 0);

    QCOMPARE(EngineTestTools::source(file).getImageInfo(info), 0);
    QCOMPARE(QSize(info.width, info.height), QSize(64, 48));
    QCOMPARE(info.orientation, 1);
}

void TestEngineFiles::emptyListOnSameFileChangesNothing()
{
    const QString file = path("same.jpg");
    QVERIFY(QFile::copy(path("photo6.jpg"), file));
    const QByteArray before = EngineTestTools::bytes(file);
    struct stat st0, st1;
    QCOMPARE(::stat(QFile::encodeName(file).constData(), &st0), 0);
    CommandList none, identity;
    parseCommands("r90 r90 mh mv", identity);

    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(file), EngineTestTools::source(file), none.list), 0);
    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(file), EngineTestTools::source(file), identity.list), 0);

    QCOMPARE(::stat(QFile::encodeName(file).constData(), &st1), 0);
    QCOMPARE(st1.st_ino, st0.st_ino); // not even rewritten
    QCOMPARE(EngineTestTools::bytes(file), before);
}

void TestEngineFiles::emptyListCopiesPicture()
{
    CommandList none;
    const QString out = path("copy.jpg");

    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(path("photo6.jpg")), EngineTestTools::source(out), none.list), 0);
    QCOMPARE(EngineTestTools::bytes(out), EngineTestTools::bytes(path("photo6.jpg")));

    // Into another format the picture is decoded, shown upright.
    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(path("photo6.jpg")), EngineTestTools::source(path("copy.png")),
                                  none.list), 0);
    QCOMPARE(QImage(path("copy.png")).size(), QSize(48, 64));
}

QStringList TestEngineFiles::tempFilesIn(const QString &dir) const
{
    return QDir(dir).entryList({ ".vo_*" }, QDir::Files | QDir::Hidden);
}

void TestEngineFiles::failureLeavesDestinationUntouched_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("commands");
    QTest::addColumn<QString>("destination");
    QTest::newRow("a command fails late") << "noise.png" << "r90 e3 c500,500,5,5" << "keep.png";
    QTest::newRow("source missing") << "nothing.png" << "r90" << "keep.png";
    QTest::newRow("jpeg edit, command fails") << "photo.jpg" << "mh c0,0,0,0" << "keep.jpg";
    QTest::newRow("destination directory missing") << "noise.png" << "r90" << "no-such-dir/out.png";
    QTest::newRow("destination is a directory") << "noise.png" << "r90" << "a-directory";
    if (::geteuid() != 0)
        QTest::newRow("directory not writable") << "noise.png" << "r90" << "locked/keep.png";
}

void TestEngineFiles::failureLeavesDestinationUntouched()
{
    QFETCH(QString, source);
    QFETCH(QString, commands);
    QFETCH(QString, destination);
    QDir(m_dir.path()).mkpath("a-directory");
    QDir(m_dir.path()).mkpath("locked");
    EngineTestTools::writeBytes(path("keep.png"), "previous");
    EngineTestTools::writeBytes(path("keep.jpg"), "previous");
    EngineTestTools::writeBytes(path("locked/keep.png"), "previous");
    QFile::setPermissions(path("locked"), QFile::ReadOwner | QFile::ExeOwner);
    const QByteArray before = EngineTestTools::bytes(path(destination));
    CommandList list;
    parseCommands(commands, list);

    const int result = MMCommandRunner::run(EngineTestTools::source(path(source)),
                                            EngineTestTools::source(path(destination)), list.list);
    QFile::setPermissions(path("locked"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    QCOMPARE(result, -1);
    QCOMPARE(EngineTestTools::bytes(path(destination)), before);
    QVERIFY(tempFilesIn(m_dir.path()).isEmpty());
    QVERIFY(tempFilesIn(path("locked")).isEmpty());
}

void TestEngineFiles::permissionBitsAreKept()
{
    const QString out = path("perm.png");
    EngineTestTools::writeBytes(out, "previous");
    QVERIFY(::chmod(QFile::encodeName(out).constData(), 0640) == 0);
    CommandList list;
    parseCommands("mh", list);

    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(path("noise.png")), EngineTestTools::source(out), list.list), 0);

    struct stat st;
    QCOMPARE(::stat(QFile::encodeName(out).constData(), &st), 0);
    QCOMPARE(int(st.st_mode & 07777), 0640);

    // A new file gets the usual permissions, not those of a private
    // temporary file.
    const mode_t mask = ::umask(022);
    ::umask(022);
    const QString fresh = path("perm-new.png");
    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(path("noise.png")), EngineTestTools::source(fresh), list.list), 0);
    ::umask(mask);
    QCOMPARE(::stat(QFile::encodeName(fresh).constData(), &st), 0);
    QCOMPARE(int(st.st_mode & 07777), 0644);
}

void TestEngineFiles::symlinkAtDestinationIsReplacedNotFollowed()
{
    const QString target = path("link-target.png");
    EngineTestTools::writeBytes(target, "previous");
    const QString link = path("link.png");
    QVERIFY(QFile::link(target, link));
    CommandList list;
    parseCommands("mv", list);

    QCOMPARE(MMCommandRunner::run(EngineTestTools::source(path("noise.png")), EngineTestTools::source(link), list.list), 0);

    QVERIFY(!QFileInfo(link).isSymLink());
    QCOMPARE(QImage(link).size(), QSize(31, 17));
    QCOMPARE(EngineTestTools::bytes(target), QByteArray("previous"));
}

void TestEngineFiles::writerRefusesUnknownExtension()
{
    const QImage image = EngineTestTools::noise(4, 4);

    QCOMPARE(MMImageWriter::write(image, path("w.unknownext")), -1);
    QCOMPARE(MMImageWriter::write(QImage(), path("w.png")), -1);
    QVERIFY(!QFile::exists(path("w.unknownext")));
    QCOMPARE(MMImageWriter::write(image, path("w.png")), 0);
    QCOMPARE(QImage(path("w.png")).convertToFormat(QImage::Format_RGB32), image);
}

void TestEngineFiles::scaleFileWritesPreview_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("destination");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("result");
    QTest::newRow("jpeg") << "photo.jpg" << "p1.jpg" << QSize(32, 24) << 0;
    QTest::newRow("turned jpeg, upright size") << "photo6.jpg" << "p2.jpg" << QSize(24, 32) << 0;
    QTest::newRow("png into unknown extension") << "noise.png" << "p3.tmp" << QSize(10, 6) << 0;
    QTest::newRow("empty size") << "photo.jpg" << "p4.jpg" << QSize(0, 24) << -1;
    QTest::newRow("missing source") << "none.jpg" << "p5.jpg" << QSize(32, 24) << -1;
}

void TestEngineFiles::scaleFileWritesPreview()
{
    QFETCH(QString, source);
    QFETCH(QString, destination);
    QFETCH(QSize, size);
    QFETCH(int, result);

    QCOMPARE(MMImageScaler::scaleFile(path(source), path(destination), size), result);

    if (result == 0) {
        MMImageInfo info;
        QCOMPARE(EngineTestTools::source(path(destination)).getImageInfo(info), 0);
        QCOMPARE(QSize(info.width, info.height), size);
        QCOMPARE(info.orientation, 1); // pixels upright, no orientation left
    } else {
        QVERIFY(!QFile::exists(path(destination)));
    }
}

QTEST_GUILESS_MAIN(TestEngineFiles)
#include "tst_engine_files.moc"
