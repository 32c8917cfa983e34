// Whole edit flows as a user drives them: the demo host runs the editor on a
// picture with a key script, and the file written is checked against a
// reference made independently (ImageMagick), never against our own engine.
#include "flowrunner.h"
#include "requiretool.h"
#include "testimages.h"

#include <sys/mount.h>
#include <unistd.h>

using namespace flows;

namespace {

QString times(const QString &key, int n) { return QStringList(n, key).join(' '); }

// Opens Options and picks the item `index` rows below the first.
QString menu(int index) { return ("Context1 " + times("Down", index) + " Select").simplified(); }

// Menu rows: Add Elements is offered only for pictures of at most 640x480,
// so Style moves up one row on larger ones.
enum { RotateLeft = 0, RotateRight, MirrorH, MirrorV, Crop, Resize, AddElements, StyleSmall };
constexpr int StyleLarge = 6;

// Save over the file from the save screen, then leave the editor.
const QString kSaveAndBack = QStringLiteral("Context1 Context2");
// Apply the quick edits, then save over and leave.
const QString kApply = "Context2 " + kSaveAndBack;

// From the crop screen's centred 80 % start: the lower right corner 5 left
// and 3 up, then the upper left corner 4 right and 2 down.
const QString kCrop = menu(Crop) + ' ' + times("Left", 5) + ' ' + times("Up", 3) + " Select " + times("Right", 4)
    + " Down Down Context1 " + kSaveAndBack;

const QString kHostile = QStringLiteral("'\"$(touch${IFS}pwned1)`touch${IFS}pwned2`;touch${IFS}pwned3;&|<>*\\");

// Picks style `row` in the list of styles and saves over the file.
QString style(int menuRow, int row) { return menu(menuRow) + ' ' + times("Down", row) + " Select " + kSaveAndBack; }

// Turns right, opens a sub-editor and leaves it unconfirmed, then applies;
// choosing the sub-editor blocks the keys for 2 s.
QString leave(int menuRow) { return "Up " + menu(menuRow) + " Context2 wait:2100 " + kApply; }

struct Flow
{
    QString group, name;  // the test function and its row
    const char *format;   // png: a detailed picture; jpg: a photo-like one
    QSize size;
    QString keys;
    QStringList ops = {};  // convert's version of the edit; empty: checked otherwise
    double tolerance = 0;  // mean difference allowed from the reference; 0: exact
    QString written = {};  // the new file, "{base}" standing for the picture's name; empty: saved over
    QString existing = {}; // a file put beside the picture before the run (a copy of it)
};

// Every flow is started by initTestCase and checked by the test function of
// its group. The crop starts with the centred 80 % and a fresh press moves
// a hundredth of the longer side, at least a screen pixel. 320x240 is shown
// at 3/4: it starts at (33,25) 256x192, steps are 4 pixels, and the crop
// is 220x172 at (49,33). 960x720 is previewed at 240x180 (scale 1/4): it
// starts at (25,19) 192x144 there, steps are 3 preview pixels, and the crop
// is 165x129 preview pixels at (37,25), 660x516 at (148,100) full size.
const QList<Flow> &flowTable()
{
    const QSize small(320, 240), large(960, 720);
    static const QList<Flow> table = {
        {"quick", "png rotate right with Up", "png", small, "Up " + kApply, {"-rotate", "90"}},
        // JPEG turns losslessly, but the reference decodes and turns the pixels.
        {"quick", "jpg rotate right with Up", "jpg", large, "Up " + kApply, {"-rotate", "90"}, 4},
        {"crop", "png without preview", "png", small, kCrop, {"-crop", "220x172+49+33", "+repage"}},
        {"crop", "jpg with preview", "jpg", large, kCrop, {"-crop", "660x516+148+100", "+repage"}, 4},
        // Crop at once: what was shown framed, never a dot.
        {"crop", "untouched", "png", small, menu(Crop) + " Context1 " + kSaveAndBack,
         {"-crop", "256x192+33+25", "+repage"}},
        // Offered: 720x540, 640x480, ...; the scaler is not ImageMagick's.
        {"resize", "jpg second offer", "jpg", large, menu(Resize) + " Down Select " + kSaveAndBack,
         {"-resize", "640x480!"}, 8},
        {"style", "negative", "png", small, style(StyleSmall, 2), {"-negate"}},
        {"style", "grayscale", "png", small, style(StyleSmall, 0)},
        {"style", "emboss on a jpg with preview", "jpg", large, style(StyleLarge, 5)},
        // A star 10 steps left of the centre, then a heart 20 steps right
        // of where the star went.
        {"overlay", "star and heart", "png", small,
         menu(AddElements) + " Select " + times("Left", 10) + " Select Right Select " + times("Right", 20)
             + " Select Context1 " + kSaveAndBack},
        {"save as", "after a rotate", "png", small, "Up Context2 Context2 text:turned Select Context2",
         {"-rotate", "90"}, 0, "turned.png"},
        {"save as", "after a resize", "png", small, menu(Resize) + " Select Context2 text:small Select Context2",
         {"-resize", "240x180!"}, 8, "small.png"},
        // After a resize the service is told no file name; the new file
        // still lands beside the picture (the offered name taken as it is).
        {"save as", "after a resize, offered name", "png", small, menu(Resize) + " Select Context2 Context1 Context2",
         {"-resize", "240x180!"}, 8, "{base}_edited.png"},
        // An existing name: No returns to the name, Select asks again, Yes replaces.
        {"save as", "replace: no, then yes", "png", small, "Up Context2 Context2 Select Context2 Select Select Context2",
         {"-rotate", "90"}, 0, "{base}_edited.png", "{base}_edited.png"},
        // Dropping the edits asks first: No keeps them, Yes drops them.
        {"unchanged", "discard: no, then yes", "png", small, "Up Context2 Select Context2 Select Select Context2"},
        // Done with nothing placed is like leaving: Back then closes the
        // editor, as there is nothing to apply.
        {"unchanged", "add elements, nothing placed", "png", small, menu(AddElements) + " Context1 wait:2100 Context2"},
        // A name a shell would act on is still just a name.
        {"save as", "hostile name", "png", small, "Up Context2 Context2 Home text:" + kHostile + " Select Context2",
         {"-rotate", "90"}, 0, kHostile + "{base}_edited.png"},
        // Turned right and mirrored, cancelled, then turned left and saved.
        {"cancel", "then edit again", "png", small, "Up " + menu(MirrorH) + " Context1 Up Select Down " + kApply,
         {"-rotate", "-90"}},
        {"leave", "crop", "png", small, leave(Crop), {"-rotate", "90"}},
        {"leave", "style", "png", small, leave(StyleSmall), {"-rotate", "90"}},
        // Clear on the save screen takes the crop back; the turn is saved.
        {"undo", "turn and crop, crop taken back", "png", small,
         "Up " + menu(Crop) + " Context1 Clear wait:2100 " + kApply, {"-rotate", "90"}},
        // A mirror after the turn, taken back with Undo in the menu (the
        // row after Style), then a left turn taken back with Clear.
        {"undo", "from the menu and by Clear", "png", small,
         "Up " + menu(MirrorH) + ' ' + menu(StyleSmall + 1) + " Down Clear " + kApply, {"-rotate", "90"}},
        // Down to nothing: Back closes at once.
        {"unchanged", "every edit taken back", "png", small, "Up Down Clear Clear Context2"},
        // Style, brightness up four steps: ImageMagick's +20 %.
        {"adjust", "brighter", "png", small,
         menu(StyleSmall) + ' ' + times("Down", 7) + " Select Right Right Right Right Select " + kSaveAndBack,
         {"-brightness-contrast", "20x0"}, 1},
    };
    return table;
}

} // namespace

