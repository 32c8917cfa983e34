#include "ZKbMainWidget.h"
#include "ZNoticeDlg.h"
#include <QElapsedTimer>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

class DismissCounter : public QObject
{
    Q_OBJECT
public:
    int count = 0;
public slots:
    void onDismissed() { ++count; }
};

namespace {
ZNoticeDlg *inform(DismissCounter *counter)
{
    return ZNoticeDlg::information(QStringLiteral("Memory full"), QString(), QString(), QString(), counter,
                                   SLOT(onDismissed()));
}

void press(QWidget *target, int key)
{
    QTest::sendKeyEvent(QTest::Click, target, Qt::Key(key), QString(), Qt::NoModifier);
}
} // namespace

class tst_ToolkitNotice : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup() { delete m_screen; }
    void informationRunsMemberOnceOnKey_data();
    void informationRunsMemberOnceOnKey();
    void informationRunsMemberOnceOnTimeout();
    void execReturnsWhenTimedOut();

private:
    ZKbMainWidget *m_screen = nullptr;
};

void tst_ToolkitNotice::init()
{
    m_screen = new ZKbMainWidget;
    m_screen->show();
    m_screen->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_screen));
}

void tst_ToolkitNotice::informationRunsMemberOnceOnKey_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("select") << int(Qt::Key_Select);
    QTest::newRow("return") << int(Qt::Key_Return);
    QTest::newRow("enter") << int(Qt::Key_Enter);
    QTest::newRow("left soft key") << int(Qt::Key_Context1);
    QTest::newRow("F1") << int(Qt::Key_F1);
    QTest::newRow("right soft key") << int(Qt::Key_Context2);
    QTest::newRow("F2") << int(Qt::Key_F2);
}

void tst_ToolkitNotice::informationRunsMemberOnceOnKey()
{
    QFETCH(int, key);
    DismissCounter counter;
    QPointer<ZNoticeDlg> notice = inform(&counter);
    QVERIFY(notice && notice->isVisible() && notice->isModal());
    QCOMPARE(counter.count, 0); // shown without blocking the caller
    QVERIFY(QTest::qWaitForWindowActive(notice));

    // Sent to whatever has the focus, as the keypad's keys are.
    for (int other : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right})
        press(nullptr, other);
    QVERIFY(notice->isVisible());
    press(nullptr, key);
    QCOMPARE(counter.count, 1);
    // Another way out before the deferred delete must not run it again.
    if (notice) {
        QVERIFY(!notice->isVisible());
        notice->reject();
    }
    QTRY_VERIFY(notice.isNull());
    QCOMPARE(counter.count, 1);
}

void tst_ToolkitNotice::informationRunsMemberOnceOnTimeout()
{
    DismissCounter counter;
    QPointer<ZNoticeDlg> notice = inform(&counter);
    notice->setTimeout(30);
    QTRY_COMPARE_WITH_TIMEOUT(counter.count, 1, 2000);
    QTRY_VERIFY(notice.isNull());
    QCOMPARE(counter.count, 1);
}

void tst_ToolkitNotice::execReturnsWhenTimedOut()
{
    ZNoticeDlg notice(ZNoticeDlg::Error, 40, QString(), QStringLiteral("Storage full"), m_screen);
    QSignalSpy dismissed(&notice, &ZPopup::dismissed);
    QTimer guard; // ends a hung loop so that the test fails instead of stalling
    guard.setSingleShot(true);
    connect(&guard, &QTimer::timeout, &notice, [&notice] {
        notice.setResult(99);
        notice.hide();
    });
    guard.start(3000);
    QElapsedTimer clock;
    clock.start();

    QVERIFY(notice.exec() != 99);
    QVERIFY(clock.elapsed() >= 30);
    QCOMPARE(dismissed.size(), 1);
    notice.reject(); // already closed: no second report
    QCOMPARE(dismissed.size(), 1);
    QCOMPARE(notice.titleIcon(), QStringLiteral("error_pop"));
}

QTEST_MAIN(tst_ToolkitNotice)
#include "tst_toolkit_notice.moc"
