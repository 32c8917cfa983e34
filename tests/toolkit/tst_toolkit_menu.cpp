#include "ZGlobal.h"
#include "ZKbMainWidget.h"
#include "ZOptMenuParser.h"
#include "ZOptionsMenu.h"
#include "ZSoftKey.h"
#include <QApplication>
#include <QSignalSpy>
#include <QTest>

namespace {
enum ItemId { Rotate = 10, Crop = 20, Resize = 30, Style = 40 };

class FixedParser final : public ZOptMenuParser
{
public:
    void parseMenu(QList<MenuItem> &items, const QString &menuName) override
    {
        askedFor = menuName;
        items << MenuItem{QStringLiteral("Rotate"), Rotate, 0, 0} << MenuItem{QStringLiteral("-"), 0, 0, -1}
              << MenuItem{QStringLiteral("Crop"), Crop, 7, 0} << MenuItem{QStringLiteral("Resize"), Resize, 0, 0}
              << MenuItem{QStringLiteral("Style"), Style, 0, 0};
    }
    QString askedFor;
};

// Keys go where a keypad's would: to whatever has the focus. (keyClick()
// cannot send them: it asserts on keys without an ASCII code, like Context1.)
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
    void onRotate() { calls << QStringLiteral("rotate"); }
    void onCrop() { calls << QStringLiteral("crop"); }
    void onResize() { calls << QStringLiteral("resize"); }
    void onStyle() { calls << QStringLiteral("style"); }
    void onBack() { calls << QStringLiteral("back"); }
};

// Records the keys that get through to the window itself.
class Screen : public ZKbMainWidget
{
public:
    QList<int> keysSeen;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        keysSeen << event->key();
        ZKbMainWidget::keyPressEvent(event);
    }
};

class tst_ToolkitMenu : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void builtFromParser();
    void keysChooseItem_data();
    void keysChooseItem();
    void softKeysCloseWithoutActing_data();
    void softKeysCloseWithoutActing();
    void openMenuKeepsKeysFromWindow();
    void hidingTheCurrentItemMovesOn();

private:
    Screen *m_screen = nullptr;
    ZOptionsMenu *m_menu = nullptr;
    Recorder m_recorder;
    QString m_askedFor;
};

void tst_ToolkitMenu::init()
{
    m_recorder.calls.clear();
    m_screen = new Screen;
    ZSoftKey *keys = m_screen->getSoftKey();
    keys->setText(ZSoftKey::LEFT, QStringLiteral("Options"));
    keys->setText(ZSoftKey::RIGHT, QStringLiteral("Back"));
    keys->setClickedSlot(ZSoftKey::RIGHT, &m_recorder, SLOT(onBack()));
    {
        // Gone right after construction, as in the editor.
        FixedParser parser;
        m_menu = new ZOptionsMenu(ZGlobal::getHomeR(false), m_screen, "menu", 0, ZSkinService::clsZOptionsMenu,
                                  &parser, QStringLiteral("main"));
        m_askedFor = parser.askedFor;
    }
    m_menu->connectItem(Rotate, &m_recorder, SLOT(onRotate()));
    m_menu->connectItem(Crop, &m_recorder, SLOT(onCrop()));
    m_menu->connectItem(Resize, &m_recorder, SLOT(onResize()));
    m_menu->connectItem(Style, &m_recorder, SLOT(onStyle()));
    m_menu->setItemHide(Crop, true);
    keys->setOptMenu(ZSoftKey::LEFT, m_menu);

    m_screen->show();
    m_screen->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_screen));
}

void tst_ToolkitMenu::cleanup()
{
    delete m_screen;
}

void tst_ToolkitMenu::builtFromParser()
{
    QCOMPARE(m_askedFor, QStringLiteral("main"));
    const QList<MenuItem> records = m_menu->getAllItemIds();
    QCOMPARE(records.size(), 5);
    QCOMPARE(records[2].label, QStringLiteral("Crop"));
    QCOMPARE(records[2].attributes, quint32(7));
    QCOMPARE(m_menu->visibleItemIds(), QList<int>({Rotate, Resize, Style}));
    QVERIFY(!m_menu->connectItem(99, &m_recorder, SLOT(onRotate())));
}

