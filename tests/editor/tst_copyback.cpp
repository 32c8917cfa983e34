#include "ImgImplImageStore.h"
#include "testimages.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/mount.h>
#include <sys/statfs.h>
#include <unistd.h>

using namespace testimages;

// A size-limited tmpfs, mounted for the test when we are root.
class SmallFileSystem
{
public:
    explicit SmallFileSystem(const QString &path, int kib) : m_path(path)
    {
        const QByteArray options = "size=" + QByteArray::number(kib) + "k";
        m_mounted = geteuid() == 0
            && mount("tmpfs", QFile::encodeName(path).constData(), "tmpfs", 0, options.constData()) == 0;
    }
    ~SmallFileSystem()
    {
        if (m_mounted)
            umount2(QFile::encodeName(m_path).constData(), MNT_DETACH);
    }
    bool mounted() const { return m_mounted; }
    qint64 blockSize() const { return stats().f_bsize; }
    qint64 available() const { struct statfs s = stats(); return qint64(s.f_bsize) * qint64(s.f_bavail); }

private:
    struct statfs stats() const
    {
        struct statfs s {};
        statfs(QFile::encodeName(m_path).constData(), &s);
        return s;
    }
    QString m_path;
    bool m_mounted = false;
};

class TestCopyBack : public QObject
{
    Q_OBJECT
    QTemporaryDir m_work;
    QTemporaryDir m_files;

private slots:
    void init() { ImgImplImageStore::setWorkingDirForTest(m_work.path()); }

    void mappingDividesByScaleAndTruncates_data()
    {
        QTest::addColumn<QRect>("preview");
        QTest::addColumn<QRect>("real");
        // Scale 0.5: a 480x640 picture previewed at 240x320.
        QTest::newRow("corner and size scale separately")
            << QRect(QPoint(10, 20), QPoint(109, 69)) << QRect(20, 40, 200, 100);
        QTest::newRow("single pixel") << QRect(5, 7, 1, 1) << QRect(10, 14, 2, 2);
        QTest::newRow("origin") << QRect(0, 0, 240, 320) << QRect(0, 0, 480, 640);
    }

    void mappingDividesByScaleAndTruncates()
    {
        QFETCH(QRect, preview);
        QFETCH(QRect, real);
        QVERIFY(write(m_files.filePath("m.png"), 480, 640, "PNG"));
        ImgImplImageStore store(m_files.filePath("m.png"));
        QCOMPARE(store.getPreviewScale(), 0.5f);
        store.mapToRealRect(preview);
        QCOMPARE(preview, real);
    }

    void mappingTruncatesTowardZero()
    {
        // 700x700 previewed at 240x240: scale 0.342857...
        QVERIFY(write(m_files.filePath("t.png"), 700, 700, "PNG"));
        ImgImplImageStore store(m_files.filePath("t.png"));
        QPoint p(100, 239);
        store.mapToRealPoint(p);
        QCOMPARE(p, QPoint(291, 697)); // 291.66 and 697.08, truncated
        QRect r(QPoint(1, 1), QPoint(3, 3));
        store.mapToRealRect(r);
        QCOMPARE(r, QRect(2, 2, 8, 8)); // 2.9 and 8.75 truncated
    }

    void mappingWithoutPreviewChangesNothing()
    {
        QVERIFY(write(m_files.filePath("n.png"), 100, 80, "PNG"));
        ImgImplImageStore store(m_files.filePath("n.png"));
        QRect r(QPoint(10, 20), QPoint(109, 69));
        QPoint p(33, 44);
        store.mapToRealRect(r);
        store.mapToRealPoint(p);
        QCOMPARE(r, QRect(QPoint(10, 20), QPoint(109, 69)));
        QCOMPARE(p, QPoint(33, 44));
    }

