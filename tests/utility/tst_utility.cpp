// Fitting a picture to the screen and making unique temporary names.
#include "VOUtility.h"
#include "datarows.h"
#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>
#include <climits>

class TestUtility : public QObject
{
    Q_OBJECT

private slots:
    void fitScreen_data()
    {
        columns<QSize, QSize, QSize>({"image", "screen", "expected"});
        QTest::newRow("small is not enlarged") << QSize(10, 10) << QSize(240, 320) << QSize(10, 10);
        QTest::newRow("exactly the screen's shape") << QSize(3000, 4000) << QSize(240, 320) << QSize(240, 320);
        QTest::newRow("tall") << QSize(1000, 4000) << QSize(240, 320) << QSize(80, 320);
        QTest::newRow("rounded to nearest") << QSize(6028, 3391) << QSize(480, 640) << QSize(480, 270);
        QTest::newRow("thin line keeps a pixel") << QSize(10000, 1) << QSize(240, 320) << QSize(240, 1);
        QTest::newRow("thin column keeps a pixel") << QSize(2, 9000) << QSize(240, 320) << QSize(1, 320);
        QTest::newRow("products beyond 32 bits") << QSize(INT_MAX, INT_MAX / 2) << QSize(240, 320) << QSize(240, 120);
        QTest::newRow("no area: nothing to fit") << QSize(100, -5) << QSize(240, 320) << QSize(0, 0);
        QTest::newRow("screen without area: one pixel") << QSize(640, 480) << QSize(0, 0) << QSize(1, 1);
    }

    void fitScreen()
    {
        auto [image, screen, expected] = fetch<QSize, QSize, QSize>({"image", "screen", "expected"});
        int w = image.width(), h = image.height();

        VOUtility::fitScreen(w, h, screen.width(), screen.height());

        QCOMPARE(QSize(w, h), expected);
    }

    void tempNamesAreUniqueAndTaken()
    {
        QTemporaryDir dir;
        QSet<QString> names;
        for (int i = 0; i < 200; ++i) {
            // Half the calls give the directory without its trailing slash; a
            // third ask for an extension, which must be part of the name taken.
            const std::string path = (dir.path() + (i % 2 ? "/" : "")).toStdString();
            const std::string suffix = i % 3 ? "" : ".Jpg";
            const QString name = QString::fromStdString(i % 3 ? VOUtility::genTempFileName(path)
                                                              : VOUtility::genTempFileName(path, suffix));
            const QFileInfo info(name);
            QVERIFY(name.endsWith(QString::fromStdString(suffix)));
            QCOMPARE(int(info.permissions() & (QFile::ReadOther | QFile::WriteOther | QFile::ReadGroup | QFile::WriteGroup)), 0);
            QCOMPARE(info.absolutePath(), QDir(dir.path()).absolutePath());
            QVERIFY(!name.contains("//"));
            QVERIFY(info.isFile() && info.size() == 0); // the empty placeholder holds the name
            names.insert(name);
        }

        QCOMPARE(names.size(), 200);
    }

    void tempNameFailsWithoutDirectory_data()
    {
        QTest::addColumn<QString>("dir");
        QTest::newRow("missing") << "missing/";
        QTest::newRow("a file, not a directory") << "plain/";
        QTest::newRow("empty") << "";
    }

    void tempNameFailsWithoutDirectory()
    {
        QFETCH(QString, dir);
        QTemporaryDir base;
        QVERIFY(QFile(base.filePath("plain")).open(QIODevice::WriteOnly)); // made, and closed at once

        QCOMPARE(VOUtility::genTempFileName(dir.isEmpty() ? std::string() : base.filePath(dir).toStdString()), std::string());
    }
};

QTEST_GUILESS_MAIN(TestUtility)
#include "tst_utility.moc"