// Waits for run `id`, which must have ended as checkedRun() says.
#define CHECK_RUN(id, alsoWritten)                                                                      \
    if (const QString problem = checkedRun(id, alsoWritten); !problem.isEmpty())                        \
    QFAIL(qPrintable(QString(id) + ": " + problem))

class TestEditFlows : public QObject
{
    Q_OBJECT
    QTemporaryDir m_root;
    FlowRunner m_runner{5};
    const QString m_tag = QString("ef%1_").arg(getpid());

    // Every picture's name starts with a tag of this process and so do the
    // editor's working copies of it in the shared working directory. Each
    // sits alone in a folder of its own, its original beside the folder.
    QString folder(int i) const { return m_root.filePath(QString::number(i)); }
    QString baseName(int i) const { return m_tag + QString::number(i) + " pic"; }
    QString picture(int i) const { return folder(i) + '/' + baseName(i) + '.' + flowTable().at(i).format; }
    QString original(int i) const { return folder(i) + "-orig." + flowTable().at(i).format; }
    // The new file the flow writes; empty when it saves over the picture.
    QString written(int i) const { return QString(flowTable().at(i).written).replace("{base}", baseName(i)); }
    QString result(int i) const { return written(i).isEmpty() ? picture(i) : folder(i) + '/' + written(i); }
    static QString id(const Flow &f) { return f.group + ": " + f.name; }

