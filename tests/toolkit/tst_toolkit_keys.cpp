#include "ZGlobal.h"
#include "ZKbMainWidget.h"
#include "ZNoticeDlg.h"
#include "ZOptMenuParser.h"
#include "ZOptionsMenu.h"
#include "ZSoftKey.h"
#include "datarows.h"
#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QTest>
#include <QTimer>

// Everything here is driven the way a handset is: keys go to whatever has the
// focus. (keyClick() cannot send Context1 and the like: it asserts on keys
// without a character.)
namespace {
enum ItemId { Rotate = 10, Crop = 20, Resize = 30, Style = 40 };

struct FixedParser final : ZOptMenuParser {
    void parseMenu(QList<MenuItem> &items, const QString &) override
    {
        items << MenuItem{"Rotate", Rotate, 0, 0} << MenuItem{"-", 0, 0, -1} << MenuItem{"Crop", Crop, 0, 0}
              << MenuItem{"Resize", Resize, 0, 0} << MenuItem{"Style", Style, 0, 0};
    }
};

void press(int key)
{
    QTest::sendKeyEvent(QTest::Click, static_cast<QWidget *>(nullptr), Qt::Key(key), QString(), Qt::NoModifier);
}
} // namespace

class Recorder : public QObject
{
    Q_OBJECT
public:
    QStringList calls;
public slots:
    void onRotate() { calls << "rotate"; }
    void onResize() { calls << "resize"; }
    void onStyle() { calls << "style"; }
    void onBack() { calls << "back"; }
    void onDismissed() { calls << "dismissed"; }
};

// Records the keys that get through to the window itself.
class Screen : public ZKbMainWidget
{
public:
    QList<int> keysSeen;
    void keyPressEvent(QKeyEvent *event) override
    {
        keysSeen << event->key();
        ZKbMainWidget::keyPressEvent(event);
    }
};

