#include "ImgImplStatMachine.h"

#include <QtTest>

// The machine is checked for properties of its table, not against a second
// copy of it: every state is reachable and can get back to the main view,
// every pair either has one transition or gets the explicit "ignored"
// answer, and no transition carries an action that nothing acts on.

namespace {
// Drives the machine the way the main frame does: through a signal connected
// by its signature string.
class StateDriver : public QObject
{
    Q_OBJECT
public:
    explicit StateDriver(ImgImplStatMachine *machine)
    {
        QObject::connect(this, "2sigChangeStat(ImgEditorState)", machine, "1slotChangeStat(ImgEditorState)");
    }
    void set(int s) { emit sigChangeStat(ImgEditorState(s)); }
signals:
    void sigChangeStat(ImgEditorState);
};

constexpr int kStates = STAT_END;  // the live states, 0 .. STAT_SAVE
constexpr int kEvents = EVT_END;   // the events that can occur, 0 .. EVT_UNDO

QList<ImgEditorTransition> loadedRecords()
{
    QList<ImgEditorTransition> records;
    for (const ImgEditorTransition &t : IMG_EDITOR_TRANSITION_TABLE) {
        if (t.curStat == STAT_END)
            break;
        records << t;
    }
    return records;
}

// The states reachable from `from` through transitions of the table.
QSet<int> reachableFrom(int from)
{
    QSet<int> seen{from};
    QList<int> todo{from};
    while (!todo.isEmpty()) {
        const int s = todo.takeFirst();
        for (const ImgEditorTransition &t : loadedRecords()) {
            if (t.curStat == s && !seen.contains(t.nextStat)) {
                seen << t.nextStat;
                todo << t.nextStat;
            }
        }
    }
    return seen;
}
} // namespace

class TestStatMachine : public QObject
{
    Q_OBJECT

private slots:
    // It starts in the main view with every record before the end marker;
    // each record is the machine's answer for its pair, and is the only one.
    void everyRecordIsTheAnswerForItsPair()
    {
        ImgImplStatMachine machine;
        QCOMPARE(machine.currentStat(), STAT_MAIN);
        QCOMPARE(machine.transitionCount(), loadedRecords().size());
        StateDriver driver(&machine);
        QSet<QPair<int, int>> pairs;
        for (const ImgEditorTransition &t : loadedRecords()) {
            QVERIFY2(!pairs.contains({t.curStat, t.event}), "a pair occurs twice");
            pairs.insert({t.curStat, t.event});
            driver.set(t.curStat);
            QCOMPARE(int(machine.getNextStat(t.event)), t.nextStat);
            QCOMPARE(machine.getStatAction(t.event), t.action);
            QCOMPARE(int(machine.currentStat()), t.curStat); // lookups never move it
        }
    }

    void everyStateIsReachableAndLeadsBackToMain()
    {
        const QSet<int> fromMain = reachableFrom(STAT_MAIN);
        for (int s = 0; s < kStates; ++s) {
            QVERIFY2(fromMain.contains(s), qPrintable(QString("state %1 is unreachable").arg(s)));
            QVERIFY2(reachableFrom(s).contains(STAT_MAIN), qPrintable(QString("state %1 is a trap").arg(s)));
        }
        QVERIFY(!fromMain.contains(STAT_END));
    }

    // A pair without a record is ignored explicitly: both answers are the
    // defaults, from any state including values outside the table, and
    // STAT_END itself is never left.
    void everyPairIsHandledOrIgnored_data()
    {
        QTest::addColumn<int>("state");
        for (int s : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 1000})
            QTest::addRow("state %d", s) << s;
    }

    void everyPairIsHandledOrIgnored()
    {
        QFETCH(int, state);
        ImgImplStatMachine machine;
        StateDriver driver(&machine);
        driver.set(state);
        QCOMPARE(int(machine.currentStat()), state);
        int handled = 0;
        for (int e = 0; e <= EVT_END; ++e) {
            const ImgEditorState next = machine.getNextStat(e);
            const int action = machine.getStatAction(e);
            if (next == STAT_END) {
                QCOMPARE(action, int(ACT_INVALID));
            } else {
                QVERIFY(next >= 0 && next < kStates);
                QVERIFY(action >= ACT_NONE && action < ACT_INVALID);
                ++handled;
            }
        }
        // Every live state answers something, so no mode is a dead end.
        QCOMPARE(handled > 0, state >= 0 && state < kStates);
    }

    void everyEventIsHandledSomewhere()
    {
        QSet<int> events;
        for (const ImgEditorTransition &t : loadedRecords())
            events << t.event;
        for (int e = 0; e < kEvents; ++e)
            QVERIFY2(events.contains(e), qPrintable(QString("event %1 is never handled").arg(e)));
    }

    // The frame acts on the action of a finished service (result 0),
    // starting the save, and on the save screen's three answers. The other
    // actions mark the entry into a sub-editor, one marker per sub-editor.
    void noActionWithoutAHandler()
    {
        QHash<int, int> markerOfState;
        for (const ImgEditorTransition &t : loadedRecords()) {
            const QString where = QString("state %1 event %2").arg(t.curStat).arg(t.event);
            switch (t.action) {
            case ACT_NONE:
                break;
            case ACT_START_SAVE:
                QVERIFY2(t.event == EVT_SVC_DONE && t.nextStat == STAT_SAVE, qPrintable(where));
                break;
            case ACT_SAVE_TO_ORIGINAL:
            case ACT_SAVE_AS:
            case ACT_DISCARD:
                // The save screen's three answers, one each.
                QVERIFY2(t.curStat == STAT_SAVE && t.nextStat == STAT_MAIN, qPrintable(where));
                QVERIFY2(t.event == t.action - ACT_SAVE_TO_ORIGINAL, qPrintable(where));
                break;
            default:
                QVERIFY2(t.action > ACT_NONE && t.action < ACT_START_SAVE, qPrintable(where));
                QVERIFY2(t.curStat == STAT_MAIN && t.event >= EVT_ROTATE_LEFT, qPrintable(where));
                QVERIFY2(t.nextStat != STAT_MAIN && t.nextStat != STAT_SAVE, qPrintable(where));
                QVERIFY2(!markerOfState.contains(t.nextStat), qPrintable(where));
                QVERIFY2(!markerOfState.values().contains(t.action), qPrintable(where));
                markerOfState.insert(t.nextStat, t.action);
            }
        }
        QCOMPARE(markerOfState.size(), 4); // crop, resize, add elements, style
    }
};

QTEST_GUILESS_MAIN(TestStatMachine)
#include "tst_statmachine.moc"
