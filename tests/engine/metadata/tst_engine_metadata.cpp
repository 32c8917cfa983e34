// What a save keeps of a photo's description, read back by exiftool: EXIF,
// IPTC, every XMP property (known namespaces or not), the colour profile,
// the JFIF density and the quality; the chroma sampling the EXIF states; and
// the capture date the date stamp shows.
#include "EngineTestTools.h"
#include "datarows.h"
#include "MMImageHeader.h"
#include "MMImageWriter.h"
#include "MMMetadata.h"
#include "requiretool.h"
#include <QColorSpace>
#include <QTemporaryDir>
#include <QtTest>

using namespace EngineTestTools;

class TestEngineMetadata : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString path(const QString &name) const { return m_dir.filePath(name); }

    // A photo described by a camera and a picture library.
    QString describedJpeg(const QString &name, const QSize &size)
    {
        const QString out = path(name), icc = path("srgb.icc");
        if (!photo(size.width(), size.height()).save(out, "JPEG", 90)
            || !writeBytes(icc, QColorSpace(QColorSpace::SRgb).iccProfile()))
            return QString();
        const QStringList tags = {"-Make=VoTestMake", "-Orientation#=1", "-ICC_Profile<=" + icc,
            QString("-ExifImageWidth=%1").arg(size.width()), QString("-ExifImageHeight=%1").arg(size.height()),
            "-IPTC:Keywords=harbour", "-IPTC:Keywords=boats", "-IPTC:City=Lisbon", "-IPTC:By-line=A. Walker",
            "-XMP-dc:Title=Harbour", "-XMP-dc:Subject=boats", "-XMP-photoshop:Headline=Morning",
            "-XMP-xmpRights:UsageTerms=Ask first", "-XMP-iptcCore:Location=Quay 4", "-XMP-xmp:Rating=4",
            "-JFIF:XResolution=300", "-JFIF:YResolution=300", "-JFIF:ResolutionUnit=inches",
            "-EXIF:DateTimeOriginal=2019:07:14 10:11:12"};
        return run("exiftool", QStringList{"-q", "-overwrite_original"} + tags + QStringList{out}) ? out : QString();
    }

    // Luma samples per chroma sample across and down, as EXIF writes them:
    // from the file's frame, and from its EXIF.
    static QString frameSampling(const QString &file)
    {
        static const QMap<MMJpegHeader::Subsampling, QString> factors = {{MMJpegHeader::Sub444, "1 1"},
            {MMJpegHeader::Sub422, "2 1"}, {MMJpegHeader::Sub420, "2 2"}, {MMJpegHeader::Sub440, "1 2"}};
        const MMImageHeader header = MMImageHeader::read(file);
        return header.isValid() ? factors.value(header.jpeg().subsampling()) : QString();
    }

    static QString exifSampling(const QString &file)
    {
        QByteArray out;
        run("exiftool", {"-s3", "-n", "-IFD0:YCbCrSubSampling", file}, &out);
        return QString::fromUtf8(out).trimmed();
    }

    static QStringList read(const QString &file)
    {
        QByteArray out;
        run("exiftool", {"-s3", "-n", "-sep", ",", "-Make", "-Orientation", "-ICC_Profile:ProfileDescription",
                         "-EXIF:DateTimeOriginal", "-IPTC:Keywords", "-IPTC:City", "-IPTC:By-line", "-XMP-dc:Title",
                         "-XMP-dc:Subject", "-XMP-photoshop:Headline", "-XMP-xmpRights:UsageTerms",
                         "-XMP-iptcCore:Location", "-XMP-xmp:Rating", "-JFIF:XResolution", "-JFIF:YResolution",
                         "-JFIF:ResolutionUnit", file},
            &out);
        return QString::fromUtf8(out).trimmed().split('\n');
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        VO_REQUIRE_TOOL("exiftool");
        VO_REQUIRE_TOOL("identify");
    }

    void descriptionSurvivesSaves_data()
    {
        columns<QSize, QString, QSize>({"size", "commands", "expected"});
        QTest::newRow("lossless turn") << QSize(128, 96) << "r90" << QSize(96, 128);
        QTest::newRow("re-encoded turn") << QSize(130, 90) << "r-90" << QSize(90, 130);
        QTest::newRow("style") << QSize(128, 96) << "e2" << QSize(128, 96);
        QTest::newRow("resize and crop") << QSize(128, 96) << "s64,48 c8,8,32,24" << QSize(32, 24);
    }

    // Everything but the size is as it was, the orientation stays upright,
    // and a re-encode keeps the source's quality as ImageMagick estimates it.
    void descriptionSurvivesSaves()
    {
        auto [size, commands, expected] = fetch<QSize, QString, QSize>({"size", "commands", "expected"});
        const QString in = describedJpeg(QString("in-%1.jpg").arg(QTest::currentDataTag()), size);
        QVERIFY(!in.isEmpty());
        const QStringList before = read(in);
        QCOMPARE(before.size(), 16);
        QCOMPARE(before.mid(0, 4), QStringList({"VoTestMake", "1", "sRGB", "2019:07:14 10:11:12"}));
        const QString out = path(QString("out-%1.jpg").arg(QTest::currentDataTag()));
        QCOMPARE(runCommands(in, out, commands), 0);
        QCOMPARE(read(out), before);
        QByteArray exifSize, quality;
        QVERIFY(run("exiftool", {"-s3", "-ExifImageWidth", "-ExifImageHeight", out}, &exifSize));
        QCOMPARE(QString::fromUtf8(exifSize).split('\n', Qt::SkipEmptyParts),
                 QStringList({QString::number(expected.width()), QString::number(expected.height())}));
        QCOMPARE(djpeg(out).size(), expected);
        QVERIFY(run("identify", {"-format", "%Q", out}, &quality));
        QVERIFY2(qAbs(quality.toInt() - 90) <= 2, quality.constData());
    }

    void thumbnailShowsTheSavedPicture_data()
    {
        columns<QSize, QString>({"size", "commands"});
        QTest::newRow("lossless turn") << QSize(400, 304) << "r90";
        QTest::newRow("re-encoded turn") << QSize(410, 290) << "r-90";
        QTest::newRow("turn of a large picture's planes") << QSize(1283, 1022) << "r90";
        QTest::newRow("resize") << QSize(400, 300) << "s200,150";
    }

    // The embedded thumbnail is redrawn from what was saved: turned with
    // the picture, never the old one.
    void thumbnailShowsTheSavedPicture()
    {
        auto [size, commands] = fetch<QSize, QString>({"size", "commands"});
        const QString in = path(QString("thumb-in-%1.jpg").arg(QTest::currentDataTag()));
        const QString old = path("old-thumbnail.jpg");
        QVERIFY(photo(size.width(), size.height()).save(in, "JPEG", 90));
        QImage stale(40, 30, QImage::Format_RGB32);
        stale.fill(Qt::magenta);
        QVERIFY(stale.save(old, "JPEG"));
        QVERIFY(run("exiftool", {"-q", "-overwrite_original", "-ThumbnailImage<=" + old, in}));
        const QString out = path(QString("thumb-out-%1.jpg").arg(QTest::currentDataTag()));

        QCOMPARE(runCommands(in, out, commands), 0);

        QByteArray bytes;
        QVERIFY(run("exiftool", {"-b", "-ThumbnailImage", out}, &bytes));
        const QImage thumbnail = QImage::fromData(bytes).convertToFormat(QImage::Format_RGB32);
        const QImage saved = djpeg(out);
        const QImage expected = saved.scaled(QSize(160, 160), Qt::KeepAspectRatio, Qt::SmoothTransformation)
                                    .convertToFormat(QImage::Format_RGB32);
        QCOMPARE(thumbnail.size(), expected.size());
        // The small copy's own JPEG coding blurs the blue checks a little; a
        // stale or wrongly turned thumbnail is off by 40 levels or more.
        const double mean = meanDifference(thumbnail, expected);
        QVERIFY2(mean < 16, qPrintable(QString::number(mean)));
    }

    void samplingTagFollowsTheFrame_data()
    {
        columns<int, QSize, QString, bool>({"subsampling", "size", "commands", "tagged"});
        // Whole MCUs turn losslessly; a megapixel picture of odd size turns
        // in its own planes. Both make a turned 4:2:2 frame 4:4:0.
        QTest::newRow("4:2:2, lossless right") << int(MMJpegHeader::Sub422) << QSize(64, 48) << "r90" << true;
        QTest::newRow("4:2:2, lossless half turn") << int(MMJpegHeader::Sub422) << QSize(64, 48) << "r180" << true;
        QTest::newRow("4:2:2, lossless left") << int(MMJpegHeader::Sub422) << QSize(64, 48) << "r270" << true;
        QTest::newRow("4:2:0, lossless right") << int(MMJpegHeader::Sub420) << QSize(64, 48) << "r90" << true;
        QTest::newRow("4:4:4, lossless right") << int(MMJpegHeader::Sub444) << QSize(64, 48) << "r90" << true;
        QTest::newRow("4:2:2, planes right") << int(MMJpegHeader::Sub422) << QSize(1283, 1022) << "r90" << true;
        QTest::newRow("4:2:2 without the tag") << int(MMJpegHeader::Sub422) << QSize(64, 48) << "r90" << false;
    }

    // The EXIF's YCbCrSubSampling states the frame that was written, and is
    // not added where the source had none.
    void samplingTagFollowsTheFrame()
    {
        auto [subsampling, size, commands, tagged] = fetch<int, QSize, QString, bool>({"subsampling", "size", "commands", "tagged"});
        const QString in = path(QString("sampling-in-%1.jpg").arg(QTest::currentDataTag()));
        const QString out = path(QString("sampling-out-%1.jpg").arg(QTest::currentDataTag()));
        MMEncodeOptions options;
        options.format = "jpeg";
        options.jpegSubsampling = MMJpegHeader::Subsampling(subsampling);
        QVERIFY(writeBytes(in, MMImageWriter::encode(photo(size.width(), size.height()), in, options)));
        // Some EXIF in any case, so that an absent tag is tested where EXIF is kept.
        QStringList tags = {"-q", "-overwrite_original", "-Make=VoTestMake"};
        if (tagged)
            tags << "-IFD0:YCbCrSubSampling=" + frameSampling(in);
        QVERIFY(run("exiftool", tags << in));
        QCOMPARE(exifSampling(in), tagged ? frameSampling(in) : QString());

        QCOMPARE(runCommands(in, out, commands), 0);

        QVERIFY(!frameSampling(out).isEmpty());
        QCOMPARE(exifSampling(out), tagged ? frameSampling(out) : QString());
    }

    void captureDate_data()
    {
        columns<QStringList, QDate>({"tags", "date"});
        QTest::newRow("original") << QStringList{"-DateTimeOriginal=2019:07:14 10:11:12"} << QDate(2019, 7, 14);
        QTest::newRow("digitized only") << QStringList{"-CreateDate=2018:01:02 03:04:05"} << QDate(2018, 1, 2);
        QTest::newRow("camera without a clock") << QStringList{"-DateTimeOriginal#=0000:00:00 00:00:00"} << QDate();
        QTest::newRow("none") << QStringList{} << QDate();
    }

    void captureDate()
    {
        auto [tags, date] = fetch<QStringList, QDate>({"tags", "date"});
        const QString file = path(QString("date-%1.jpg").arg(QTest::currentDataTag()));
        QVERIFY(photo(32, 24).save(file, "JPEG"));
        if (!tags.isEmpty())
            QVERIFY(run("exiftool", QStringList{"-q", "-overwrite_original"} + tags + QStringList{file}));
        QCOMPARE(MMMetadata::captureDate(file), date);
    }
};

QTEST_GUILESS_MAIN(TestEngineMetadata)
#include "tst_engine_metadata.moc"