void tst_ToolkitMenu::keysChooseItem_data()
{
    QTest::addColumn<int>("openKey");
    QTest::addColumn<QList<int>>("moves");
    QTest::addColumn<int>("selectKey");
    QTest::addColumn<int>("expectedId");
    QTest::addColumn<QString>("expectedCall");
    const int down = Qt::Key_Down;
    const int up = Qt::Key_Up;
    const int open = Qt::Key_Context1;
    const int select = Qt::Key_Select;
    QTest::newRow("first item") << open << QList<int>() << select << int(Rotate) << "rotate";
    QTest::newRow("down skips hidden") << open << QList<int>{down} << select << int(Resize) << "resize";
    QTest::newRow("down wraps") << open << QList<int>{down, down, down} << select << int(Rotate) << "rotate";
    QTest::newRow("up wraps") << open << QList<int>{up} << select << int(Style) << "style";
    QTest::newRow("F1, Return") << int(Qt::Key_F1) << QList<int>{down, down} << int(Qt::Key_Return) << int(Style)
                                << "style";
    QTest::newRow("Enter") << open << QList<int>{down, up, down} << int(Qt::Key_Enter) << int(Resize) << "resize";
}

void tst_ToolkitMenu::keysChooseItem()
{
    QFETCH(int, openKey);
    QFETCH(QList<int>, moves);
    QFETCH(int, selectKey);
    QFETCH(int, expectedId);
    QFETCH(QString, expectedCall);
    QSignalSpy activated(m_menu, &ZOptionsMenu::activated);

    press(openKey);
    QVERIFY(m_menu->isOpen() && m_menu->isVisible());
    QCOMPARE(QApplication::focusWidget(), m_menu);
    for (int key : moves)
        press(key);
    press(selectKey);

    QVERIFY(!m_menu->isOpen() && !m_menu->isVisible());
    QCOMPARE(m_recorder.calls, QStringList{expectedCall});
    QCOMPARE(activated.size(), 1);
    QCOMPARE(activated.first().first().toInt(), expectedId);
    QCOMPARE(QApplication::focusWidget(), m_screen);
}

void tst_ToolkitMenu::softKeysCloseWithoutActing_data()
{
    QTest::addColumn<int>("closeKey");
    QTest::newRow("left soft key again") << int(Qt::Key_Context1);
    QTest::newRow("right soft key") << int(Qt::Key_Context2);
    QTest::newRow("F1") << int(Qt::Key_F1);
    QTest::newRow("F2") << int(Qt::Key_F2);
}

void tst_ToolkitMenu::softKeysCloseWithoutActing()
{
    QFETCH(int, closeKey);
    press(Qt::Key_Context1);
    press(Qt::Key_Down);
    press(closeKey);
    QVERIFY(!m_menu->isOpen());
    QVERIFY(m_recorder.calls.isEmpty()); // neither an item nor the window's "Back"
    QCOMPARE(QApplication::focusWidget(), m_screen);

    press(Qt::Key_Context2); // closed, the soft keys are the window's again
    QCOMPARE(m_recorder.calls, QStringList{QStringLiteral("back")});
}

void tst_ToolkitMenu::openMenuKeepsKeysFromWindow()
{
    press(Qt::Key_Context1);
    m_screen->keysSeen.clear();
    for (int key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Down})
        press(key);
    QVERIFY(m_screen->keysSeen.isEmpty());
    press(Qt::Key_Context2);
    press(Qt::Key_Left);
    QCOMPARE(m_screen->keysSeen, QList<int>{Qt::Key_Left});
}

void tst_ToolkitMenu::hidingTheCurrentItemMovesOn()
{
    press(Qt::Key_Context1);
    press(Qt::Key_Down);
    m_menu->setItemHide(Resize, true);
    QCOMPARE(m_menu->currentItemId(), int(Style));
    m_menu->setItemHide(Rotate, true);
    m_menu->setItemHide(Style, true);
    // Nothing left to choose: the menu closes and does not open again.
    QCOMPARE(m_menu->currentItemId(), -1);
    QVERIFY(!m_menu->isOpen());
    press(Qt::Key_Context1);
    QVERIFY(!m_menu->isOpen());
}

QTEST_MAIN(tst_ToolkitMenu)
#include "tst_toolkit_menu.moc"
