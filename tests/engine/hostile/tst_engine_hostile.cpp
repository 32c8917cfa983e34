// Hostile pictures: decompression bombs of every format refused from the
// header, pictures at the budget's edge that open and save, damaged and
// misnamed files through the engine and through the demo host, and the
// inputs the fuzzers found.
#include "EngineTestTools.h"
#include "datarows.h"
#include "MMDecodeBudget.h"
#include "MMGifCodec.h"
#include "MMHeifCodec.h"
#include "MMImageDecoder.h"
#include "MMImageHeader.h"
#include "MMImageScaler.h"
#include "MMImageWriter.h"
#include "MMWebpCodec.h"
#include "flowrunner.h"
#include <QDir>
#include <QImageReader>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>
#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>

using namespace EngineTestTools;

namespace {

quint32 crc32(const QByteArray &data)
{
    quint32 crc = 0xFFFFFFFFu;
    for (const char c : data) {
        crc ^= uchar(c);
        for (int k = 0; k < 8; ++k)
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1)));
    }
    return ~crc;
}

QByteArray be16(int v) { return QByteArray(1, char(v >> 8)) + char(v & 0xFF); }

// A whole small picture whose header claims width x height: what a bomb
// looks like before its pixels are decoded.
QByteArray claimSize(QByteArray file, const QByteArray &format, int width, int height)
{
    if (format == "jpeg") {
        int sof = -1;
        for (const char *m : { "\xFF\xC0", "\xFF\xC2" })
            if (sof < 0)
                sof = file.indexOf(m);
        return sof < 0 ? QByteArray() : file.replace(sof + 5, 4, be16(height) + be16(width));
    }
    if (format == "png") {
        QByteArray ihdr(8, '\0');
        qToBigEndian<quint32>(quint32(width), ihdr.data());
        qToBigEndian<quint32>(quint32(height), ihdr.data() + 4);
        file.replace(16, 8, ihdr);
        QByteArray crc(4, '\0');
        qToBigEndian<quint32>(crc32(file.mid(12, 17)), crc.data());
        return file.replace(29, 4, crc);
    }
    if (format == "gif") {
        QByteArray screen(4, '\0');
        qToLittleEndian<quint16>(quint16(width), screen.data());
        qToLittleEndian<quint16>(quint16(height), screen.data() + 2);
        // The logical screen and the one image descriptor (after a
        // two-colour palette) both claim it.
        return file.replace(6, 4, screen).replace(24, 4, screen);
    }
    QByteArray dib(8, '\0'); // bmp
    qToLittleEndian<qint32>(width, dib.data());
    qToLittleEndian<qint32>(height, dib.data() + 4);
    return file.replace(18, 8, dib);
}

QByteArray encoded(const QImage &image, const QByteArray &format, MMJpegHeader::Subsampling sub, bool progressive)
{
    MMEncodeOptions options;
    options.format = format;
    options.jpegSubsampling = sub;
    options.jpegProgressive = progressive;
    return MMImageWriter::encode(image, QStringLiteral("x.") + format, options);
}

// Empty when file holds what it should after a turn right: its bytes
// unchanged when it was refused, else the picture turned (within JPEG's loss).
QString turnProblem(const QString &file, const QByteArray &original, bool edited, const QImage &picture)
{
    if (!edited)
        return bytes(file) == original ? QString() : QStringLiteral("a refused file was changed");
    // Qt reads no WebP or HEIF: those through the engine.
    QImage got = flows::load(file);
    if (got.isNull())
        got = MMImageDecoder::decode(file);
    const QImage want = picture.transformed(QTransform().rotate(90));
    if (got.size() != want.size())
        return QStringLiteral("saved %1 x %2").arg(got.width()).arg(got.height());
    QString where;
    const double mean = flows::compare(got, want, &where);
    return mean < 3.0 ? QString() : QStringLiteral("mean difference %1, first at %2").arg(mean).arg(where);
}

