#include "ImgImplImageStore.h"
#include "MMImageSource.h"
#include "testimages.h"
#include "datarows.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <ctime>
#include <sys/stat.h>
#include <unistd.h>

using namespace testimages;

class TestImageStore : public QObject
{
    Q_OBJECT

    QTemporaryDir m_work;  // the store's working directory
    QTemporaryDir m_files; // edited files

    QString workDir() const { return m_work.path() + "/"; }
    QString file(const QString &name) const { return m_files.filePath(name); }
    QStringList workingFiles() const { return QDir(m_work.path()).entryList(QDir::Files | QDir::Hidden); }

private slots:
    void init()
    {
        ImgImplImageStore::setWorkingDirForTest(workDir());
        for (const QString &f : workingFiles())
            QFile::remove(m_work.filePath(f));
    }

    void realCopyNameKeepsExtensionAndDropsBlanksFromBaseOnly_data()
    {
        // pattern: T stands for the time stamp
        columns<QString, QString>({"name", "pattern"});
        QTest::newRow("blanks in base") << "My Photo.jpg" << "tempreal_MyPhoto_T.jpg";
        QTest::newRow("first dot splits") << "a.b.jpg" << "tempreal_a_T.b.jpg";
        QTest::newRow("no dot") << "noext" << "tempreal_noext_T.";
        QTest::newRow("blank in extension stays") << "x y.p n g" << "tempreal_xy_T.p n g";
    }

    void realCopyNameKeepsExtensionAndDropsBlanksFromBaseOnly()
    {
        auto [name, pattern] = fetch<QString, QString>({"name", "pattern"});
        QVERIFY(write(file(name), 40, 30, "PNG"));
        const qint64 before = time(nullptr);
        ImgImplImageStore store(file(name));
        const qint64 after = time(nullptr);

        const QString real = QFileInfo(store.realFilePath()).fileName();
        QVERIFY(store.realFilePath().startsWith(workDir()));
        QRegularExpression re("^" + QRegularExpression::escape(pattern).replace("T", "(\\d+)") + "$");
        const auto m = re.match(real);
        QVERIFY2(m.hasMatch(), qPrintable(real));
        const qint64 stamp = m.captured(1).toLongLong();
        QVERIFY(stamp >= before && stamp <= after);
        QCOMPARE(bytes(store.realFilePath()), bytes(file(name)));
        QVERIFY(!store.hasPreview);
    }

    void previewIsMadeFromSizeThreshold_data()
    {
        columns<int, int, bool, QSize, float>({"w", "h", "preview", "previewSize", "scale"});
        QTest::newRow("640x480 is large") << 640 << 480 << true << QSize(240, 180) << 0.375f;
        QTest::newRow("640x479 is not") << 640 << 479 << false << QSize() << 1.0f;
        QTest::newRow("portrait uses heights") << 480 << 640 << true << QSize(240, 320) << 0.5f;
        QTest::newRow("square uses heights") << 700 << 700 << true << QSize(240, 240) << float(240.0 / 700.0);
    }

    void previewIsMadeFromSizeThreshold()
    {
        auto [w, h, preview, previewSize, scale] = fetch<int, int, bool, QSize, float>({"w", "h", "preview", "previewSize", "scale"});
        QVERIFY(write(file("p.png"), w, h, "PNG"));
        ImgImplImageStore store(file("p.png"));
        QCOMPARE(store.hasPreview, preview);
        QCOMPARE(store.getPreviewSource() != nullptr, preview);
        QCOMPARE(store.getPreviewScale(), scale);
        if (!preview)
            return;
        const QString name = QFileInfo(store.previewFilePath()).fileName();
        const QString realBase = QFileInfo(store.realFilePath()).fileName().section('.', 0, 0);
        QVERIFY2(QRegularExpression("^smallimg_" + realBase + "_\\d+\\.png$").match(name).hasMatch(), qPrintable(name));
        QCOMPARE(QImage(store.previewFilePath()).size(), previewSize);
    }

