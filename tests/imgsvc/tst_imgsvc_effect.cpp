#include "ImgSvcTestSupport.h"
#include "ImgSvcEffectCtl.h"
#include "ImgSvcEffectDlg.h"
#include "ImgSvcEffectMgr.h"
#include "MMEffectCommand.h"
#include "MMImageSource.h"
#include <QListWidget>
#include <QTemporaryDir>
#include <QtTest>

class tst_ImgSvcEffect : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void listsEveryStyle();
    void previewFollowsTheCursor_data();
    void previewFollowsTheCursor();
    void backKeepsTheEffect();
    void opensOnTheChosenEffect();

private:
    QTemporaryDir m_dir;
    MMImageSource m_src;
    QImage m_picture;
};

void tst_ImgSvcEffect::initTestCase()
{
    // Colours and edges, so that every style changes something.
    m_picture = quadrantImage(600, 400);
    QPainter p(&m_picture);
    p.setPen(QPen(Qt::white, 9));
    p.drawLine(0, 0, 600, 400);
    p.end();
    m_src.setFile(writeImage(m_dir.filePath("in.png"), m_picture).toStdString());
}

void tst_ImgSvcEffect::listsEveryStyle()
{
    ImgSvcEffectMgr mgr;
    mgr.getEffectCtl()->setInput(&m_src);
    mgr.launchEffectDlg();
    ImgSvcEffectDlg *dlg = mgr.dialog();
    QVERIFY(dlg && dlg->isVisible());
    QCOMPARE(dlg->mainWidgetTitle(), QStringLiteral("Style"));
    auto *list = dlg->findChild<QListWidget *>();
    QVERIFY(list);
    QCOMPARE(list->count(), MMEffectCommand::EFFECT_COUNT - 1);
    for (int id = 1; id < MMEffectCommand::EFFECT_COUNT; ++id)
        QCOMPARE(list->item(id - 1)->text(), QString::fromLatin1(MMEffectCommand::effectName(id)));
    QCOMPARE(dlg->currentEffect(), int(MMEffectCommand::EFFECT_GRAYSCALE));
    QVERIFY(dlg->previewImage().width() <= dlg->width());
}

void tst_ImgSvcEffect::previewFollowsTheCursor_data()
{
    QTest::addColumn<int>("downs");
    QTest::addColumn<int>("confirmKey");
    for (int id = 1; id < MMEffectCommand::EFFECT_COUNT; ++id)
        QTest::newRow(MMEffectCommand::effectName(id)) << id - 1 << int(id % 2 ? Qt::Key_Select : Qt::Key_Context1);
}

void tst_ImgSvcEffect::previewFollowsTheCursor()
{
    QFETCH(int, downs);
    QFETCH(int, confirmKey);
    ReportRecorder rec;
    ImgSvcEffectMgr mgr;
    mgr.getEffectCtl()->setInput(&m_src);
    mgr.getEffectCtl()->setEventReceiver(&rec);
    mgr.launchEffectDlg();
    QPointer<ImgSvcEffectDlg> dlg = mgr.dialog();
    // Each step shows another style on the same small picture.
    QImage shown = dlg->previewImage();
    QVERIFY(!shown.isNull());
    QVERIFY(shown.width() < m_picture.width());
    for (int i = 0; i < downs; ++i) {
        clickKey(dlg, Qt::Key_Down);
        QVERIFY(dlg->previewImage() != shown);
        QCOMPARE(dlg->previewImage().size(), shown.size());
        shown = dlg->previewImage();
    }
    QCOMPARE(dlg->currentEffect(), 1 + downs);
    const int id = 1 + downs;

    clickKey(dlg, confirmKey);
    QCOMPARE(mgr.getEffectCtl()->getEffect(), id);
    QCOMPARE(deliveredReports(rec), (QList<ReportRecorder::Report>{{CTL_EVENT_EFFECT, 0}}));
    QTRY_VERIFY(!dlg);
}

void tst_ImgSvcEffect::backKeepsTheEffect()
{
    ReportRecorder rec;
    ImgSvcEffectMgr mgr;
    mgr.getEffectCtl()->setInput(&m_src);
    mgr.getEffectCtl()->setEventReceiver(&rec);
    mgr.launchEffectDlg();
    QPointer<ImgSvcEffectDlg> dlg = mgr.dialog();
    clickKey(dlg, Qt::Key_Down);
    clickKey(dlg, Qt::Key_Context2);
    clickKey(dlg, Qt::Key_Context1);
    QCOMPARE(mgr.getEffectCtl()->getEffect(), 0);
    QCOMPARE(deliveredReports(rec), (QList<ReportRecorder::Report>{{CTL_EVENT_EFFECT, 1}}));
    QTRY_VERIFY(!dlg);
}

void tst_ImgSvcEffect::opensOnTheChosenEffect()
{
    ImgSvcEffectMgr mgr;
    mgr.getEffectCtl()->setInput(&m_src);
    mgr.getEffectCtl()->setEffect(MMEffectCommand::EFFECT_NEGATIVE);
    mgr.launchEffectDlg();
    ImgSvcEffectDlg *dlg = mgr.dialog();
    QCOMPARE(dlg->currentEffect(), int(MMEffectCommand::EFFECT_NEGATIVE));
    // Negative of a negative: the picture back, so the preview really is the style applied.
    QImage twice = dlg->previewImage();
    MMEffectCommand negative;
    negative.setEffect(MMEffectCommand::EFFECT_NEGATIVE);
    QCOMPARE(negative.apply(twice), 0);
    clickKey(dlg, Qt::Key_Up);
    clickKey(dlg, Qt::Key_Up);
    clickKey(dlg, Qt::Key_Up); // grayscale
    clickKey(dlg, Qt::Key_Up); // stays
    QCOMPARE(dlg->currentEffect(), int(MMEffectCommand::EFFECT_GRAYSCALE));
    const QImage gray = dlg->previewImage();
    QCOMPARE(QColor(gray.pixel(gray.width() - 5, 5)).saturation(), 0);
    QVERIFY(QColor(twice.pixel(twice.width() - 5, 5)).green() > 150); // the green quadrant again
}

QTEST_MAIN(tst_ImgSvcEffect)
#include "tst_imgsvc_effect.moc"