    // Waits for run `id`. It must have closed the editor (exit 0) and
    // released its working copies, written nothing into its working
    // directory and nothing but `alsoWritten` beside its picture.
    QString checkedRun(const QString &id, const QString &alsoWritten)
    {
        Run *run = m_runner.wait(id);
        if (!run || run->process.exitStatus() != QProcess::NormalExit || run->process.exitCode() != 0)
            return describe(run);
        const QFileInfo file(run->file);
        const auto all = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
        const QStringList left = QDir(kWorkDir).entryList({"*_" + file.baseName().remove(' ') + "_*"}, all);
        if (!left.isEmpty())
            return "working copies left: " + left.join(", ");
        const QStringList stray = QDir(FlowRunner::workingDirOf(run->file)).entryList(all);
        if (!stray.isEmpty())
            return "written into the working directory: " + stray.join(", ");
        // Every screen the run showed lay within the handset's 240x320: a
        // notice or menu beyond it would have made the shot larger.
        const QStringList shots = QDir(FlowRunner::shotsDirOf(run->file)).entryList({"*.png"}, QDir::Files);
        if (shots.isEmpty())
            return "no screenshots";
        for (const QString &shot : shots) {
            const QSize size = QImage(FlowRunner::shotsDirOf(run->file) + '/' + shot).size();
            if (size != QSize(240, 320))
                return QString("screenshot %1 is %2x%3").arg(shot).arg(size.width()).arg(size.height());
        }
        QStringList expected{file.fileName(), alsoWritten}, found = file.dir().entryList(all);
        expected.removeAll(QString());
        expected.sort();
        found.sort();
        if (found != expected)
            return QString("the folder holds \"%1\", expected \"%2\"").arg(found.join("\", \""), expected.join("\", \""));
        return QString();
    }

    static void addRows(const QStringList &groups)
    {
        QTest::addColumn<int>("index");
        for (int i = 0; i < flowTable().size(); ++i)
            if (groups.contains(flowTable().at(i).group))
                QTest::newRow(qPrintable(id(flowTable().at(i)))) << i;
    }

    // The row's run ended well, and what it wrote is ImageMagick's version
    // of the edit on the original.
    void checkAgainstReference()
    {
        QFETCH(int, index);
        const Flow &f = flowTable().at(index);
        CHECK_RUN(id(f), written(index));
        const QString ref = folder(index) + "-ref.png"; // PNG: no further loss
        QVERIFY2(!convert(QStringList{original(index)} + f.ops + QStringList{ref}).isEmpty(),
                 qPrintable("convert " + f.ops.join(' ') + " failed"));
        const QImage got = load(result(index)), expected = load(ref);
        QVERIFY2(!got.isNull(), "the written file can not be read");
        QCOMPARE(got.size(), expected.size());
        QString difference;
        const double mean = compare(got, expected, &difference);
        if (f.tolerance == 0)
            QVERIFY2(difference.isEmpty(), qPrintable(difference));
        QVERIFY2(mean <= f.tolerance, qPrintable(QString("mean difference %1").arg(mean)));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        QVERIFY2(QFileInfo(kViewer).isExecutable(), kViewer);
        VO_REQUIRE(convert({"-version"}).contains("ImageMagick"), "ImageMagick (for the reference pictures)");
        for (int i = 0; i < flowTable().size(); ++i) {
            const Flow &f = flowTable().at(i);
            const QSize size = f.size;
            const QImage image = f.format == QLatin1String("png") ? detailed(size.width(), size.height())
                                                                  : photo(size.width(), size.height());
            QVERIFY(QDir().mkpath(folder(i)));
            QVERIFY(image.save(original(i), f.format, 92) && QFile::copy(original(i), picture(i)));
            if (!f.existing.isEmpty())
                QVERIFY(QFile::copy(original(i), folder(i) + '/' + QString(f.existing).replace("{base}", baseName(i))));
            m_runner.add(id(f), picture(i), f.keys);
        }
    }

    // Edits whose file must be ImageMagick's version of the same edit:
    // turns with the five-way key, on a detailed picture and a photo; crops
    // chosen on the preview and mapped to full-size pixels, edges included;
    // an offered size written as it is. A sub-editor left unconfirmed keeps
    // the edits made before it; Cancel drops them and the editor stays usable.
    void editsMatchReference_data() { addRows({"quick", "crop", "resize", "cancel", "leave", "undo", "adjust"}); }
    void editsMatchReference() { checkAgainstReference(); }

    // Flows that must leave the picture as it was and write nothing else.
    void unchanged_data() { addRows({"unchanged"}); }
    void unchanged()
    {
        QFETCH(int, index);
        CHECK_RUN(id(flowTable().at(index)), QString());
        QCOMPARE(testimages::bytes(picture(index)), testimages::bytes(original(index)));
    }