    void tmpCopyComesFromPreviewOrRealAndIsCached()
    {
        QVERIFY(write(file("t.png"), 640, 480, "PNG"));
        ImgImplImageStore store(file("t.png"));
        MMImageSource *first = store.getTmpSource(0);
        QVERIFY(first);
        QCOMPARE(QFileInfo(store.tmpFilePath()).fileName(),
                 "tempsmall_" + QFileInfo(store.previewFilePath()).fileName());
        QCOMPARE(bytes(store.tmpFilePath()), bytes(store.previewFilePath()));
        QCOMPARE(store.getTmpSource(1), first); // cached whatever the argument

        store.deleteTmpSource();
        QVERIFY(!QFileInfo::exists(store.tmpFilePath()));
        MMImageSource *real = store.getTmpSource(1);
        QCOMPARE(QFileInfo(store.tmpFilePath()).fileName(), "tempsmall_" + QFileInfo(store.realFilePath()).fileName());
        QCOMPARE(bytes(store.tmpFilePath()), bytes(file("t.png")));
        QVERIFY(real);
    }

    // Reloading from a file that can no longer be read keeps the working
    // copy there is, rather than leaving the editor with none.
    void failedReloadKeepsTheWorkingCopy()
    {
        QVERIFY(write(file("keep.png"), 64, 48, "PNG"));
        ImgImplImageStore store(file("keep.png"));
        const QString real = store.realFilePath();
        store.setImageFile(file("gone.png"));
        QCOMPARE(store.realFilePath(), real);
        QCOMPARE(bytes(real), bytes(file("keep.png")));
        QVERIFY(!store.isEmpty());
        QCOMPARE(workingFiles().size(), 2); // the copy and the live marker
        store.setImageFile(file("keep.png"));
        QVERIFY(store.realFilePath() != real);
        QVERIFY(!QFileInfo::exists(real));
    }

    void sizeRules_data()
    {
        columns<int, int, bool, bool>({"w", "h", "large", "editable"});
        QTest::newRow("20x1000 side too small") << 20 << 1000 << false << false;
        QTest::newRow("641x480 too many pixels") << 641 << 480 << true << false;
        QTest::newRow("21x21") << 21 << 21 << false << true;
        QTest::newRow("640x480 both") << 640 << 480 << true << true;
        QTest::newRow("640x479") << 640 << 479 << false << true;
        QTest::newRow("unreadable counts as zero-sized") << 0 << 0 << false << false;
    }

    void sizeRules()
    {
        auto [w, h, large, editable] = fetch<int, int, bool, bool>({"w", "h", "large", "editable"});
        const QString path = file(QString("size_%1x%2.png").arg(w).arg(h));
        QVERIFY(w ? write(path, w, h, "PNG") : writeBytes(path, "not a picture"));
        QCOMPARE(ImgImplImageStore::isLargeImage(path), large);
        QCOMPARE(ImgImplImageStore::isEditableImage(path), editable);
    }

