#include "ImgSvcTestSupport.h"
#include "ImgSvcSaveCtl.h"
#include "ImgSvcSaveMgr.h"
#include "ImgSvcSaveNamePage.h"
#include "MMImageSource.h"
#include "ZPopup.h"
#include "ZSoftKey.h"
#include <QDir>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

class tst_ImgSvcSave : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void showsOutputNameAndSize();
    void refreshReloadsTheOutput();
    void saveShowsWaitDialogAndReports();
    void waitDialogLifetime_data();
    void waitDialogLifetime();
    void saveAsNames_data();
    void saveAsNames();
    void backingOutOfTheNameGivesNullName();

private:
    std::unique_ptr<ImgSvcSaveMgr> makeMgr(ReportRecorder *rec);
    QTemporaryDir m_dir;
    QString m_original;
    MMImageSource m_output;
};

void tst_ImgSvcSave::initTestCase()
{
    m_original = writeImage(m_dir.filePath("holiday.photo.png"), quadrantImage(320, 240));
    m_output.setFile(writeImage(m_dir.filePath("work.png"), quadrantImage(160, 120).mirrored(true, false)).toStdString());
}

std::unique_ptr<ImgSvcSaveMgr> tst_ImgSvcSave::makeMgr(ReportRecorder *rec)
{
    auto mgr = std::make_unique<ImgSvcSaveMgr>(nullptr, nullptr);
    mgr->getSaveCtl()->setOutput(&m_output);
    mgr->getSaveCtl()->setEventReceiver(rec);
    mgr->setOriginalFileName(m_original, QSize(160, 120));
    return mgr;
}

void tst_ImgSvcSave::showsOutputNameAndSize()
{
    ReportRecorder rec;
    auto mgr = makeMgr(&rec);
    mgr->show();
    // The output (mirrored), not the original: green on the left.
    const QImage shown = mgr->shownImage();
    QVERIFY(!shown.isNull());
    QVERIFY(QColor(shown.pixel(2, 2)).green() > 150 && QColor(shown.pixel(2, 2)).red() < 100);
    QCOMPARE(mgr->shownFileName(), QStringLiteral("holiday.photo.png"));
    QCOMPARE(mgr->shownSizeText(), QStringLiteral("New size: 160 x 120"));
    QCOMPARE(mgr->getSoftKey()->text(ZSoftKey::LEFT), QStringLiteral("Save"));
    QCOMPARE(mgr->getSoftKey()->text(ZSoftKey::RIGHT), QStringLiteral("Save as"));

    mgr->setOriginalFileName(m_original, QSize());
    QVERIFY(mgr->shownSizeText().isEmpty());
    clickKey(mgr.get(), Qt::Key_Select); // not a way to save
    QVERIFY(deliveredReports(rec).isEmpty());
}

void tst_ImgSvcSave::refreshReloadsTheOutput()
{
    ReportRecorder rec;
    auto mgr = makeMgr(&rec);
    MMImageSource other;
    other.setFile(writeImage(m_dir.filePath("other.png"), quadrantImage(90, 30)).toStdString());
    mgr->show();
    mgr->getSaveCtl()->setOutput(&other);
    mgr->getSaveCtl()->refresh(true);
    QCOMPARE(mgr->shownImage().size(), QSize(90, 30));
}

void tst_ImgSvcSave::saveShowsWaitDialogAndReports()
{
    ReportRecorder rec;
    auto mgr = makeMgr(&rec);
    mgr->show();
    QVERIFY(!mgr->waitDialog());
    clickKey(mgr.get(), Qt::Key_Context1);
    QPointer<ZPopup> wait = mgr->waitDialog();
    QVERIFY(wait && wait->isVisible());
    QCOMPARE(wait->text(), QStringLiteral("Saving..."));
    clickKey(wait, Qt::Key_Select); // keys do not take it away
    clickKey(wait, Qt::Key_Context2);
    QTest::qWait(50);
    QVERIFY(wait && wait->isVisible());
    clickKey(mgr.get(), Qt::Key_Context1);
    clickKey(mgr.get(), Qt::Key_Context2);
    QCOMPARE(deliveredReports(rec), (QList<ReportRecorder::Report>{{CTL_EVENT_SAVE, 0}}));
    QVERIFY(mgr->getSaveAsFilename().isNull());
    mgr->deleteWaitDlg();
    QVERIFY(!wait);
    mgr->deleteWaitDlg(); // twice is harmless
}

