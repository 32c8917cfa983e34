// Every kind of picture the editor opens, saved back through the engine
// after a turn, a crop and a resize, and read again by tools that are not
// ours: the format, the frames with their delays and disposal, the loop
// count, the bit depth and colour type, lossy or lossless coding, and the
// EXIF must be what the picture had; the pixels must match ImageMagick's
// own edit of the same picture.
#include "EngineTestTools.h"
#include "MMFileFormat.h"
#include "MMImageHeader.h"
#include "datarows.h"
#include "requiretool.h"
#include <QTemporaryDir>
#include <QtTest>

using namespace EngineTestTools;

namespace {
QString run(const QString &program, const QStringList &args, bool *ok = nullptr)
{
    QProcess p;
    p.start(program, args);
    const bool done = p.waitForFinished(120000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    if (ok)
        *ok = done;
    return QString::fromUtf8(p.readAllStandardOutput()).trimmed();
}

// What a file is, as the reference tools read it, apart from its size.
struct Reading
{
    QString kind;
    QSize size;
};

Reading read(const QString &path)
{
    Reading r;
    // Format and frame count; per frame its delay and disposal.
    const QString frames = run("identify", {"-format", "%m %n|", path});
    r.kind = frames.section('|', 0, 0);
    const QStringList page = run("identify", {"-format", "%W %H|", path}).section('|', 0, 0).split(' ');
    r.size = QSize(page.value(0).toInt(), page.value(1).toInt());
    if (r.kind.startsWith("GIF"))
        r.kind += " timing " + run("identify", {"-format", "%T/%D ", path});
    if (r.kind.startsWith("GIF") || r.kind.startsWith("WEBP")) {
        const QString verbose = run("identify", {"-verbose", path});
        const int at = verbose.indexOf("Iterations:");
        r.kind += " loop " + (at < 0 ? QString("none") : verbose.mid(at + 11, 4).trimmed());
    }
    if (r.kind.startsWith("PNG")) {
        r.kind += " type/depth " + run("identify", {"-format", "%[png:IHDR.color-type-orig]/%[png:IHDR.bit-depth-orig]", path});
        r.kind += " chunks " + run("exiftool", {"-s3", "-Comment", "-Gamma", "-ProfileClass", "-ColorSpaceData", path}).replace('\n', ' ');
    }
    if (r.kind.startsWith("WEBP")) {
        const QString info = run("webpinfo", {"-summary", path});
        r.kind += info.contains("Lossless") ? " lossless" : " lossy";
        if (info.contains("Lossless") && info.contains("Lossy"))
            r.kind += "+lossy";
    }
    if (r.kind.startsWith("HEIC")) {
        r.kind += " exif " + run("exiftool", {"-s3", "-Make", "-Model", "-Orientation#", path}).replace('\n', ' ');
        if (!run("heif-info", {path}).contains("image:"))
            r.kind += " (heif-info does not read it)";
    }
    return r;
}

// ImageMagick's arguments for the same edit.
QStringList magickEdit(const QString &edit)
{
    if (edit == "rotate")
        return {"-rotate", "90"};
    if (edit == "crop")
        return {"-crop", "40x30+4+2", "+repage"};
    return {"-resize", "32x24!"};
}

MMCommand *command(const QString &edit)
{
    if (edit == "rotate") {
        auto *c = new MMRotateCommand;
        c->setDegree(90);
        return c;
    }
    if (edit == "crop") {
        auto *c = new MMCropCommand;
        c->setRect(MMRect(4, 2, 40, 30));
        return c;
    }
    auto *c = new MMResizeCommand;
    c->setTargetSize(MMSize(32, 24));
    return c;
}

QSize editedSize(const QString &edit, const QSize &size)
{
    if (edit == "rotate")
        return size.transposed();
    return edit == "crop" ? QSize(40, 30) : QSize(32, 24);
}

// Root mean square difference of all frames, as shown (coalesced), in
// 0..1 of the full range; -1 when the tools fail.
double difference(const QString &ours, const QString &source, const QStringList &edit, const QString &dir)
{
    // The frames stacked into one picture: compare reads one image a side.
    const QString a = dir + "/ours.miff", b = dir + "/theirs.miff";
    bool ok1 = false, ok2 = false;
    run("convert", {ours, "-coalesce", "-alpha", "on", "-append", "-depth", "16", a}, &ok1);
    run("convert", QStringList{source, "-coalesce"} + edit + QStringList{"-alpha", "on", "-append", "-depth", "16", b}, &ok2);
    if (!ok1 || !ok2)
        return -1;
    QProcess p;
    // compare writes its figure on stderr and exits 1 when they differ.
    p.start("compare", {"-metric", "RMSE", a, b, "null:"});
    p.waitForFinished(120000);
    const QString out = QString::fromUtf8(p.readAllStandardError());
    const int open = out.indexOf('('), close = out.indexOf(')');
    if (open < 0 || close < open)
        return -1;
    return out.mid(open + 1, close - open - 1).toDouble();
}
}

class tst_engine_formats : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_corpus;

private slots:
    void initTestCase()
    {
        VO_REQUIRE_TOOL("convert");
        VO_REQUIRE_TOOL("cwebp");
        VO_REQUIRE_TOOL("gif2webp");
        VO_REQUIRE_TOOL("webpinfo");
        VO_REQUIRE_TOOL("heif-enc");
        VO_REQUIRE_TOOL("heif-info");
        VO_REQUIRE_TOOL("exiftool");
        QVERIFY(m_dir.isValid());
        m_corpus = m_dir.filePath("corpus");
        bool ok = false;
        run("bash", {QStringLiteral(VO_SOURCE_DIR "/scripts/make-format-corpus.sh"), m_corpus}, &ok);
        QVERIFY2(ok, "scripts/make-format-corpus.sh failed");
    }