// A 32 x 16 grey picture, coded progressive and arithmetic by libjpeg from
// coefficients: one block's first horizontal luma term is 2048, beyond what
// 8-bit coding carries. libjpeg writes and reads it without a warning.
QByteArray progressiveBeyondRange()
{
    jpeg_compress_struct c;
    jpeg_error_mgr error;
    c.err = jpeg_std_error(&error);
    jpeg_create_compress(&c);
    unsigned char *buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&c, &buffer, &size);
    c.image_width = 32;
    c.image_height = 16;
    c.input_components = 3;
    c.in_color_space = JCS_YCbCr;
    jpeg_set_defaults(&c); // 4:2:0
    c.arith_code = TRUE;
    jpeg_simple_progression(&c);
    const QSize blocks[3] = { QSize(4, 2), QSize(2, 1), QSize(2, 1) };
    jvirt_barray_ptr arrays[3];
    for (int ci = 0; ci < 3; ++ci)
        arrays[ci] = c.mem->request_virt_barray(reinterpret_cast<j_common_ptr>(&c), JPOOL_IMAGE, TRUE,
                                                JDIMENSION(blocks[ci].width()), JDIMENSION(blocks[ci].height()),
                                                JDIMENSION(c.comp_info[ci].v_samp_factor));
    c.mem->realize_virt_arrays(reinterpret_cast<j_common_ptr>(&c));
    JBLOCKARRAY luma = c.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&c), arrays[0], 0, 1, TRUE);
    luma[0][1][1] = 2048;
    jpeg_write_coefficients(&c, arrays);
    jpeg_finish_compress(&c);
    jpeg_destroy_compress(&c);
    const QByteArray stream(reinterpret_cast<const char *>(buffer), int(size));
    std::free(buffer);
    return stream;
}

// A small animation: frames 1 x 1 on a canvas of the given size.
QByteArray animation(const QByteArray &format, const QSize &canvas, int frames)
{
    MMAnimationFrame frame;
    frame.image = QImage(format == "gif" ? QSize(1, 1) : canvas, QImage::Format_ARGB32);
    frame.image.fill(qRgb(200, 40, 40));
    frame.delayMs = 50;
    if (format == "gif") {
        MMGifCodec::Writer writer(canvas, 0);
        for (int i = 0; i < frames; ++i)
            writer.addFrame(frame);
        return writer.finish();
    }
    MMWebpCodec::Writer writer(canvas, 0, true, 90);
    for (int i = 0; i < frames; ++i) {
        frame.image.setPixel(i % canvas.width(), 0, qRgb(i, 0, 0));
        writer.addFrame(frame);
    }
    return writer.finish();
}

// Our own formats' bombs: a small file whose header claims a size (or an
// amount of frames) beyond the budget.
QByteArray ownBomb(const QString &kind)
{
    const QImage small = testimages::pattern(16, 16);
    if (kind == "webp") {
        // A lossless stream's 14-bit width and height minus one, after its
        // signature byte.
        QByteArray file = MMWebpCodec::encode(small, true, 90);
        quint32 bits = qFromLittleEndian<quint32>(file.constData() + 21);
        bits = (bits & 0xF0000000u) | quint32(16383) | (quint32(16383) << 14);
        qToLittleEndian<quint32>(bits, file.data() + 21);
        return file;
    }
    if (kind == "heif") {
        // The coded sizes in the 'ispe' boxes (the picture's and its
        // tile's): version and flags, then width and height.
        QByteArray file = MMHeifCodec::encode(small, 50);
        if (!file.contains("ispe"))
            return QByteArray();
        for (int at = file.indexOf("ispe"); at >= 0; at = file.indexOf("ispe", at + 1)) {
            qToBigEndian<quint32>(20000, file.data() + at + 8);
            qToBigEndian<quint32>(20000, file.data() + at + 12);
        }
        return file;
    }
    if (kind == "animated webp") {
        // The extended header's canvas: 24-bit width and height minus one.
        QByteArray file = animation("webp", QSize(4, 4), 2);
        const int vp8x = file.indexOf("VP8X");
        if (vp8x < 0)
            return QByteArray();
        for (int i = 0; i < 2; ++i) {
            const int v = 11999;
            file[vp8x + 12 + 3 * i] = char(v & 0xFF);
            file[vp8x + 13 + 3 * i] = char((v >> 8) & 0xFF);
            file[vp8x + 14 + 3 * i] = char(v >> 16);
        }
        return file;
    }
    // A canvas within the budget, but so many frames that editing each on
    // it would be a hundred million pixels' work.
    const QSize canvas(1000, 1000);
    return animation("gif", canvas, int(MMDecodeBudget::MaxAnimationPixels / (1000 * 1000)) + 1);
}

} // namespace