    void hostileNamesAreCopiedExactlyAndRunNothing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("single quote") << "it's.png";
        QTest::newRow("double quote") << "say \"hi\".png";
        QTest::newRow("dollar") << "$(touch CANARY).png";
        QTest::newRow("backticks") << "`touch CANARY`.png";
        QTest::newRow("backslash") << "back\\slash.png";
        QTest::newRow("semicolon") << "a;touch CANARY;.png";
        QTest::newRow("newline") << "line\nbreak.png";
        QTest::newRow("leading dash") << "-rf.png";
        QTest::newRow("quotes mixed") << "'\"'$HOME\"'.png";
        QTest::newRow("utf8") << QString::fromUtf8("Ünïcödé фото 写真.png");
    }

    void hostileNamesAreCopiedExactlyAndRunNothing()
    {
        QFETCH(QString, name);
        QVERIFY(write(file(name), 40, 30, "PNG"));
        const QString cwd = QDir::currentPath();
        QDir::setCurrent(m_files.path()); // where a stray "touch CANARY" would land
        {
            ImgImplImageStore store(file(name));
            QCOMPARE(bytes(store.realFilePath()), bytes(file(name)));
            store.getTmpSource(0);
            QCOMPARE(bytes(store.tmpFilePath()), bytes(file(name)));
            const QString copy = file("copy of " + name);
            QCOMPARE(ImgImplImageStore::copyFile(store.realFilePath(), copy), 0);
            QCOMPARE(bytes(copy), bytes(file(name)));
        }
        QDir::setCurrent(cwd);
        QVERIFY(!QFileInfo::exists(m_files.filePath("CANARY")));
        QVERIFY(!QFileInfo::exists(m_work.filePath("CANARY")));
    }

    // Stores never share a file, and each removes its own copies but never
    // the file it was made for nor the working directory.
    void storesInTheSameSecondNeverShareFiles()
    {
        // Same base name and extension, different folders, same second.
        QTemporaryDir other;
        QVERIFY(write(file("same.png"), 640, 480, "PNG"));
        QVERIFY(write(other.filePath("same.png"), 800, 600, "PNG"));
        const QByteArray original = bytes(file("same.png"));
        auto *a = new ImgImplImageStore(file("same.png"));
        auto *b = new ImgImplImageStore(other.filePath("same.png"));
        a->getTmpSource(0);
        b->getTmpSource(0);
        // Each: three copies and the marker that says its editor is alive.
        QCOMPARE(workingFiles().size(), 8);
        QCOMPARE(workingFiles().filter("live_").size(), 2);
        QVERIFY(a->realFilePath() != b->realFilePath());
        QVERIFY(a->previewFilePath() != b->previewFilePath());
        QVERIFY(a->tmpFilePath() != b->tmpFilePath());
        QCOMPARE(bytes(a->realFilePath()), bytes(file("same.png")));
        QCOMPARE(bytes(b->realFilePath()), bytes(other.filePath("same.png")));
        delete a;
        QVERIFY(QFileInfo::exists(b->realFilePath()));
        QVERIFY(QFileInfo::exists(b->previewFilePath()));
        QVERIFY(QFileInfo::exists(b->tmpFilePath()));
        delete b;
        QVERIFY(workingFiles().isEmpty());
        QVERIFY(QFileInfo(m_work.path()).isDir());
        QCOMPARE(bytes(file("same.png")), original);
    }

    void workingDirMustBeOurOwnPrivateDir_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("symlink") << "symlink";
        QTest::newRow("regular file") << "file";
        QTest::newRow("other owner") << "owner";
        QTest::newRow("ours, open to all") << "open";
        QTest::newRow("created private") << "fresh";
    }

    void workingDirMustBeOurOwnPrivateDir()
    {
        QFETCH(QString, kind);
        QTemporaryDir parent;
        QTemporaryDir elsewhere;
        const QString dir = parent.filePath("work");
        if (kind == "symlink") {
            QVERIFY(QFile::link(elsewhere.path(), dir));
        } else if (kind == "file") {
            QVERIFY(writeBytes(dir, "x"));
        } else if (kind == "open") {
            QVERIFY(QDir().mkdir(dir));
            QCOMPARE(chmod(QFile::encodeName(dir).constData(), 0777), 0);
        } else if (kind == "owner") {
            if (geteuid() != 0)
                QSKIP("needs root to make a directory that belongs to someone else");
            QVERIFY(QDir().mkdir(dir));
            QCOMPARE(chown(QFile::encodeName(dir).constData(), 65534, 65534), 0);
        }
        const bool usable = kind == "fresh" || kind == "open";
        ImgImplImageStore::setWorkingDirForTest(dir + "/");
        QVERIFY(write(file("e.png"), 640, 480, "PNG"));
        ImgImplImageStore store(file("e.png"));
        QCOMPARE(store.isEmpty(), !usable);
        QCOMPARE(store.hasPreview, usable);
        QVERIFY(QDir(elsewhere.path()).entryList(QDir::Files).isEmpty());
        if (usable) {
            struct stat st;
            QCOMPARE(stat(QFile::encodeName(dir).constData(), &st), 0);
            QCOMPARE(int(st.st_mode & 0777), 0700);
        }
    }
};

QTEST_MAIN(TestImageStore)
#include "tst_imagestore.moc"
