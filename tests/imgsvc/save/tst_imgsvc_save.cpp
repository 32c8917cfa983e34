#include "ImgSvcTestSupport.h"
#include "ImgSvcSaveCtl.h"
#include "ImgSvcSaveMgr.h"
#include "ImgSvcSaveNamePage.h"
#include "ZPopup.h"
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
    }

    void saveAndSaveAs_data()
    {
        QTest::addColumn<QString>("typed"); // null: the offered name stays
        QTest::addColumn<Keys>("keys");
        QTest::addColumn<QString>("name"); // relative to the original's folder; null: none
        QTest::addColumn<int>("result");   // -1: refused, the name entry stays
        const int left = Qt::Key_Context1, right = Qt::Key_Context2, select = Qt::Key_Select;
        QTest::newRow("save") << QString() << Keys{select, left, left, right} << QString() << 0;
        QTest::newRow("save as the offered name") << QString() << Keys{right, left, left, right} << "holiday.photo_edited.png" << 1;
        QTest::newRow("typed name, select") << "beach.png" << Keys{select, select} << "beach.png" << 1;
        QTest::newRow("typed name, return") << "beach.png" << Keys{Qt::Key_Return} << "beach.png" << 1;
        QTest::newRow("no extension gets the original's") << "beach" << Keys{left} << "beach.png" << 1;
        QTest::newRow("into a folder") << "album/x.png" << Keys{left} << "album/x.png" << 1;
        QTest::newRow("absolute name kept") << "/tmp/elsewhere.jpg" << Keys{left} << "/tmp/elsewhere.jpg" << 1;
        QTest::newRow("empty name not taken, then backed out") << "" << Keys{select, left, right, left} << QString() << 1;
        QTest::newRow("a folder") << "album" << Keys{select, left} << QString() << -1;
        QTest::newRow("a folder, slash") << "album/" << Keys{select} << QString() << -1;
        QTest::newRow("a new folder") << "later/" << Keys{select} << QString() << -1;
        QTest::newRow("a folder named like a file") << "shots.png" << Keys{select} << QString() << -1;
    }

    void saveAndSaveAs()
    {
        QFETCH(QString, typed);
        QFETCH(Keys, keys);
        QFETCH(QString, name);
        QFETCH(int, result);
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
        QCOMPARE(bool(mgr->waitDialog()), result == 0);
        QCOMPARE(mgr->isNameEntryShown() && !mgr->namePage()->note().isEmpty(), result < 0);
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
