#include "ZGlobal.h"
#include "ZKbMainWidget.h"
#include "ZOptMenuParser.h"
#include "ZOptionsMenu.h"
#include "ZSoftKey.h"
#include <QApplication>
#include <QKeyEvent>
#include <QSignalSpy>
#include <QTest>

class Counter : public QObject
{
    Q_OBJECT
public:
    int left = 0;
    int right = 0;
public slots:
    void onLeft() { ++left; }
    void onRight() { ++right; }
};

class tst_ToolkitSoftKey : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup() { delete m_screen; }
    void disabledKeyIgnoresKeyAndClick_data();
    void disabledKeyIgnoresKeyAndClick();
    void unusedKeyReachesParent_data();
    void unusedKeyReachesParent();
    void deletedMenuIsForgotten();

private:
    enum Way { Key, Alias, Click };
    void trigger(ZSoftKey::KEY_IDX idx, Way way);

    ZKbMainWidget *m_screen = nullptr;
    ZSoftKey *m_keys = nullptr;
    Counter m_counter;
};

void tst_ToolkitSoftKey::init()
{
    m_counter.left = m_counter.right = 0;
    m_screen = new ZKbMainWidget;
    m_keys = m_screen->getSoftKey();
    m_keys->setText(ZSoftKey::LEFT, QStringLiteral("Done"));
    m_keys->setText(ZSoftKey::RIGHT, QStringLiteral("Back"));
    m_keys->setClickedSlot(ZSoftKey::LEFT, &m_counter, SLOT(onLeft()));
    m_keys->setClickedSlot(ZSoftKey::RIGHT, &m_counter, SLOT(onRight()));
    m_screen->show();
    m_screen->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_screen));
}

void tst_ToolkitSoftKey::trigger(ZSoftKey::KEY_IDX idx, Way way)
{
    const bool left = idx == ZSoftKey::LEFT;
    if (way == Click) {
        // Whatever sits at that end of the bar is what a finger would hit.
        const QRect bar = ZGlobal::getCstR();
        const QPoint at(left ? bar.left() + 4 : bar.right() - 4, bar.center().y());
        QWidget *button = m_screen->childAt(at);
        QVERIFY(button);
        QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, button->mapFrom(m_screen, at));
        return;
    }
    const Qt::Key key = way == Key ? (left ? Qt::Key_Context1 : Qt::Key_Context2) : (left ? Qt::Key_F1 : Qt::Key_F2);
    QTest::sendKeyEvent(QTest::Click, static_cast<QWidget *>(nullptr), key, QString(), Qt::NoModifier);
}

void tst_ToolkitSoftKey::disabledKeyIgnoresKeyAndClick_data()
{
    QTest::addColumn<int>("idx");
    QTest::addColumn<int>("way");
    for (int idx : {ZSoftKey::LEFT, ZSoftKey::RIGHT}) {
        const char *side = idx == ZSoftKey::LEFT ? "left" : "right";
        QTest::addRow("%s key", side) << idx << int(Key);
        QTest::addRow("%s alias", side) << idx << int(Alias);
        QTest::addRow("%s click", side) << idx << int(Click);
    }
}

void tst_ToolkitSoftKey::disabledKeyIgnoresKeyAndClick()
{
    QFETCH(int, idx);
    QFETCH(int, way);
    const auto key = ZSoftKey::KEY_IDX(idx);
    QSignalSpy leftSpy(m_keys, &ZSoftKey::leftClicked);
    QSignalSpy rightSpy(m_keys, &ZSoftKey::rightClicked);

    m_keys->setButtonEnable(key, false);
    trigger(key, Way(way));
    QCOMPARE(m_counter.left + m_counter.right, 0);
    QCOMPARE(leftSpy.size() + rightSpy.size(), 0);

    m_keys->setButtonEnable(key, true);
    trigger(key, Way(way));
    QCOMPARE(m_counter.left, key == ZSoftKey::LEFT ? 1 : 0);
    QCOMPARE(m_counter.right, key == ZSoftKey::RIGHT ? 1 : 0);
    QCOMPARE((key == ZSoftKey::LEFT ? leftSpy : rightSpy).size(), 1);
}

void tst_ToolkitSoftKey::unusedKeyReachesParent_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("disable");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("enabled left") << int(Qt::Key_Context1) << false << true;
    QTest::newRow("disabled left") << int(Qt::Key_Context1) << true << false;
    QTest::newRow("disabled F2") << int(Qt::Key_F2) << true << false;
    QTest::newRow("arrow") << int(Qt::Key_Left) << false << false;
    QTest::newRow("select") << int(Qt::Key_Select) << false << false;
}

// A key the window does not act on stays unaccepted, so that Qt passes it on.
void tst_ToolkitSoftKey::unusedKeyReachesParent()
{
    QFETCH(int, key);
    QFETCH(bool, disable);
    QFETCH(bool, accepted);
    m_keys->setButtonEnable(ZSoftKey::LEFT, !disable);
    m_keys->setButtonEnable(ZSoftKey::RIGHT, !disable);
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(m_screen, &event);
    QCOMPARE(event.isAccepted(), accepted);
}

void tst_ToolkitSoftKey::deletedMenuIsForgotten()
{
    struct Parser final : ZOptMenuParser {
        void parseMenu(QList<MenuItem> &items, const QString &) override { items << MenuItem{"Crop", 1, 0, 0}; }
    } parser;
    auto *menu = new ZOptionsMenu(ZGlobal::getHomeR(false), m_screen, nullptr, 0, ZSkinService::clsZOptionsMenu,
                                  &parser, QString());
    m_keys->setOptMenu(ZSoftKey::LEFT, menu);
    m_keys->press(ZSoftKey::LEFT);
    QVERIFY(menu->isOpen());
    QCOMPARE(m_counter.left, 0); // the menu takes the key's place

    delete menu;
    QCOMPARE(m_keys->optMenu(ZSoftKey::LEFT), nullptr);
    m_keys->press(ZSoftKey::LEFT);
    QCOMPARE(m_counter.left, 1);
}

QTEST_MAIN(tst_ToolkitSoftKey)
#include "tst_toolkit_softkey.moc"
