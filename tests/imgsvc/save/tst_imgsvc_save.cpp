#include "ImgSvcTestSupport.h"
#include "ImgSvcSaveCtl.h"
#include "ImgSvcSaveMgr.h"
#include "ImgSvcSaveNamePage.h"
#include "ZPopup.h"
#include "datarows.h"
#include <QDir>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

class tst_ImgSvcSave : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        writeSource(m_output, m_dir.filePath("work.png"), quadrantImage(160, 120));
        QVERIFY(QDir(m_dir.path()).mkpath("album"));
        QVERIFY(QDir(m_dir.path()).mkpath("shots.png"));
        QFile taken(m_dir.filePath("taken.png"));
        QVERIFY(taken.open(QIODevice::WriteOnly) && taken.write("x") == 1);
    }

    void saveAndSaveAs_data()
    {
        // typed: null: the offered name stays
        // name: relative to the original's folder; null: none
        // result: -1: refused, the name entry stays
        columns<QString, Keys, QString, int>({"typed", "keys", "name", "result"});
        const int left = Qt::Key_Context1, right = Qt::Key_Context2, select = Qt::Key_Select;
        QTest::newRow("save") << QString() << Keys{select, left, left, right} << QString() << 0;
        QTest::newRow("save as the offered name") << QString() << Keys{right, left, left, right} << "holiday.photo_edited.png" << 1;
        QTest::newRow("typed name, select") << "beach.png" << Keys{select, select} << "beach.png" << 1;
        QTest::newRow("typed name, return") << "beach.png" << Keys{Qt::Key_Return} << "beach.png" << 1;
        QTest::newRow("no extension gets the original's") << "beach" << Keys{left} << "beach.png" << 1;
        QTest::newRow("into a folder") << "album/x.png" << Keys{left} << "album/x.png" << 1;
        QTest::newRow("absolute name kept") << "/tmp/elsewhere.jpg" << Keys{left} << "/tmp/elsewhere.jpg" << 1;
        // Back from the entry is back to the choices, where Save still saves.
        QTest::newRow("empty name not taken, back, save") << "" << Keys{select, left, right, left} << QString() << 0;
        QTest::newRow("not a picture extension") << "notes.txt" << Keys{select} << QString() << -1;
        QTest::newRow("not a picture extension, confirmed") << "notes.txt" << Keys{select, select} << "notes.txt.png" << 1;
        QTest::newRow("upper-case extension") << "BEACH.PNG" << Keys{select} << "BEACH.PNG" << 1;
        QTest::newRow("a folder") << "album" << Keys{select, left} << QString() << -1;
        QTest::newRow("a folder, slash") << "album/" << Keys{select} << QString() << -1;
        QTest::newRow("a new folder") << "later/" << Keys{select} << QString() << -1;
        QTest::newRow("a folder named like a file") << "shots.png" << Keys{select} << QString() << -1;
    }

    void saveAndSaveAs()
    {
        auto [typed, keys, name, result] = fetch<QString, Keys, QString, int>({"typed", "keys", "name", "result"});
        ReportRecorder rec;
        auto mgr = makeMgr(&rec);
        QLineEdit *edit = mgr->namePage()->lineEdit();
        if (!typed.isNull()) {
            sendKeys(mgr.get(), {Qt::Key_Context2});
            QCOMPARE(edit->text(), QStringLiteral("holiday.photo_edited.png"));
            edit->setText(typed);
        }
        // Keys the edit does not use reach the screen, as they would from the focus.
        sendKeys(edit, keys);
        QCOMPARE(rec.delivered(), (result < 0 ? Reports() : Reports{{CTL_EVENT_SAVE, result}}));
        QCOMPARE(mgr->getSaveAsFilename(), name.isNull() ? name : QDir(m_dir.path()).absoluteFilePath(name));
        // Save as writes too: the wait shows from the moment it was chosen.
        QCOMPARE(bool(mgr->waitDialog()), result >= 0);
        QCOMPARE(mgr->isNameEntryShown() && !mgr->namePage()->note().isEmpty(), result < 0);
    }

    // Dropping the edits, and replacing an existing name, each ask first:
    // no goes back (to the entry, with the name as typed), yes goes on.
    void asksFirst_data()
    {
        QTest::addColumn<QString>("typed"); // null: drop the edits
        QTest::newRow("drop the edits") << QString();
        QTest::newRow("existing name") << "taken.png";
    }

    void asksFirst()
    {
        QFETCH(QString, typed);
        ReportRecorder rec;
        auto mgr = makeMgr(&rec);
        QLineEdit *edit = mgr->namePage()->lineEdit();
        if (!typed.isNull()) {
            sendKeys(mgr.get(), {Qt::Key_Context2});
            edit->setText(typed);
        }
        const auto ask = [&] {
            sendKeys(typed.isNull() ? static_cast<QWidget *>(mgr.get()) : edit, {Qt::Key_Select});
            return QPointer<ZPopup>(mgr->question());
        };
        QPointer<ZPopup> question = ask();
        QVERIFY(question && question->isVisible());
        QVERIFY(typed.isNull() || question->text().contains(typed));
        sendKeys(question, {Qt::Key_Context2});
        QTRY_VERIFY(!question);
        QVERIFY(rec.delivered().isEmpty());
        QCOMPARE(mgr->isNameEntryShown(), !typed.isNull());
        QVERIFY(typed.isNull() || edit->text() == typed);

        question = ask();
        QVERIFY(question);
        sendKeys(question, {Qt::Key_Select});
        // Save as and Discard are results of their own; dropping the edits
        // names no file at all (not even an empty name). Only the yes to
        // "Replace?" lets the file there be replaced.
        QCOMPARE(rec.delivered(), (Reports{{CTL_EVENT_SAVE, typed.isNull() ? 2 : 1}}));
        const QString chosen = mgr->getSaveAsFilename();
        QVERIFY2(typed.isNull() ? chosen.isNull() : chosen == m_dir.filePath(typed), qPrintable(chosen));
        QCOMPARE(mgr->replaceConfirmed(), !typed.isNull());
    }

    // Told only the edited file (as after a resize), new names are offered
    // beside it, and the page names the folder the typed name lands in.
    void folderOfEditedFile_data()
    {
        // typed: null: the offered name
        columns<QString, QString>({"typed", "folder"});
        QTest::newRow("offered") << QString() << "";
        QTest::newRow("relative sub-folder") << "album/a.png" << "album";
        QTest::newRow("absolute") << "/tmp/a.png" << "/tmp";
    }
    void folderOfEditedFile()
    {
        auto [typed, folder] = fetch<QString, QString>({"typed", "folder"});
        ReportRecorder rec;
        auto mgr = std::make_unique<ImgSvcSaveMgr>(nullptr, nullptr);
        mgr->getSaveCtl()->setOutput(&m_output);
        mgr->getSaveCtl()->setEventReceiver(&rec);
        mgr->setEditedFile(m_dir.filePath("trip.jpg"));
        mgr->show();
        QCOMPARE(mgr->shownFileName(), QStringLiteral("trip.jpg"));
        sendKeys(mgr.get(), {Qt::Key_Context2});
        QLineEdit *edit = mgr->namePage()->lineEdit();
        QCOMPARE(edit->text(), QStringLiteral("trip_edited.jpg"));
        if (!typed.isNull()) {
            edit->selectAll();
            QTest::keyClicks(edit, typed);
        }
        const QString expected = QDir::cleanPath(QDir(m_dir.path()).absoluteFilePath(folder));
        QCOMPARE(mgr->namePage()->folderShown(), expected);
        sendKeys(edit, {Qt::Key_Select});
        QCOMPARE(rec.delivered(), (Reports{{CTL_EVENT_SAVE, 1}}));
        QCOMPARE(QFileInfo(mgr->getSaveAsFilename()).absolutePath(), expected);
    }

    void waitDialogStaysUntilDeleted()
    {
        auto mgr = makeMgr(nullptr);
        mgr->setAutoDeleteWaitDlg(false);
        sendKeys(mgr.get(), {Qt::Key_Context1});
        QPointer<ZPopup> wait = mgr->waitDialog();
        QVERIFY(wait && wait->isVisible());
        sendKeys(wait, {Qt::Key_Select, Qt::Key_Context2}); // keys do not take it away
        mgr->close(false);
        QTest::qWait(20);
        QVERIFY(wait && wait->isVisible());
        mgr->deleteWaitDlg();
        QVERIFY(!wait);

        // Still up when the screen goes, it goes with it.
        mgr = makeMgr(nullptr);
        mgr->setAutoDeleteWaitDlg(false);
        sendKeys(mgr.get(), {Qt::Key_Context1});
        wait = mgr->waitDialog();
        mgr.reset();
        QVERIFY(!wait);
    }

private:
    std::unique_ptr<ImgSvcSaveMgr> makeMgr(ReportRecorder *rec)
    {
        auto mgr = std::make_unique<ImgSvcSaveMgr>(nullptr, nullptr);
        mgr->getSaveCtl()->setOutput(&m_output);
        mgr->getSaveCtl()->setEventReceiver(rec);
        mgr->setOriginalFileName(m_dir.filePath("holiday.photo.png"), QSize(160, 120));
        mgr->show();
        return mgr;
    }
    QTemporaryDir m_dir;
    MMImageSource m_output;
};

QTEST_MAIN(tst_ImgSvcSave)
#include "tst_imgsvc_save.moc"