void tst_ImgSvcSave::waitDialogLifetime_data()
{
    QTest::addColumn<bool>("autoDelete");
    QTest::newRow("auto-delete") << true;
    QTest::newRow("kept until asked") << false;
}

void tst_ImgSvcSave::waitDialogLifetime()
{
    QFETCH(bool, autoDelete);
    ReportRecorder rec;
    auto mgr = makeMgr(&rec);
    mgr->setAutoDeleteWaitDlg(autoDelete);
    mgr->show();
    clickKey(mgr.get(), Qt::Key_Context1);
    QPointer<ZPopup> wait = mgr->waitDialog();
    QVERIFY(wait);
    mgr->close(false);
    QVERIFY(!mgr->isVisible());
    QCOMPARE(bool(wait), !autoDelete);
    if (!autoDelete) {
        QVERIFY(wait->isVisible());
        mgr->deleteWaitDlg();
        QVERIFY(!wait);
    }

    // Whatever the setting, the dialog goes with the screen.
    auto again = makeMgr(&rec);
    again->setAutoDeleteWaitDlg(autoDelete);
    again->show();
    clickKey(again.get(), Qt::Key_F1);
    wait = again->waitDialog();
    QVERIFY(wait);
    again.reset();
    QVERIFY(!wait);
}

void tst_ImgSvcSave::saveAsNames_data()
{
    QTest::addColumn<QString>("typed"); // empty: take the offered name
    QTest::addColumn<int>("acceptKey");
    QTest::addColumn<QString>("expected"); // relative to the original's folder
    QTest::newRow("offered name") << QString() << int(Qt::Key_Context1) << "holiday.photo_edited.png";
    QTest::newRow("typed name, select") << "beach.png" << int(Qt::Key_Select) << "beach.png";
    QTest::newRow("typed name, return") << "beach.png" << int(Qt::Key_Return) << "beach.png";
    QTest::newRow("sub folder") << "sub/x.png" << int(Qt::Key_Context1) << "sub/x.png";
    QTest::newRow("no extension gets the original's") << "beach" << int(Qt::Key_Context1) << "beach.png";
    QTest::newRow("absolute name kept") << "/tmp/elsewhere.jpg" << int(Qt::Key_Context1) << "/tmp/elsewhere.jpg";
}

void tst_ImgSvcSave::saveAsNames()
{
    QFETCH(QString, typed);
    QFETCH(int, acceptKey);
    QFETCH(QString, expected);
    ReportRecorder rec;
    auto mgr = makeMgr(&rec);
    mgr->show();
    clickKey(mgr.get(), Qt::Key_Context2);
    QVERIFY(mgr->isNameEntryShown());
    QCOMPARE(mgr->mainWidgetTitle(), QStringLiteral("Save as"));
    QLineEdit *edit = mgr->namePage()->lineEdit();
    QCOMPARE(edit->text(), QStringLiteral("holiday.photo_edited.png"));
    QVERIFY(deliveredReports(rec).isEmpty()); // nothing decided yet

    if (!typed.isEmpty()) {
        edit->selectAll();
        QTest::keyClicks(edit, typed);
    }
    // Keys the edit does not use reach the screen, as they would from the focus.
    clickKey(edit, acceptKey);
    QCOMPARE(mgr->getSaveAsFilename(), QDir(m_dir.path()).absoluteFilePath(expected));
    QCOMPARE(deliveredReports(rec), (QList<ReportRecorder::Report>{{CTL_EVENT_SAVE, 1}}));
    QVERIFY(!mgr->waitDialog());
    clickKey(edit, acceptKey);
    clickKey(mgr.get(), Qt::Key_Context2);
    QCOMPARE(deliveredReports(rec).size(), 1);
}

void tst_ImgSvcSave::backingOutOfTheNameGivesNullName()
{
    ReportRecorder rec;
    auto mgr = makeMgr(&rec);
    mgr->show();
    clickKey(mgr.get(), Qt::Key_Context2);
    QLineEdit *edit = mgr->namePage()->lineEdit();
    edit->clear();
    clickKey(edit, Qt::Key_Select); // an empty name is not taken
    QVERIFY(deliveredReports(rec).isEmpty());
    QTest::keyClicks(edit, "half");
    clickKey(edit, Qt::Key_Context2);
    QVERIFY(mgr->getSaveAsFilename().isNull());
    QCOMPARE(deliveredReports(rec), (QList<ReportRecorder::Report>{{CTL_EVENT_SAVE, 1}}));
}

QTEST_MAIN(tst_ImgSvcSave)
#include "tst_imgsvc_save.moc"
