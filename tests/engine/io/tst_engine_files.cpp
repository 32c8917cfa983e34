// Reading and writing files: bad input, the header of a real 20-megapixel
// photo read without decoding it, and the command runner checked against
// ImageMagick. Memory is measured as the growth of the process's peak
// resident size, which the kernel lets us reset (/proc/self/clear_refs).
#include "EngineTestTools.h"
#include "MMImageScaler.h"
#include "MMImageDecoder.h"
#include "requiretool.h"
#include "datarows.h"
#include <QColorSpace>
#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

using namespace EngineTestTools;

static bool resetPeakMemory()
{
    QFile clear("/proc/self/clear_refs");
    return clear.open(QIODevice::WriteOnly) && clear.write("5") == 1;
}

static qint64 memoryKb(const char *field)
{
    QFile status("/proc/self/status");
    const QByteArray text = status.open(QIODevice::ReadOnly) ? status.readAll() : QByteArray();
    const int at = text.indexOf(field);
    return at < 0 ? -1 : text.mid(at + qstrlen(field)).trimmed().split(' ').first().toLongLong();
}

class TestEngineFiles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(photo(64, 48).save(path("photo.jpg"), "JPEG", 90));
        QVERIFY(photo(31, 17).save(path("photo.png"), "PNG"));
        const QByteArray jpeg = bytes(path("photo.jpg"));
        QVERIFY(writeBytes(path("empty.jpg"), QByteArray()));
        QVERIFY(writeBytes(path("text.jpg"), "this is not a picture\n"));
        QVERIFY(writeBytes(path("cut-header.jpg"), jpeg.left(120)));
        QVERIFY(writeBytes(path("cut-data.jpg"), jpeg.left(jpeg.size() * 2 / 3)));
        // A whole picture whose frame header claims 60000x60000.
        const int frame = jpeg.indexOf("\xFF\xC0");
        QVERIFY(frame > 0);
        QVERIFY(writeBytes(path("bomb.jpg"), QByteArray(jpeg).replace(frame + 5, 4, QByteArray("\xEA\x60\xEA\x60", 4))));
    }

    void badInputIsRefused_data()
    {
        columns<QString, QString, int>({"source", "commands", "infoResult"});
        QTest::newRow("missing") << "none.jpg" << "r90" << -1;
        QTest::newRow("zero bytes") << "empty.jpg" << "r90" << -1;
        QTest::newRow("not a picture") << "text.jpg" << "e1" << -1;
        QTest::newRow("jpeg cut in its header") << "cut-header.jpg" << "r90" << -1;
        QTest::newRow("jpeg cut in its data, turned") << "cut-data.jpg" << "r90" << -1;
        QTest::newRow("jpeg cut in its data, styled") << "cut-data.jpg" << "e3" << -1;
        QTest::newRow("jpeg declaring 60000x60000") << "bomb.jpg" << "e1" << -1;
        QTest::newRow("a command fails late") << "photo.png" << "r90 e3 c500,500,5,5" << 0;
        QTest::newRow("jpeg turn, a command fails") << "photo.jpg" << "mh c0,0,0,0" << 0;
    }

    void badInputIsRefused()
    {
        auto [source, commands, infoResult] = fetch<QString, QString, int>({"source", "commands", "infoResult"});
        const QString out = path("keep.jpg");
        QVERIFY(writeBytes(out, "previous"));
        MMImageInfo info{ 7, 7, MM_FORMAT_PNG, 3 }; // all to be reset

        QCOMPARE(EngineTestTools::source(path(source)).getImageInfo(info), infoResult);
        QCOMPARE(runCommands(path(source), out, commands), -1);

        if (infoResult != 0) {
            QCOMPARE(QSize(info.width, info.height), QSize(0, 0));
            QCOMPARE(info.format, MM_FORMAT_UNKNOWN);
            QVERIFY(MMImageDecoder::decode(path(source)).isNull());
        }
        QCOMPARE(bytes(out), QByteArray("previous"));
        QCOMPARE(QDir(m_dir.path()).entryList({ ".vo_*" }, QDir::Files | QDir::Hidden), QStringList());
    }

    // The header of a 20-megapixel photo is read, and its preview decoded,
    // without a full decode (over 80 MB at four bytes a pixel), which the
    // measure does see.
    void bigPhotoIsReadWithoutDecodingItWhole()
    {
        const QString file = "/usr/share/backgrounds/Kleiber_by_Lukas_Baubkus.jpg";
        VO_REQUIRE_FILE(file);
        if (!resetPeakMemory())
            QSKIP("this kernel does not let a process reset its peak memory");
        qint64 before = memoryKb("VmRSS:");
        MMImageInfo info;
        QCOMPARE(EngineTestTools::source(file).getImageInfo(info), 0);
        qint64 growth = memoryKb("VmHWM:") - before;
        QCOMPARE(QSize(info.width, info.height), QSize(6028, 3391));
        QCOMPARE(info.format, MM_FORMAT_JPEG);
        QVERIFY2(growth < 8 * 1024, qPrintable(QString("header: peak grew by %1 kB").arg(growth)));

        // An eighth-scale decode needs about 1.3 MB.
        QVERIFY(resetPeakMemory());
        before = memoryKb("VmRSS:");
        QCOMPARE(MMImageScaler::scaleFile(file, path("preview.jpg"), QSize(480, 270)), 0);
        growth = memoryKb("VmHWM:") - before;
        QCOMPARE(QImage(path("preview.jpg")).size(), QSize(480, 270));
        QVERIFY2(growth < 24 * 1024, qPrintable(QString("preview: peak grew by %1 kB").arg(growth)));

        QVERIFY(resetPeakMemory());
        before = memoryKb("VmRSS:");
        QCOMPARE(MMImageDecoder::decode(file).size(), QSize(6028, 3391));
        QVERIFY(memoryKb("VmHWM:") - before > 64 * 1024);
    }

    // Sources that take another decoder path still edit like the reference.
    void oddSourcesEditLikeImageMagick_data()
    {
        // make: convert arguments that make the source from photo.png
        columns<QStringList, QString>({"make", "name"});
        QTest::newRow("progressive jpeg") << QStringList{ "-interlace", "JPEG", "-quality", "92" } << "prog.jpg";
        QTest::newRow("cmyk jpeg") << QStringList{ "-colorspace", "CMYK", "-quality", "92" } << "cmyk.jpg";
        QTest::newRow("absurd exif") << QStringList{ "-quality", "92" } << "exif.jpg";
        QTest::newRow("png with alpha") << QStringList{ "-alpha", "set", "-channel", "A", "-evaluate", "set", "50%" } << "alpha.png";
    }

    void oddSourcesEditLikeImageMagick()
    {
        auto [make, name] = fetch<QStringList, QString>({"make", "name"});
        VO_REQUIRE_TOOL("convert");
        QVERIFY(run("convert", QStringList{ path("photo.png") } + make + QStringList{ path(name) }));
        if (name == "exif.jpg") {
            // An EXIF block whose IFD offset points far outside it.
            QByteArray jpeg = bytes(path(name));
            const QByteArray app1("\xFF\xE1\x00\x16" "Exif\0\0" "II*\0" "\xFF\xFF\xFF\x7F" "\0\0\0\0\0\0", 24);
            QVERIFY(writeBytes(path(name), jpeg.insert(2, app1)));
        }
        const QString out = path("out-" + name);
        QCOMPARE(runCommands(path(name), out, "r90"), 0);
        QVERIFY(run("convert", { path(name), "-rotate", "90", path("ref-" + name + ".png") }));
        const QImage got = QImage(out).convertToFormat(QImage::Format_ARGB32);
        const QImage ref = QImage(path("ref-" + name + ".png")).convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(got.size(), ref.size());
        // Within one re-encode for JPEG; exact for PNG, alpha included.
        const double mean = meanDifference(got, ref, true);
        QVERIFY2(name.endsWith(".png") ? mean == 0 : mean < 4.0, qPrintable(QString("mean difference %1").arg(mean)));
    }

    void runnerMatchesImageMagick_data()
    {
        columns<QString, QStringList, bool>({"commands", "reference", "inPlace"});
        QTest::newRow("chain") << "r90 c2,3,10,8 mh e3"
                               << QStringList{ "-rotate", "90", "-crop", "10x8+2+3", "+repage", "-flop", "-negate" } << false;
        QTest::newRow("crop clipped at the edge") << "c20,10,50,50" << QStringList{ "-crop", "11x7+20+10", "+repage" } << false;
        QTest::newRow("left, in place") << "r-90 mv" << QStringList{ "-rotate", "-90", "-flip" } << true;
    }

    void runnerMatchesImageMagick()
    {
        auto [commands, reference, inPlace] = fetch<QString, QStringList, bool>({"commands", "reference", "inPlace"});
        VO_REQUIRE_TOOL("convert");
        const QString in = inPlace ? path("inplace.png") : path("photo.png");
        QVERIFY(writeBytes(path("inplace.png"), bytes(path("photo.png"))));
        const QString out = inPlace ? in : path("runner-out.png"), ref = path("runner-ref.png");
        QVERIFY(run("convert", QStringList{ in } + reference + QStringList{ ref }));

        QCOMPARE(runCommands(in, out, commands), 0);

        // ImageMagick tags its PNGs as sRGB, Qt does not: only pixels count.
        const QImage result = QImage(out).convertToFormat(QImage::Format_RGB32);
        QImage expected = QImage(ref).convertToFormat(QImage::Format_RGB32);
        expected.setColorSpace(result.colorSpace());
        QCOMPARE(result, expected);
    }

private:
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestEngineFiles)
#include "tst_engine_files.moc"