class TestEngineHostile : public QObject
{
    Q_OBJECT

private slots:
    // What the working store does with each: header, preview, the preview copy,
    // and a save over the file. All must refuse, and the file must stay as it
    // was.
    void bombIsRefusedFromItsHeader_data()
    {
        columns<QByteArray, int, bool, QSize>({"format", "subsampling", "progressive", "claimed"});
        const QSize bomb(10000, 10000);
        // One pixel row more than the budget allows.
        const QSize over(6144, int(MMDecodeBudget::MaxPixels / 6144) + 1);
        QTest::newRow("baseline jpeg, 100 MP") << QByteArray("jpeg") << int(MMJpegHeader::Sub420) << false << bomb;
        QTest::newRow("progressive jpeg, 100 MP") << QByteArray("jpeg") << int(MMJpegHeader::Sub420) << true << bomb;
        QTest::newRow("png, 100 MP") << QByteArray("png") << 0 << false << bomb;
        QTest::newRow("gif, 100 MP") << QByteArray("gif") << 0 << false << bomb;
        QTest::newRow("bmp, 100 MP") << QByteArray("bmp") << 0 << false << bomb;
        QTest::newRow("baseline jpeg, just over") << QByteArray("jpeg") << int(MMJpegHeader::Sub420) << false << over;
        QTest::newRow("png, just over") << QByteArray("png") << 0 << false << over;
        // Within the pixel count, but libjpeg would hold 144 MB of coefficients.
        QTest::newRow("progressive 4:4:4 jpeg, 24 MP")
            << QByteArray("jpeg") << int(MMJpegHeader::Sub444) << true << QSize(6000, 4000);
    }

    void bombIsRefusedFromItsHeader()
    {
        auto [format, subsampling, progressive, claimed] = fetch<QByteArray, int, bool, QSize>({"format", "subsampling", "progressive", "claimed"});
        // Qt writes no GIF: a whole 1 x 1 one, made by hand.
        static const QByteArray gif("GIF89a\x01\0\x01\0\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\x01\0\x01\0\0\x02\x02" "D\x01\0;", 35);
        const QByteArray small = format == "gif" ? gif
            : encoded(testimages::pattern(48, 32), format, MMJpegHeader::Subsampling(subsampling), progressive);
        const QByteArray bomb = claimSize(small, format, claimed.width(), claimed.height());
        QVERIFY(!bomb.isEmpty());
        const QString file = path("bomb." + format);
        QVERIFY(writeBytes(file, bomb));
        // The header must say the claimed size, so that refusing is the budget's doing.
        QImageReader reader(file);
        QCOMPARE(reader.size(), claimed);

        MMImageInfo info;
        QCOMPARE(source(file).getImageInfo(info), -1);
        QVERIFY(MMImageDecoder::decodeFitting(file, QSize(240, 320)).isNull());
        QCOMPARE(MMImageScaler::scaleFile(file, path("preview." + format), QSize(240, 160)), -1);
        QVERIFY(!QFile::exists(path("preview." + format)));
        QCOMPARE(runCommands(file, file, "r90"), -1);
        QCOMPARE(bytes(file), bomb);
    }

    void ownFormatBombIsRefused_data()
    {
        columns<QString, QString>({"kind", "name"});
        QTest::newRow("webp, 268 MP") << "webp" << "bomb.webp";
        QTest::newRow("heif, 400 MP") << "heif" << "bomb.heic";
        QTest::newRow("animated webp, 144 MP canvas") << "animated webp" << "bomb-anim.webp";
        QTest::newRow("gif, 101 frames of 1 MP") << "gif frames" << "bomb-anim.gif";
    }

    // Refused by their headers as the others, before a frame is decoded.
    void ownFormatBombIsRefused()
    {
        auto [kind, name] = fetch<QString, QString>({"kind", "name"});
        const QByteArray bomb = ownBomb(kind);
        QVERIFY(!bomb.isEmpty());
        // What the header claims is read as claimed: the budget refuses it.
        if (kind == "webp" || kind == "animated webp") {
            MMWebpCodec::Header header;
            QVERIFY(MMWebpCodec::readHeader(bomb, header));
            QVERIFY(!MMDecodeBudget::allowsAnimation(header.canvas, header.frames));
        } else if (kind == "heif") {
            MMHeifCodec::Header header;
            QVERIFY(!MMHeifCodec::readHeader(bomb, header));
        } else {
            MMGifCodec::Header header;
            QVERIFY(MMGifCodec::readHeader(bomb, header));
            QVERIFY(MMDecodeBudget::allowsSize(header.canvas));
            QVERIFY(!MMDecodeBudget::allowsAnimation(header.canvas, header.frames));
        }
        const QString file = path(name);
        QVERIFY(writeBytes(file, bomb));
        MMImageInfo info;
        QCOMPARE(source(file).getImageInfo(info), -1);
        QVERIFY(MMImageDecoder::decodeFitting(file, QSize(240, 320)).isNull());
        QCOMPARE(runCommands(file, file, "r90"), -1);
        QCOMPARE(bytes(file), bomb);
    }