    // The format a save writes: over the picture itself always its own,
    // judged by content; under another name the name's, when it names one.
    void writtenFormat_data()
    {
        columns<QString, QString, bool, QByteArray>({"content", "name", "sameFile", "format"});
        QTest::newRow("gif over itself") << "anim.gif" << "a.gif" << true << QByteArray("gif");
        QTest::newRow("png named .jpg, over itself") << "text.png" << "a.jpg" << true << QByteArray("png");
        QTest::newRow("heif named .png, over itself") << "photo.heic" << "a.png" << true << QByteArray("heif");
        QTest::newRow("webp as .gif") << "lossy.webp" << "b.gif" << false << QByteArray("gif");
        QTest::newRow("png as .HEIC") << "text.png" << "b.HEIC" << false << QByteArray("heif");
        QTest::newRow("gif under no extension") << "still.gif" << "b" << false << QByteArray("gif");
        QTest::newRow("gif under an unknown one") << "still.gif" << "b.txt" << false << QByteArray("gif");
    }

    void writtenFormat()
    {
        auto [content, name, sameFile, format] = fetch<QString, QString, bool, QByteArray>({"content", "name", "sameFile", "format"});
        const MMImageHeader header = MMImageHeader::read(m_corpus + "/" + content);
        QVERIFY(header.isValid());
        QCOMPARE(MMFileFormat::forOutput(name, header.qtFormat(), sameFile), format);
    }

    // The extension Save as offers: the picture's own, by content.
    void offeredExtension_data()
    {
        columns<QString, QString>({"name", "suffix"});
        QTest::newRow("gif") << "anim.gif" << "gif";
        QTest::newRow("png named .jpg") << "text.png:a.jpg" << "png";
        QTest::newRow("heif named .HEIC") << "photo.heic:a.HEIC" << "HEIC";
        QTest::newRow("webp named .gif") << "lossless.webp:a.gif" << "webp";
        QTest::newRow("no picture yet, .webp") << ":new.webp" << "webp";
        QTest::newRow("no picture yet, unknown") << ":new.xyz" << "png";
    }

    void offeredExtension()
    {
        auto [name, suffix] = fetch<QString, QString>({"name", "suffix"});
        // content:name, the content copied under that name; no content: no file.
        const QString content = name.section(':', 0, 0), as = name.contains(':') ? name.section(':', 1) : content;
        const QString file = m_dir.filePath("offer-" + as);
        QFile::remove(file);
        if (!content.isEmpty())
            QVERIFY(QFile::copy(m_corpus + "/" + content, file));
        QCOMPARE(MMFileFormat::saveSuffixFor(file), suffix);
    }

    // limit: how far the result may be from ImageMagick's edit (RMSE, 0..1);
    // 0 for the exact edits of formats that lose nothing.
    void savedBack_data()
    {
        columns<QString, QString, double>({"file", "edit", "limit"});
        const struct
        {
            const char *file;
            double exact;  // turn and crop
            double resize; // a new palette or a new lossy coding
        } kinds[] = {
            {"still.gif", 0, 0.05},   {"anim.gif", 0, 0.05},     {"rgba16.png", 0, 0.01},
            {"grey16.png", 0, 0.01},  {"palette.png", 0, 0.05},  {"greyalpha.png", 0, 0.01},
            {"text.png", 0, 0.01},    {"lossless.webp", 0, 0.01}, {"lossy.webp", 0.03, 0.04},
            {"anim.webp", 0, 0.02},   {"photo.heic", 0.03, 0.04},
        };
        for (const auto &k : kinds) {
            for (const char *edit : {"rotate", "crop", "resize"})
                QTest::addRow("%s %s", k.file, edit) << k.file << edit << (QString(edit) == "resize" ? k.resize : k.exact);
        }
    }

    void savedBack()
    {
        auto [file, edit, limit] = fetch<QString, QString, double>({"file", "edit", "limit"});
        const QString source = m_corpus + "/" + file;
        // Saved over a copy of itself, as the editor saves over a picture.
        const QString target = m_dir.filePath(edit + "-" + file);
        QFile::remove(target);
        QVERIFY(QFile::copy(source, target));
        QVERIFY2(MMFileFormat::canWriteBack(target), "the editor would refuse to save it back");
        MMImageSource picture;
        picture.setFile(target.toStdString());
        std::list<MMCommand *> commands{command(edit)};
        const int result = MMCommandRunner::run(picture, picture, commands);
        qDeleteAll(commands);
        QCOMPARE(result, 0);

        const Reading before = read(source), after = read(target);
        QCOMPARE(after.kind, before.kind);
        QCOMPARE(after.size, editedSize(edit, before.size));
        const double rmse = difference(target, source, magickEdit(edit), m_dir.path());
        QVERIFY2(rmse >= 0 && rmse <= limit, qPrintable(QString("RMSE %1 against ImageMagick's, limit %2").arg(rmse).arg(limit)));
    }
};

QTEST_GUILESS_MAIN(tst_engine_formats)
#include "tst_engine_formats.moc"