    // A style changes the whole picture, at full size even when it was
    // chosen on the preview; grayscale leaves no colour at all.
    void styles_data() { addRows({"style"}); }
    void styles()
    {
        QFETCH(int, index);
        const Flow &f = flowTable().at(index);
        if (!f.ops.isEmpty())
            return checkAgainstReference();
        CHECK_RUN(id(f), QString());
        const QImage after = load(picture(index)), before = load(original(index));
        QCOMPARE(after.size(), before.size());
        QString unused;
        QVERIFY2(compare(after, before, &unused) > 4.0, "the style changed little or nothing");
        for (int y = 0; y < after.height() && f.name == "grayscale"; ++y) {
            for (int x = 0; x < after.width(); ++x) {
                const QRgb p = after.pixel(x, y);
                if (qRed(p) != qGreen(p) || qGreen(p) != qBlue(p))
                    QFAIL(qPrintable(QString("pixel (%1,%2) is #%3").arg(x).arg(y).arg(p & 0xffffff, 6, 16)));
            }
        }
    }

    // Elements are drawn only where they were placed. An element is a
    // quarter of the shorter side (60x60 here); the first starts centred,
    // at (131,91), each next one where the last was placed, and a step is
    // a sixtieth of the shorter side (4 pixels).
    void overlay_data() { addRows({"overlay"}); }
    void overlay()
    {
        QFETCH(int, index);
        CHECK_RUN(id(flowTable().at(index)), QString());
        const QImage after = load(picture(index)), before = load(original(index));
        QCOMPARE(after.size(), before.size());
        // A pixel of slack for the antialiased edge.
        const QRect placed[2] = {QRect(90, 90, 62, 62), QRect(170, 90, 62, 62)};
        int inside[2] = {0, 0};
        for (int y = 0; y < after.height(); ++y) {
            for (int x = 0; x < after.width(); ++x) {
                if (after.pixel(x, y) == before.pixel(x, y))
                    continue;
                if (!placed[0].contains(x, y) && !placed[1].contains(x, y))
                    QFAIL(qPrintable(QString("pixel (%1,%2) changed outside the elements").arg(x).arg(y)));
                inside[0] += placed[0].contains(x, y);
                inside[1] += placed[1].contains(x, y);
            }
        }
        // Each element covers a good part of its square.
        QVERIFY2(inside[0] > 900 && inside[1] > 900,
                 qPrintable(QString("the elements changed %1 and %2 pixels").arg(inside[0]).arg(inside[1])));
    }

    // The edit goes to the new file in the original's folder, exactly as
    // named; the original keeps every byte, and no shell acts on the name.
    void saveAs_data() { addRows({"save as"}); }
    void saveAs()
    {
        QFETCH(int, index);
        CHECK_RUN(id(flowTable().at(index)), written(index));
        QCOMPARE(testimages::bytes(picture(index)), testimages::bytes(original(index)));
        for (const QString &dir : {QDir::tempPath(), QString(kWorkDir)})
            QCOMPARE(QDir(dir).entryList({"pwned*"}), QStringList());
        if (!flowTable().at(index).ops.isEmpty())
            checkAgainstReference();
    }

    // When the edited result does not fit, the file stays as it was and
    // nothing else lands on the medium; the notice that says so goes away
    // by itself and Back then closes the editor.
    void storageFullLeavesFileUnchanged()
    {
        const QString dir = m_root.filePath("full");
        QVERIFY(QDir().mkpath(dir));
        if (geteuid() != 0 || mount("tmpfs", QFile::encodeName(dir).constData(), "tmpfs", 0, "size=512k") != 0)
            QSKIP("needs root (mount of a 512 KiB tmpfs) to run out of storage");
        const auto unmount = qScopeGuard([&] { umount2(QFile::encodeName(dir).constData(), MNT_DETACH); });
        const QString file = dir + '/' + m_tag + "full.png";
        QVERIFY(photo(160, 120).save(file, "png"));
        const QByteArray before = testimages::bytes(file);
        // The room rule keeps five blocks in reserve. With one block free a
        // result fits only when it is four blocks smaller than the file it
        // replaces, which a file of fewer than four blocks can not be.
        QStorageInfo fs(dir);
        QVERIFY(before.size() < 4 * fs.blockSize());
        QFile filler(dir + "/filler");
        QVERIFY(filler.open(QIODevice::WriteOnly) && filler.write(QByteArray(fs.bytesAvailable() - fs.blockSize(), 'f')));
        filler.close();
        fs.refresh();
        QVERIFY(fs.bytesAvailable() <= fs.blockSize());
        // The notice stays 3 s; Back only after it has gone.
        m_runner.add("full", file, "Up Context2 Context1 wait:3600 Context2");
        CHECK_RUN("full", "filler");
        QCOMPARE(testimages::bytes(file), before);
    }

    void cleanupTestCase()
    {
        m_runner.stopAll();
        // A run that was stopped leaves its working copies behind; ours
        // carry the tag.
        for (const QString &name : QDir(kWorkDir).entryList({"*" + m_tag + "*"}, QDir::Files | QDir::Hidden))
            QFile::remove(QDir(kWorkDir).filePath(name));
    }
};

QTEST_GUILESS_MAIN(TestEditFlows)
#include "tst_editflows.moc"
