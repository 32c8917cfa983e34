#include "ImgImplStatMachine.h"

#include <QtTest>

// Drives the machine the way the main frame does: through a signal connected
// by its signature string.
class StateDriver : public QObject
{
    Q_OBJECT
public:
    void set(ImgEditorState s) { emit sigChangeStat(s); }
signals:
    void sigChangeStat(ImgEditorState);
};

class TestStatMachine : public QObject
{
    Q_OBJECT

    // Written from the editor's behaviour, independently of the table in the
    // code: "state event" -> {next, action}. Every other pair is absent.
    static QHash<QString, QPair<int, int>> expected()
    {
        enum { MAIN, CROP, RESIZE, ADD, STYLE, SAVE, END };
        enum { DONE, BACK, SVCSAVE, RL, RR, MH, MV, CR, RS, ST, AE, CANCEL };
        enum { NONE, A_CROP, A_RESIZE, A_STYLE, A_ADD, A_SAVE, A_TO_ORIGINAL };
        QHash<QString, QPair<int, int>> t;
        auto add = [&t](int s, int e, int n, int a) { t.insert(QString("%1 %2").arg(s).arg(e), {n, a}); };
        for (int quick : {RL, RR, MH, MV, CANCEL})
            add(MAIN, quick, MAIN, NONE);
        add(MAIN, CR, CROP, A_CROP);
        add(MAIN, RS, RESIZE, A_RESIZE);
        add(MAIN, ST, STYLE, A_STYLE);
        add(MAIN, AE, ADD, A_ADD);
        add(MAIN, DONE, SAVE, A_SAVE);
        for (int sub : {CROP, RESIZE, ADD, STYLE}) {
            add(sub, DONE, SAVE, A_SAVE);
            add(sub, BACK, MAIN, NONE);
        }
        add(STYLE, SVCSAVE, MAIN, A_TO_ORIGINAL);
        add(SAVE, DONE, MAIN, A_TO_ORIGINAL);
        add(SAVE, BACK, MAIN, NONE);
        return t;
    }

private slots:
    void everyPairFollowsTheTable_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<int>("event");
        QTest::addColumn<int>("next");
        QTest::addColumn<int>("action");
        const auto table = expected();
        for (int s = 0; s <= 6; ++s) {
            for (int e = 0; e <= 12; ++e) {
                const auto hit = table.value(QString("%1 %2").arg(s).arg(e), {6, 7});
                QTest::addRow("state %d event %d", s, e) << s << e << hit.first << hit.second;
            }
        }
    }

    void everyPairFollowsTheTable()
    {
        QFETCH(int, state);
        QFETCH(int, event);
        QFETCH(int, next);
        QFETCH(int, action);
        ImgImplStatMachine machine;
        StateDriver driver;
        QVERIFY(QObject::connect(&driver, "2sigChangeStat(ImgEditorState)", &machine,
                                 "1slotChangeStat(ImgEditorState)"));
        driver.set(ImgEditorState(state));
        QCOMPARE(int(machine.getNextStat(event)), next);
        QCOMPARE(machine.getStatAction(event), action);
        // Lookups never move the machine.
        QCOMPARE(int(machine.currentStat()), state);
    }

    void loadsTwentyOneTransitionsAndStartsInMain()
    {
        ImgImplStatMachine machine;
        QCOMPARE(machine.transitionCount(), 21);
        QCOMPARE(machine.currentStat(), STAT_MAIN);
        QVERIFY(machine.parent() == nullptr);
    }

    void valueOutsideTheTableIsStoredAndYieldsDefaults_data()
    {
        QTest::addColumn<int>("state");
        QTest::newRow("negative") << -1;
        QTest::newRow("seven") << 7;
        QTest::newRow("large") << 1000;
    }

    void valueOutsideTheTableIsStoredAndYieldsDefaults()
    {
        QFETCH(int, state);
        ImgImplStatMachine machine;
        StateDriver driver;
        QObject::connect(&driver, "2sigChangeStat(ImgEditorState)", &machine, "1slotChangeStat(ImgEditorState)");
        driver.set(ImgEditorState(state));
        QCOMPARE(int(machine.currentStat()), state);
        for (int e = 0; e <= 12; ++e) {
            QCOMPARE(machine.getNextStat(e), STAT_END);
            QCOMPARE(machine.getStatAction(e), int(ACT_INVALID));
        }
        driver.set(STAT_SAVE);
        QCOMPARE(machine.getStatAction(EVT_SVC_DONE), int(ACT_SAVE_TO_ORIGINAL));
    }
};

QTEST_GUILESS_MAIN(TestStatMachine)
#include "tst_statmachine.moc"
