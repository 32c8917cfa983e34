// Fitting a picture to the screen and making unique temporary names.
#include "VOUtility.h"
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>
#include <climits>

class TestUtility : public QObject
{
    Q_OBJECT

private slots:
    void fitScreen_data();
    void fitScreen();
    void fitScreenKeepsAspectAndBounds();
    void tempNameIsCreatedInDirectory_data();
    void tempNameIsCreatedInDirectory();
    void tempNamesAreUnique();
    void tempNameFailsWithoutDirectory_data();
    void tempNameFailsWithoutDirectory();
};

void TestUtility::fitScreen_data()
{
    QTest::addColumn<QSize>("image");
    QTest::addColumn<QSize>("screen");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("already fits") << QSize(200, 100) << QSize(240, 320) << QSize(200, 100);
    QTest::newRow("exact fit") << QSize(240, 320) << QSize(240, 320) << QSize(240, 320);
    QTest::newRow("small is not enlarged") << QSize(10, 10) << QSize(240, 320) << QSize(10, 10);
    QTest::newRow("landscape photo") << QSize(6000, 4000) << QSize(240, 320) << QSize(240, 160);
    QTest::newRow("portrait photo") << QSize(3000, 4000) << QSize(240, 320) << QSize(240, 320);
    QTest::newRow("tall") << QSize(1000, 4000) << QSize(240, 320) << QSize(80, 320);
    QTest::newRow("wide, rounded") << QSize(6028, 3391) << QSize(480, 640) << QSize(480, 270);
    QTest::newRow("only width too big") << QSize(300, 100) << QSize(240, 320) << QSize(240, 80);
    QTest::newRow("thin line keeps a pixel") << QSize(10000, 1) << QSize(240, 320) << QSize(240, 1);
    QTest::newRow("thin column keeps a pixel") << QSize(2, 9000) << QSize(240, 320) << QSize(1, 320);
    QTest::newRow("products beyond 32 bits") << QSize(INT_MAX, INT_MAX / 2) << QSize(240, 320) << QSize(240, 120);
    // No area: nothing to fit.
    QTest::newRow("zero width") << QSize(0, 100) << QSize(240, 320) << QSize(0, 0);
    QTest::newRow("negative height") << QSize(100, -5) << QSize(240, 320) << QSize(0, 0);
    // A screen without area is taken as a single pixel.
    QTest::newRow("zero screen") << QSize(640, 480) << QSize(0, 0) << QSize(1, 1);
    QTest::newRow("negative screen width") << QSize(640, 480) << QSize(-1, 320) << QSize(1, 1);
}

void TestUtility::fitScreen()
{
    QFETCH(QSize, image);
    QFETCH(QSize, screen);
    QFETCH(QSize, expected);
    int w = image.width(), h = image.height();

    VOUtility::fitScreen(w, h, screen.width(), screen.height());

    QCOMPARE(QSize(w, h), expected);
}

void TestUtility::fitScreenKeepsAspectAndBounds()
{
    const QSize screen(240, 320);
    for (int w = 1; w <= 3000; w += 97) {
        for (int h = 1; h <= 3000; h += 89) {
            int fw = w, fh = h;
            VOUtility::fitScreen(fw, fh, screen.width(), screen.height());
            QVERIFY(fw >= 1 && fh >= 1);
            QVERIFY(fw <= qMax(1, qMin(w, screen.width())) && fh <= qMax(1, qMin(h, screen.height())));
            QVERIFY(fw == screen.width() || fh == screen.height() || (fw == w && fh == h));
            // The other side is the exact scaled one, rounded (or 1 when it
            // would vanish).
            const double scale = qMin(1.0, qMin(double(screen.width()) / w, double(screen.height()) / h));
            QVERIFY2((qAbs(fw - w * scale) <= 0.5 || fw == 1) && (qAbs(fh - h * scale) <= 0.5 || fh == 1),
                     qPrintable(QString("%1x%2 -> %3x%4").arg(w).arg(h).arg(fw).arg(fh)));
        }
    }
}

void TestUtility::tempNameIsCreatedInDirectory_data()
{
    QTest::addColumn<bool>("trailingSlash");
    QTest::newRow("with slash") << true;
    QTest::newRow("without slash") << false;
}

void TestUtility::tempNameIsCreatedInDirectory()
{
    QFETCH(bool, trailingSlash);
    QTemporaryDir dir;
    const std::string given = (dir.path() + (trailingSlash ? "/" : "")).toStdString();

    const QString path = QString::fromStdString(VOUtility::genTempFileName(given));

    QVERIFY(!path.isEmpty());
    const QFileInfo info(path);
    QCOMPARE(info.absolutePath(), QDir(dir.path()).absolutePath());
    QVERIFY(info.fileName().startsWith("vo_"));
    QVERIFY(!path.contains("//"));
    // The name is taken: the placeholder exists and is empty.
    QVERIFY(info.isFile());
    QCOMPARE(info.size(), qint64(0));
}

void TestUtility::tempNamesAreUnique()
{
    QTemporaryDir dir;
    QSet<QString> names;
    for (int i = 0; i < 200; ++i)
        names.insert(QString::fromStdString(VOUtility::genTempFileName(dir.path().toStdString() + "/")));

    QCOMPARE(names.size(), 200);
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 200);
}

void TestUtility::tempNameFailsWithoutDirectory_data()
{
    QTest::addColumn<QString>("dir");
    QTest::newRow("missing") << "missing/";
    QTest::newRow("a file, not a directory") << "plain/";
    QTest::newRow("empty") << "";
}

void TestUtility::tempNameFailsWithoutDirectory()
{
    QFETCH(QString, dir);
    QTemporaryDir base;
    QFile plain(base.filePath("plain"));
    QVERIFY(plain.open(QIODevice::WriteOnly));
    plain.close();
    const QString given = dir.isEmpty() ? QString() : base.filePath(dir);

    QCOMPARE(VOUtility::genTempFileName(given.toStdString()), std::string());
}

QTEST_GUILESS_MAIN(TestUtility)
#include "tst_utility.moc"