    void extraMemoryOnlyWhereItIsToSpare_data()
    {
        columns<qint64, bool>({"bytes", "spared"});
        QTest::newRow("a second decoder of a small picture") << qint64(1) * 1024 * 1024 << true;
        QTest::newRow("more than any machine has") << (qint64(1) << 50) << false;
        QTest::newRow("nonsense") << qint64(-1) << false;
    }

    // Faster paths that hold more memory than the budget (a second decoder)
    // ask the system first; a wrong reading would put them on every handset.
    void extraMemoryOnlyWhereItIsToSpare()
    {
        auto [bytes, spared] = fetch<qint64, bool>({"bytes", "spared"});
        QCOMPARE(MMDecodeBudget::canSpareExtra(bytes), spared);
    }

    // A picture of exactly the budget opens (header and preview) and saves
    // edited over itself, in each format the budget treats differently.
    void pictureAtTheLimitOpensAndSaves_data()
    {
        columns<QByteArray, bool>({"format", "progressive"});
        QTest::newRow("baseline jpeg") << QByteArray("jpeg") << false;
        QTest::newRow("progressive jpeg") << QByteArray("jpeg") << true;
        QTest::newRow("png") << QByteArray("png") << false;
    }

    void pictureAtTheLimitOpensAndSaves()
    {
        auto [format, progressive] = fetch<QByteArray, bool>({"format", "progressive"});
        const QSize size(6144, int(MMDecodeBudget::MaxPixels / 6144));
        QCOMPARE(qint64(size.width()) * size.height(), MMDecodeBudget::MaxPixels);
        const QString file = path("limit." + format);
        {
            // Flat colour with a mark in one corner: cheap to code, and a turn shows.
            QImage image(size, QImage::Format_RGB32);
            image.fill(qRgb(90, 140, 200));
            for (int y = 0; y < 64; ++y)
                for (int x = 0; x < 64; ++x)
                    image.setPixel(x, y, qRgb(250, 250, 250));
            QVERIFY(writeBytes(file, encoded(image, format, MMJpegHeader::Sub420, progressive)));
        }
        MMImageInfo info;
        QCOMPARE(source(file).getImageInfo(info), 0);
        QCOMPARE(QSize(info.width, info.height), size);
        const QImage preview = MMImageDecoder::decodeFitting(file, QSize(240, 320));
        QCOMPARE(preview.size(), QSize(240, 160));

        // Negative needs every pixel decoded; the turn then moves the mark.
        QCOMPARE(runCommands(file, file, "e3 r90"), 0);
        const QImage saved = MMImageDecoder::decodeFitting(file, QSize(160, 240));
        QCOMPARE(saved.size(), QSize(160, 240));
        const QRgb corner = saved.pixel(saved.width() - 1, 0), far = saved.pixel(0, saved.height() - 1);
        QVERIFY2(qRed(corner) < 40 && qRed(far) > 130, qPrintable(QString("corner #%1, far #%2").arg(corner, 0, 16).arg(far, 0, 16)));
    }