class tst_ToolkitKeys : public QObject
{
    Q_OBJECT
private slots:
    // Options menu on the left soft key, "Back" on the right, Crop hidden.
    void init()
    {
        m_rec.calls.clear();
        m_screen = new Screen;
        m_keys = m_screen->getSoftKey();
        m_keys->setText(ZSoftKey::LEFT, QStringLiteral("Options"));
        m_keys->setText(ZSoftKey::RIGHT, QStringLiteral("Back"));
        m_keys->setClickedSlot(ZSoftKey::RIGHT, &m_rec, SLOT(onBack()));
        {
            FixedParser parser; // gone right after construction, as in the editor
            m_menu = new ZOptionsMenu(ZGlobal::getHomeR(false), m_screen, "menu", 0, ZSkinService::clsZOptionsMenu,
                                      &parser, QStringLiteral("main"));
        }
        m_menu->connectItem(Rotate, &m_rec, SLOT(onRotate()));
        m_menu->connectItem(Resize, &m_rec, SLOT(onResize()));
        m_menu->connectItem(Style, &m_rec, SLOT(onStyle()));
        m_menu->setItemHide(Crop, true);
        m_keys->setOptMenu(ZSoftKey::LEFT, m_menu);
        m_screen->show();
        m_screen->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_screen));
    }
    void cleanup() { delete m_screen; }

    void menuKeysRunOneItem_data()
    {
        // openKey: 0: a click on the left soft key
        columns<int, QList<int>, int, QString>({"openKey", "moves", "selectKey", "expected"});
        const int down = Qt::Key_Down, up = Qt::Key_Up, open = Qt::Key_Context1, select = Qt::Key_Select;
        QTest::newRow("first item") << open << QList<int>() << select << "rotate";
        QTest::newRow("down skips separator, hidden") << open << QList<int>{down} << select << "resize";
        QTest::newRow("down wraps") << open << QList<int>{down, down, down} << select << "rotate";
        QTest::newRow("up wraps") << open << QList<int>{up} << select << "style";
        QTest::newRow("F1, Return") << int(Qt::Key_F1) << QList<int>{down, down} << int(Qt::Key_Return) << "style";
        QTest::newRow("left soft key selects") << open << QList<int>{down} << open << "resize";
        QTest::newRow("F1 selects") << open << QList<int>{down} << int(Qt::Key_F1) << "resize";
        // A click on the bar does what its label says.
        QTest::newRow("left soft key clicked, twice") << 0 << QList<int>() << 0 << "rotate";
    }

    void menuKeysRunOneItem()
    {
        auto [openKey, moves, selectKey, expected] = fetch<int, QList<int>, int, QString>({"openKey", "moves", "selectKey", "expected"});
        const auto hit = [this](int key) { key ? press(key) : m_keys->press(ZSoftKey::LEFT); };
        hit(openKey);
        QVERIFY(m_menu->isOpen() && m_menu->isVisible());
        // The bar says what the keys do while the menu has them.
        QCOMPARE(m_keys->text(ZSoftKey::LEFT), QStringLiteral("Select"));
        QCOMPARE(m_keys->text(ZSoftKey::RIGHT), QStringLiteral("Back"));
        for (int key : moves)
            press(key);
        hit(selectKey);
        QVERIFY(!m_menu->isOpen() && !m_menu->isVisible());
        QCOMPARE(m_rec.calls, QStringList{expected});
        QCOMPARE(QApplication::focusWidget(), m_screen);
        QCOMPARE(m_keys->text(ZSoftKey::LEFT), QStringLiteral("Options"));
    }

    void softKeysCloseMenuWithoutActing_data()
    {
        QTest::addColumn<int>("closeKey"); // 0: a click on the right soft key
        QTest::newRow("right soft key") << int(Qt::Key_Context2);
        QTest::newRow("F2") << int(Qt::Key_F2);
        QTest::newRow("right soft key clicked") << 0;
    }

    // While the menu is open no key reaches the window, and closing it runs
    // neither an item nor the window's "Back"; afterwards the keys are the window's.
    void softKeysCloseMenuWithoutActing()
    {
        QFETCH(int, closeKey);
        press(Qt::Key_Context1);
        m_screen->keysSeen.clear();
        for (int key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Down})
            press(key);
        closeKey ? press(closeKey) : m_keys->press(ZSoftKey::RIGHT);
        QVERIFY(!m_menu->isOpen());
        QVERIFY(m_screen->keysSeen.isEmpty() && m_rec.calls.isEmpty());
        press(Qt::Key_Left);
        press(Qt::Key_Context2);
        QCOMPARE(m_screen->keysSeen, QList<int>({Qt::Key_Left, Qt::Key_Context2}));
        QCOMPARE(m_rec.calls, QStringList{"back"});
    }

    void disabledSoftKeyIgnoresKeyAndClick_data()
    {
        // key: 0: click the button
        columns<int, int>({"idx", "key"});
        QTest::newRow("left key") << int(ZSoftKey::LEFT) << int(Qt::Key_Context1);
        QTest::newRow("left click") << int(ZSoftKey::LEFT) << 0;
        QTest::newRow("right key") << int(ZSoftKey::RIGHT) << int(Qt::Key_Context2);
        QTest::newRow("right click") << int(ZSoftKey::RIGHT) << 0;
    }

    // The left key opens the menu, the right one runs "Back" -- only when enabled.
    void disabledSoftKeyIgnoresKeyAndClick()
    {
        auto [idx, key] = fetch<int, int>({"idx", "key"});
        const bool left = idx == ZSoftKey::LEFT;
        const auto trigger = [&, key = key] {
            if (key)
                return press(key);
            // Whatever sits at that end of the bar is what a finger would hit.
            const QRect bar = ZGlobal::getCstR();
            const QPoint at(left ? bar.left() + 4 : bar.right() - 4, bar.center().y());
            QWidget *button = m_screen->childAt(at);
            QVERIFY(button);
            QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, button->mapFrom(m_screen, at));
        };
        m_keys->setButtonEnable(ZSoftKey::KEY_IDX(idx), false);
        trigger();
        QVERIFY(!m_menu->isOpen() && m_rec.calls.isEmpty());

        m_keys->setButtonEnable(ZSoftKey::KEY_IDX(idx), true);
        trigger();
        QCOMPARE(m_menu->isOpen(), left);
        QCOMPARE(m_rec.calls, left ? QStringList() : QStringList{"back"});
    }

    void noticeRunsMemberOnce_data()
    {
        QTest::addColumn<int>("key"); // 0: let it time out; -1: two ways out at once
        QTest::newRow("select") << int(Qt::Key_Select);
        QTest::newRow("left soft key") << int(Qt::Key_Context1);
        QTest::newRow("right soft key") << int(Qt::Key_Context2);
        QTest::newRow("time-out") << 0;
        QTest::newRow("accepted, then rejected") << -1;
    }

    void noticeRunsMemberOnce()
    {
        QFETCH(int, key);
        QPointer<ZNoticeDlg> notice =
            ZNoticeDlg::information(QStringLiteral("Memory full"), {}, {}, {}, &m_rec, SLOT(onDismissed()));
        QVERIFY(notice && notice->isVisible() && notice->isModal());
        QVERIFY(m_rec.calls.isEmpty()); // shown without blocking the caller
        if (key > 0) {
            QVERIFY(QTest::qWaitForWindowActive(notice));
            m_screen->keysSeen.clear();
            for (int other : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right})
                press(other);
            QVERIFY(notice->isVisible());
            press(key);
            QCOMPARE(m_rec.calls, QStringList{"dismissed"});
            QVERIFY(m_screen->keysSeen.isEmpty() && !m_menu->isOpen());
        } else if (key < 0) { // before the deferred delete
            notice->accept();
            notice->reject();
        } else {
            notice->setTimeout(30);
        }
        QTRY_VERIFY(notice.isNull());
        QCOMPARE(m_rec.calls, QStringList{"dismissed"});
    }

    // As the editor shows its "memory full" notice: a time-out given up front, exec().
    void noticeExecEndsOnTimeOut()
    {
        ZNoticeDlg notice(ZNoticeDlg::Error, 40, QString(), QStringLiteral("Storage full"), m_screen);
        // A guard that ends a hung loop, so that the test fails instead of stalling.
        QTimer::singleShot(3000, &notice, [&notice] { notice.setResult(99); notice.hide(); });
        QVERIFY(notice.exec() != 99);
    }

private:
    Screen *m_screen = nullptr;
    ZSoftKey *m_keys = nullptr;
    ZOptionsMenu *m_menu = nullptr;
    Recorder m_rec;
};

QTEST_MAIN(tst_ToolkitKeys)
#include "tst_toolkit_keys.moc"
