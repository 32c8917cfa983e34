#include "ZGlobal.h"
#include "ZKbMainWidget.h"
#include "ZSoftKey.h"
#include <QLabel>
#include <QTest>

class tst_ToolkitGeometry : public QObject
{
    Q_OBJECT
private slots:
    void cleanup() { qunsetenv("VO_SCREEN_SIZE"); }
    void screenSizeFromEnvironment_data();
    void screenSizeFromEnvironment();
    void windowIsLaidOutFromScreen();
};

void tst_ToolkitGeometry::screenSizeFromEnvironment_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QSize>("expected");
    const QSize qvga(240, 320);
    QTest::newRow("unset") << QByteArray() << qvga;
    QTest::newRow("vga") << QByteArray("480x640") << QSize(480, 640);
    QTest::newRow("landscape, spaces") << QByteArray(" 320X240 ") << QSize(320, 240);
    QTest::newRow("tiny") << QByteArray("16x10") << QSize(16, 10);
    QTest::newRow("missing height") << QByteArray("480x") << qvga;
    QTest::newRow("zero") << QByteArray("0x320") << qvga;
    QTest::newRow("negative") << QByteArray("-240x320") << qvga;
    QTest::newRow("absurd") << QByteArray("100000x100000") << qvga;
}

// Title on top (a tenth of the height), soft keys at the bottom (about 9 %),
// the home area from under the title to the bottom; all full width.
void tst_ToolkitGeometry::screenSizeFromEnvironment()
{
    QFETCH(QByteArray, value);
    QFETCH(QSize, expected);
    if (!value.isNull())
        qputenv("VO_SCREEN_SIZE", value);
    const QRect screen = ZGlobal::getScreenR();
    const QRect title = ZGlobal::getTitleR();
    const QRect keys = ZGlobal::getCstR();
    const QRect home = ZGlobal::getHomeR(false);

    QCOMPARE(screen, QRect(QPoint(0, 0), expected));
    QCOMPARE(ZGlobal::getHomeR(true), screen);
    for (const QRect &r : {title, keys, home}) {
        QVERIFY(!r.isEmpty() && screen.contains(r));
        QCOMPARE(r.width(), screen.width());
    }
    QCOMPARE(title.top(), 0);
    QCOMPARE(home.top(), title.bottom() + 1);
    QCOMPARE(home.bottom(), screen.bottom());
    QCOMPARE(keys.bottom(), screen.bottom());
    QVERIFY(qAbs(title.height() - screen.height() * 0.10) <= 1.0);
    QVERIFY(qAbs(keys.height() - screen.height() * 0.09) <= 1.0);
}

void tst_ToolkitGeometry::windowIsLaidOutFromScreen()
{
    qputenv("VO_SCREEN_SIZE", "480x640");
    ZKbMainWidget screen;
    auto *content = new QLabel(QStringLiteral("picture"));
    screen.setContentWidget(content);
    QCOMPARE(content->parentWidget(), &screen);
    QCOMPARE(content->geometry(), ZGlobal::getHomeR(false)); // no soft keys yet

    ZSoftKey *keys = screen.getSoftKey();
    QCOMPARE(screen.getSoftKey(false), keys);
    screen.setMainWidgetTitle(QString(200, QLatin1Char('W')));
    screen.show();
    QVERIFY(QTest::qWaitForWindowExposed(&screen));
    QVERIFY(screen.isWindow());
    QCOMPARE(screen.size(), QSize(480, 640));
    QCOMPARE(keys->geometry(), ZGlobal::getCstR());
    QCOMPARE(content->geometry(), ZGlobal::getHomeR(false).adjusted(0, 0, 0, -ZGlobal::getCstR().height()));
}

QTEST_MAIN(tst_ToolkitGeometry)
#include "tst_toolkit_geometry.moc"