    // Each file is either refused (nothing written) or edited correctly: the
    // result, whatever its name says, is the turned picture.
    void damagedOrMisnamedFile_data()
    {
        columns<QString, QByteArray, bool>({"name", "content", "opens"});
        const QImage picture = flows::photo(64, 48);
        const QByteArray png = encoded(picture, "png", MMJpegHeader::Sub420, false);
        const QByteArray jpeg = encoded(picture, "jpeg", MMJpegHeader::Sub444, false);
        const QByteArray progressive = encoded(picture, "jpeg", MMJpegHeader::Sub420, true);
        QTest::newRow("png named .jpg") << "png.jpg" << png << true;
        QTest::newRow("jpeg named .png") << "jpeg.png" << jpeg << true;
        QTest::newRow("progressive jpeg named .gif") << "prog.gif" << progressive << true;
        QTest::newRow("zero bytes .png") << "empty.png" << QByteArray() << false;
        QTest::newRow("png cut in its data") << "cut.png" << png.left(png.size() * 2 / 3) << false;
        QTest::newRow("png cut in its header") << "cuthead.png" << png.left(20) << false;
        QTest::newRow("progressive jpeg cut") << "cut.jpg" << progressive.left(progressive.size() / 2) << false;
        QTest::newRow("cut png named .jpg") << "cutpng.jpg" << png.left(png.size() - 30) << false;
        QTest::newRow("png signature, then text") << "sig.png" << png.left(8) + QByteArray(200, 'x') << false;
        const QByteArray webp = MMWebpCodec::encode(picture, true, 90);
        const QByteArray heif = MMHeifCodec::encode(picture, 90);
        const QByteArray gif = animation("gif", QSize(64, 48), 3);
        QTest::newRow("lossless webp named .png") << "webp.png" << webp << true;
        QTest::newRow("heif named .jpg") << "heif.jpg" << heif << true;
        QTest::newRow("webp cut") << "cut.webp" << webp.left(webp.size() / 2) << false;
        QTest::newRow("heif cut") << "cut.heic" << heif.left(heif.size() / 2) << false;
        QTest::newRow("animated gif cut") << "cut.gif" << gif.left(gif.size() - 12) << false;
        QTest::newRow("gif header only") << "head.gif" << gif.left(13) << false;
    }

    void damagedOrMisnamedFile()
    {
        auto [name, content, opens] = fetch<QString, QByteArray, bool>({"name", "content", "opens"});
        const QString file = path(name);
        QVERIFY(writeBytes(file, content));
        MMImageInfo info;
        QCOMPARE(source(file).getImageInfo(info) == 0, opens);
        QCOMPARE(MMImageDecoder::decodeFitting(file, QSize(240, 320)).isNull(), !opens);
        QCOMPARE(runCommands(file, file, "r90") == 0, opens);
        const QString problem = turnProblem(file, content, opens, flows::photo(64, 48));
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
    }

    // Through the demo host and the library, as a user would: turn right,
    // apply, save over, leave. A bomb or a damaged file gets the notice and is
    // left alone; a misnamed one is saved turned; the host never crashes.
    // (Empty and cut files get the same notice: see the main frame's test.)
    void hostedEditOfHostileFile_data()
    {
        columns<QString, QByteArray, bool>({"name", "content", "edited"});
        const QImage picture = flows::photo(320, 240);
        const QByteArray png = encoded(picture, "png", MMJpegHeader::Sub420, false);
        const QByteArray jpeg = encoded(picture, "jpeg", MMJpegHeader::Sub444, false);
        QTest::newRow("png bomb") << "bomb.png" << claimSize(png, "png", 10000, 10000) << false;
        QTest::newRow("progressive jpeg bomb")
            << "bomb.jpg" << claimSize(encoded(picture, "jpeg", MMJpegHeader::Sub420, true), "jpeg", 10000, 10000) << false;
        QTest::newRow("png named .jpg") << "png.jpg" << png << true;
        QTest::newRow("jpeg named .png") << "jpeg.png" << jpeg << true;
    }

    void hostedEditOfHostileFile()
    {
        auto [name, content, edited] = fetch<QString, QByteArray, bool>({"name", "content", "edited"});
        const QString dir = path("hosted-" + QString(QTest::currentDataTag()).replace(' ', '_'));
        QVERIFY(QDir().mkpath(dir));
        const QString file = dir + '/' + name;
        QVERIFY(writeBytes(file, content));
        flows::FlowRunner runner(1);
        // The notice of a file that can not be edited stays 3 s unless the
        // right soft key closes it; the keys after it then reach nothing.
        runner.add("run", file, "Up Context2 wait:300 Context1 wait:300 Context2 wait:300 Context2");
        flows::Run *run = runner.wait("run");
        QVERIFY2(run && run->process.exitStatus() == QProcess::NormalExit && run->process.exitCode() == 0,
                 qPrintable(flows::describe(run)));
        const QString problem = turnProblem(file, content, edited, flows::photo(320, 240));
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
    }