    void copyFileReportsExitStatus_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("destination");
        QTest::addColumn<int>("result");
        QTest::newRow("copies") << "src.bin" << "dst.bin" << 0;
        QTest::newRow("missing source") << "nothing-here" << "dst.bin" << -1;
        QTest::newRow("missing directory") << "src.bin" << "no/such/dir/dst.bin" << -1;
    }

    void copyFileReportsExitStatus()
    {
        QFETCH(QString, source);
        QFETCH(QString, destination);
        QFETCH(int, result);
        QVERIFY(writeBytes(m_files.filePath("src.bin"), "payload"));
        QFile::remove(m_files.filePath("dst.bin"));
        QCOMPARE(ImgImplImageStore::copyFile(m_files.filePath(source), m_files.filePath(destination)), result);
        if (result == 0)
            QCOMPARE(bytes(m_files.filePath(destination)), QByteArray("payload"));
    }

    void roomTestFailsWhenNothingCanBeExamined()
    {
        QVERIFY(writeBytes(m_files.filePath("small"), "x"));
        QVERIFY(!ImgImplImageStore::hasEnoughSpace(m_files.filePath("small"), "/no/such/dir/target"));
        QVERIFY(!ImgImplImageStore::hasEnoughSpace(m_files.filePath("missing"), m_files.filePath("target")));
        QVERIFY(ImgImplImageStore::hasEnoughSpace(m_files.filePath("small"), m_files.filePath("target")));
    }

    // The strict rule on a genuinely full medium: size < available + existing - 5 blocks.
    void roomTestIsStrictOnARealFileSystem_data()
    {
        QTest::addColumn<qint64>("existing");
        QTest::addColumn<qint64>("offset"); // source size minus the exact limit
        QTest::addColumn<bool>("room");
        QTest::newRow("new file at the limit") << qint64(0) << qint64(0) << false;
        QTest::newRow("new file one byte under") << qint64(0) << qint64(-1) << true;
        QTest::newRow("replacing, at the limit") << qint64(100 * 1024) << qint64(0) << false;
        QTest::newRow("replacing, one byte under") << qint64(100 * 1024) << qint64(-1) << true;
    }

    void roomTestIsStrictOnARealFileSystem()
    {
        QFETCH(qint64, existing);
        QFETCH(qint64, offset);
        QFETCH(bool, room);
        QTemporaryDir mountPoint;
        SmallFileSystem fs(mountPoint.path(), 512);
        if (!fs.mounted())
            QSKIP("needs root to mount a small tmpfs for a full-storage test");
        const QString target = mountPoint.filePath("target.jpg");
        if (existing)
            QVERIFY(writeBytes(target, QByteArray(existing, 'e')));
        const qint64 limit = fs.available() + existing - 5 * fs.blockSize();
        QVERIFY(writeBytes(m_files.filePath("source"), QByteArray(limit + offset, 's')));
        QCOMPARE(ImgImplImageStore::hasEnoughSpace(m_files.filePath("source"), target), room);
    }

    void saveWithoutRoomLeavesFileUnchanged()
    {
        QTemporaryDir mountPoint;
        SmallFileSystem fs(mountPoint.path(), 256);
        if (!fs.mounted())
            QSKIP("needs root to mount a small tmpfs for a full-storage test");
        const QString edited = mountPoint.filePath("photo.png");
        QVERIFY(write(edited, 40, 30, "PNG"));
        const QByteArray before = bytes(edited);
        ImgImplImageStore store(edited);
        // The edited result is far larger than the medium.
        QVERIFY(writeBytes(store.realFilePath(), QByteArray(400 * 1024, 'z')));
        QCOMPARE(store.saveToOriginalFile(), -1);
        QCOMPARE(bytes(edited), before);

        QVERIFY(writeBytes(store.realFilePath(), "fits"));
        QCOMPARE(store.saveToOriginalFile(), 0);
        QCOMPARE(bytes(edited), QByteArray("fits"));
    }
};

QTEST_MAIN(TestCopyBack)
#include "tst_copyback.moc"
