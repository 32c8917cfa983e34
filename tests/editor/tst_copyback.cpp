#include "ImgImplImageStore.h"
#include "testimages.h"
#include "datarows.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/mount.h>
#include <unistd.h>

using namespace testimages;

class TestCopyBack : public QObject
{
    Q_OBJECT
    QTemporaryDir m_work;
    QTemporaryDir m_files;

private slots:
    void init() { ImgImplImageStore::setWorkingDirForTest(m_work.path()); }

    void mappingDividesByScaleAndTruncates_data()
    {
        columns<QSize, QRect, QRect>({"image", "preview", "real"});
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
        auto [image, preview, real] = fetch<QSize, QRect, QRect>({"image", "preview", "real"});
        const QString path = m_files.filePath(QString("m%1.png").arg(image.width()));
        QVERIFY(write(path, image.width(), image.height(), "PNG"));
        ImgImplImageStore store(path);
        store.mapToRealRect(preview);
        QCOMPARE(preview, real);
    }

    void copyFileReportsFailure_data()
    {
        columns<QString, QString, int>({"source", "destination", "result"});
        QTest::newRow("copies") << "src.bin" << "dst.bin" << 0;
        QTest::newRow("missing source") << "nothing-here" << "dst.bin" << -1;
        QTest::newRow("missing directory") << "src.bin" << "no/such/dir/dst.bin" << -1;
    }

    void copyFileReportsFailure()
    {
        auto [source, destination, result] = fetch<QString, QString, int>({"source", "destination", "result"});
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
        // offset: source size minus the exact limit
        // throughLink: named by a symlink on another file system
        columns<qint64, qint64, bool, bool>({"existing", "offset", "room", "throughLink"});
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
        auto [existing, offset, room, throughLink] = fetch<qint64, qint64, bool, bool>({"existing", "offset", "room", "throughLink"});
        QTemporaryDir mountPoint;
        const QByteArray at = QFile::encodeName(mountPoint.path());
        if (geteuid() != 0 || mount("tmpfs", at.constData(), "tmpfs", 0, "size=512k") != 0)
            QSKIP("needs root to mount a small tmpfs for a full-storage test");
        const auto unmount = qScopeGuard([&] { umount2(at.constData(), MNT_DETACH); });
        const QString target = mountPoint.filePath("target.jpg");
        const QByteArray old(existing, 'e');
        if (existing)
            QVERIFY(writeBytes(target, old));
        const QStorageInfo fs(mountPoint.path()); // as it is now, the old file written
        const qint64 limit = fs.bytesAvailable() - 5 * fs.blockSize();
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