    // A stream whose coefficients 8-bit coding cannot carry (an AC term of
    // 2048, read without a warning from an arithmetic-coded picture: the one
    // the fuzzer made, sequential, and a progressive one) must not be turned
    // "losslessly": the sequential coder writes such a term as garbage, the
    // progressive one as a term whose pixels each IDCT's overflow makes
    // differently once turned. The save shows what the decoder showed, turned.
    void coefficientsBeyondSequentialCoding_data()
    {
        columns<QByteArray, QString>({"stream", "commands"});
        QTest::addColumn<int>("orientation"); // what the commands make of the picture
        const QByteArray sequential = QByteArray::fromHex(
        "ffd8ffe000104a46494600010100000104010000ffdb00430006040506050406060506070706080a100a0a09090a140e0f0c"
        "1017141818171416161a1d251f1a1b231c1616202c20232627292a29191f2d302d283025282928ffdb0043010707070a080a"
        "130a0a13281a161a282828282828282828282828282828282828282828282828282828282828282828282828282828282828"
        "2828282828282828ffc90011080010002003012200021101031101ffcc000a0010100501101105ffda000c03010002110311"
        "003f00ff006eadc0831c658e42d73ad650740631d323688185f0a07feffb5af0365b0a03169144ffd9");
        const QByteArray progressive = progressiveBeyondRange();
        QTest::newRow("transpose") << sequential << "r90 mh" << 5;
        QTest::newRow("right") << sequential << "r90" << 6;
        QTest::newRow("mirror") << sequential << "mh" << 2;
        QTest::newRow("progressive, transpose") << progressive << "r90 mh" << 5;
        QTest::newRow("progressive, right") << progressive << "r90" << 6;
        QTest::newRow("progressive, left") << progressive << "r270" << 8;
    }

    void coefficientsBeyondSequentialCoding()
    {
        auto [stream, commands, orientation] = fetch<QByteArray, QString, int>({"stream", "commands", "orientation"});
        const QString in = path("beyond.jpg"), out = path("beyond-out.jpg");
        QVERIFY(writeBytes(in, stream));
        // libjpeg's SIMD code on each processor makes its own pixels of such
        // a block: the reference is this build's decode, as the editor shows it.
        const QImage shown = MMImageDecoder::decode(in).convertToFormat(QImage::Format_RGB32);
        QCOMPARE(shown.size(), QSize(32, 16));

        QCOMPARE(runCommands(in, out, commands), 0);

        // Undo the edit on the saved picture and compare it with what was shown.
        const QImage saved = MMOrientation::fromExif(orientation).inverted().apply(
            MMImageDecoder::decode(out).convertToFormat(QImage::Format_RGB32));
        QCOMPARE(saved.size(), shown.size());
        const int worst = maxDifference(saved, shown);
        QVERIFY2(worst <= 48, qPrintable(QString("worst difference %1").arg(worst)));
    }

    // Command lists the fuzzers found to misbehave, replayed on the picture they
    // used (under the sanitizer build they also catch the undefined behaviour).
    // `expected` is the same picture edited by commands that are known good.
    void fuzzFindingReplays_data()
    {
        columns<QString, QString>({"commands", "expected"});
        // QRect's right edge overflowed int (x + width past INT_MAX).
        QTest::newRow("overlay whose right edge passes INT_MAX, off the picture")
            << "mv o755028486,-46,1953329199,28461,element.png r0" << "mv";
        // A 1 x 458757 resize was written, a picture no reader opens again; the
        // whole run must fail instead (the reference is "no output").
        QTest::newRow("resize to a side past 65535") << "e0 r5940 mh r180 s1,458757 r90" << "";
    }

    void fuzzFindingReplays()
    {
        auto [commands, expected] = fetch<QString, QString>({"commands", "expected"});
        const QImage picture = flows::detailed(21, 13);
        QVERIFY(picture.save(path("finding.png")));
        QImage element(9, 5, QImage::Format_ARGB32);
        element.fill(qRgba(250, 20, 20, 200));
        QVERIFY(element.save(path("element.png")));
        QFile::remove(path("got.bmp"));
        const int result = runCommands(path("finding.png"), path("got.bmp"), commands, m_dir.path());
        if (expected.isEmpty()) {
            QCOMPARE(result, -1);
            QVERIFY(!QFile::exists(path("got.bmp")));
            return;
        }
        QCOMPARE(result, 0);
        QCOMPARE(runCommands(path("finding.png"), path("want.bmp"), expected, m_dir.path()), 0);
        QCOMPARE(flows::load(path("got.bmp")), flows::load(path("want.bmp")));
    }

private:
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestEngineHostile)
#include "tst_engine_hostile.moc"
