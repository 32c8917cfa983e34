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
        QTest::addColumn<QSize>("image");
        QTest::addColumn<QRect>("preview");
        QTest::addColumn<QRect>("real");
        // 480x640 is previewed at 240x320: scale 0.5.
        QTest::newRow("corner and size scale separately")
            << QSize(480, 640) << QRect(QPoint(10, 20), QPoint(109, 69)) << QRect(20, 40, 200, 100);
        QTest::newRow("single pixel") << QSize(480, 640) << QRect(5, 7, 1, 1) << QRect(10, 14, 2, 2);
        // 700x700 at 240x240: 2.9 and 8.75 truncate toward zero.
        QTest::newRow("truncates") << QSize(700, 700) << QRect(QPoint(1, 1), QPoint(3, 3)) << QRect(2, 2, 8, 8);
        QTest::newRow("no preview, unchanged") << QSize(100, 80) << QRect(10, 20, 100, 50) << QRect(10, 20, 100, 50);
    }

    void mappingDividesByScaleAndTruncates()
    {
        QFETCH(QSize, image);
        QFETCH(QRect, preview);
        QFETCH(QRect, real);
        const QString path = m_files.filePath(QString("m%1.png").arg(image.width()));
        QVERIFY(write(path, image.width(), image.height(), "PNG"));
        ImgImplImageStore store(path);
        store.mapToRealRect(preview);
        QCOMPARE(preview, real);
    }

    void copyFileReportsFailure_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("destination");
        QTest::addColumn<int>("result");
        QTest::newRow("copies") << "src.bin" << "dst.bin" << 0;
        QTest::newRow("missing source") << "nothing-here" << "dst.bin" << -1;
        QTest::newRow("missing directory") << "src.bin" << "no/such/dir/dst.bin" << -1;
    }

    void copyFileReportsFailure()
    {
        QFETCH(QString, source);
        QFETCH(QString, destination);
        QFETCH(int, result);
        QVERIFY(writeBytes(m_files.filePath("src.bin"), "payload"));
        QFile::remove(m_files.filePath("dst.bin"));
        // The room test fails too when there is nothing to examine.
        QCOMPARE(ImgImplImageStore::hasEnoughSpace(m_files.filePath(source), m_files.filePath(destination)), result == 0);
        QCOMPARE(ImgImplImageStore::copyFile(m_files.filePath(source), m_files.filePath(destination)), result);
        if (result == 0)
            QCOMPARE(bytes(m_files.filePath(destination)), QByteArray("payload"));
    }

    // The strict rule on a genuinely full medium: the new file is written
    // beside the old one, so it needs size < available - 5 blocks whatever
    // it replaces. A file that would fit only in place of the old one gets
    // no room: never a torn file.
    void roomTestIsStrictOnARealFileSystem_data()
    {
        QTest::addColumn<qint64>("existing");
        QTest::addColumn<qint64>("offset"); // source size minus the exact limit
        QTest::addColumn<bool>("room");
        QTest::addColumn<bool>("throughLink"); // named by a symlink on another file system
        QTest::newRow("new file at the limit") << qint64(0) << qint64(0) << false << false;
        QTest::newRow("new file one byte under") << qint64(0) << qint64(-1) << true << false;
        QTest::newRow("replacing, at the limit") << qint64(100 * 1024) << qint64(0) << false << false;
        QTest::newRow("replacing, one byte under") << qint64(100 * 1024) << qint64(-1) << true << false;
        QTest::newRow("fits only in place of the old") << qint64(100 * 1024) << qint64(50 * 1024) << false << false;
        QTest::newRow("through a link, at the limit") << qint64(100 * 1024) << qint64(0) << false << true;
        QTest::newRow("through a link, one byte under") << qint64(100 * 1024) << qint64(-1) << true << true;
    }

    void roomTestIsStrictOnARealFileSystem()
    {
        QFETCH(qint64, existing);
        QFETCH(qint64, offset);
        QFETCH(bool, room);
        QFETCH(bool, throughLink);
        QTemporaryDir mountPoint;
        SmallFileSystem fs(mountPoint.path(), 512);
        if (!fs.mounted())
            QSKIP("needs root to mount a small tmpfs for a full-storage test");
        const QString target = mountPoint.filePath("target.jpg");
        const QByteArray old(existing, 'e');
        if (existing)
            QVERIFY(writeBytes(target, old));
        const qint64 limit = fs.available() - 5 * fs.blockSize();
        QVERIFY(writeBytes(m_files.filePath("source"), QByteArray(limit + offset, 's')));
        const QString named = throughLink ? m_files.filePath("link.jpg") : target;
        QFile::remove(m_files.filePath("link.jpg"));
        if (throughLink)
            QVERIFY(QFile::link(target, named));
        QCOMPARE(ImgImplImageStore::hasEnoughSpace(m_files.filePath("source"), named), room);
        // The write itself keeps the rule, and a refused one changes nothing.
        QCOMPARE(ImgImplImageStore::copyFile(m_files.filePath("source"), named), room ? 0 : -1);
        if (throughLink)
            QVERIFY(QFileInfo(named).isSymLink());
        if (!room)
            QCOMPARE(bytes(target), existing ? old : QByteArray());
        QCOMPARE(QDir(mountPoint.path()).entryList(QDir::Files | QDir::Hidden).size(), existing || room ? 1 : 0);
    }
};

QTEST_MAIN(TestCopyBack)
#include "tst_copyback.moc"
