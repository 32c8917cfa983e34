#include "ImgSvcTestSupport.h"
#include "ImgSvcResizeCtl.h"
#include "ImgSvcResizeDlg.h"
#include "ImgSvcResizeMgr.h"
#include "MMImageSource.h"
#include "ZSoftKey.h"
#include <QTemporaryDir>
#include <QtTest>

using Sizes = QList<QSize>;

class tst_ImgSvcResize : public QObject
{
    Q_OBJECT
private slots:
    void choicesKeepAspectAndShrink_data();
    void choicesKeepAspectAndShrink();
    void chooseWithKeys_data();
    void chooseWithKeys();
    void backLeavesTargetAlone();
    void tinyPictureOffersNothing();
    void processWritesTheTargetSize();
    void processNeedsInputOutputAndTarget();
    void relaunchReplacesTheDialog();

private:
    QTemporaryDir m_dir;
};

void tst_ImgSvcResize::choicesKeepAspectAndShrink_data()
{
    QTest::addColumn<QSize>("input");
    QTest::addColumn<Sizes>("mustOffer");
    QTest::newRow("4:3 photo") << QSize(4000, 3000)
                               << Sizes{{3000, 2250}, {2000, 1500}, {1000, 750}, {1280, 960}, {640, 480}, {320, 240}};
    QTest::newRow("portrait photo") << QSize(3000, 4000) << Sizes{{960, 1280}, {480, 640}, {240, 320}};
    QTest::newRow("wide panorama") << QSize(5000, 1000) << Sizes{{1280, 256}, {640, 128}, {320, 64}};
    QTest::newRow("exactly a screen size") << QSize(640, 480) << Sizes{{480, 360}, {320, 240}, {160, 120}};
    QTest::newRow("odd size") << QSize(333, 221) << Sizes{{250, 166}, {167, 111}, {83, 55}};
    QTest::newRow("small") << QSize(4, 3) << Sizes{{3, 2}, {2, 2}, {1, 1}};
    QTest::newRow("one pixel") << QSize(1, 1) << Sizes{};
    QTest::newRow("one pixel wide") << QSize(1, 900) << Sizes{};
    QTest::newRow("no picture") << QSize(0, 0) << Sizes{};
}

void tst_ImgSvcResize::choicesKeepAspectAndShrink()
{
    QFETCH(QSize, input);
    QFETCH(Sizes, mustOffer);
    const Sizes choices = ImgSvcResizeDlg::sizeChoices(input);
    for (const QSize &s : mustOffer)
        QVERIFY2(choices.contains(s), qPrintable(QStringLiteral("%1x%2").arg(s.width()).arg(s.height())));
    if (mustOffer.isEmpty())
        QVERIFY(choices.isEmpty());
    for (int i = 0; i < choices.size(); ++i) {
        const QSize s = choices.at(i);
        QVERIFY(s.width() >= 1 && s.height() >= 1);
        QVERIFY(s.width() < input.width() && s.height() < input.height());
        // Rounding one side by half a pixel is all the aspect may lose.
        const qint64 skew = qAbs(qint64(s.width()) * input.height() - qint64(s.height()) * input.width());
        QVERIFY2(skew <= (input.width() + input.height()) / 2 + 1, qPrintable(QString::number(skew)));
        QCOMPARE(choices.count(s), 1);
        if (i > 0)
            QVERIFY(s.width() * s.height() <= choices.at(i - 1).width() * choices.at(i - 1).height());
    }
}

void tst_ImgSvcResize::chooseWithKeys_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<int>("row");
    QTest::newRow("select takes the first") << QList<int>{Qt::Key_Select} << 0;
    QTest::newRow("down down left soft key") << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_Context1} << 2;
    QTest::newRow("up stops at the top") << QList<int>{Qt::Key_Up, Qt::Key_Down, Qt::Key_Up, Qt::Key_Up, Qt::Key_Return} << 0;
    QTest::newRow("down stops at the bottom") << QList<int>(20, Qt::Key_Down) + QList<int>{Qt::Key_Select} << -1;
}

void tst_ImgSvcResize::chooseWithKeys()
{
    QFETCH(QList<int>, keys);
    QFETCH(int, row);
    ReportRecorder rec;
    ImgSvcResizeMgr mgr;
    mgr.getResizeCtl()->setEventReceiver(&rec);
    mgr.launchResizeDlg(QSize(4000, 3000));
    QPointer<ImgSvcResizeDlg> dlg = mgr.dialog();
    QVERIFY(dlg && dlg->isVisible());
    QCOMPARE(dlg->mainWidgetTitle(), QStringLiteral("Resize"));
    const Sizes choices = dlg->choices();
    for (int k : keys)
        clickKey(dlg, k);
    QCOMPARE(mgr.getResizeCtl()->getTargetSize(), row < 0 ? choices.last() : choices.at(row));
    QCOMPARE(deliveredReports(rec), (QList<ReportRecorder::Report>{{CTL_EVENT_RESIZE, 0}}));
    QTRY_VERIFY(!dlg); // closes and deletes itself
    QVERIFY(!mgr.dialog());
}

void tst_ImgSvcResize::backLeavesTargetAlone()
{
    ReportRecorder rec;
    ImgSvcResizeMgr mgr;
    mgr.getResizeCtl()->setEventReceiver(&rec);
    mgr.getResizeCtl()->setTargetSize(QSize(10, 10));
    mgr.launchResizeDlg(QSize(800, 600));
    QPointer<ImgSvcResizeDlg> dlg = mgr.dialog();
    clickKey(dlg, Qt::Key_Down);
    clickKey(dlg, Qt::Key_Context2);
    clickKey(dlg, Qt::Key_Select); // already reported
    QCOMPARE(mgr.getResizeCtl()->getTargetSize(), QSize(10, 10));
    QCOMPARE(deliveredReports(rec), (QList<ReportRecorder::Report>{{CTL_EVENT_RESIZE, 1}}));
    QTRY_VERIFY(!dlg);
}

void tst_ImgSvcResize::tinyPictureOffersNothing()
{
    ReportRecorder rec;
    ImgSvcResizeMgr mgr;
    mgr.getResizeCtl()->setEventReceiver(&rec);
    mgr.launchResizeDlg(QSize(1, 1));
    QPointer<ImgSvcResizeDlg> dlg = mgr.dialog();
    QVERIFY(dlg->choices().isEmpty());
    QVERIFY(!dlg->getSoftKey()->isButtonEnabled(ZSoftKey::LEFT));
    clickKey(dlg, Qt::Key_Select);
    clickKey(dlg, Qt::Key_Context1);
    clickKey(dlg, Qt::Key_Down);
    QVERIFY(deliveredReports(rec).isEmpty());
    QVERIFY(dlg);
    clickKey(dlg, Qt::Key_Context2);
    QCOMPARE(deliveredReports(rec), (QList<ReportRecorder::Report>{{CTL_EVENT_RESIZE, 1}}));
    QVERIFY(!mgr.getResizeCtl()->getTargetSize().isValid());
}

void tst_ImgSvcResize::processWritesTheTargetSize()
{
    MMImageSource in, out;
    in.setFile(writeImage(m_dir.filePath("in.png"), quadrantImage(400, 300)).toStdString());
    out.setFile(m_dir.filePath("preview.png").toStdString());
    ImgSvcResizeCtl ctl; // standalone, as the editor makes its preview
    ctl.setInput(&in);
    ctl.setOutput(&out);
    ctl.setTargetSize(QSize(200, 150));
    QCOMPARE(ctl.process(), 0);
    const QImage result(m_dir.filePath("preview.png"));
    QCOMPARE(result.size(), QSize(200, 150));
    QCOMPARE(QColor(result.pixel(10, 10)), QColor(220, 30, 30));
    QCOMPARE(QColor(result.pixel(190, 140)), QColor(240, 240, 40));
}

void tst_ImgSvcResize::processNeedsInputOutputAndTarget()
{
    MMImageSource in, out;
    in.setFile(writeImage(m_dir.filePath("in2.png"), quadrantImage(40, 30)).toStdString());
    out.setFile(m_dir.filePath("never.png").toStdString());
    ImgSvcResizeCtl ctl;
    ctl.setTargetSize(QSize(20, 15));
    QCOMPARE(ctl.process(), -1);
    ctl.setInput(&in);
    QCOMPARE(ctl.process(), -1);
    ctl.setOutput(&out);
    ctl.setTargetSize(QSize());
    QCOMPARE(ctl.process(), -1);
    QVERIFY(!QFile::exists(m_dir.filePath("never.png")));
}

void tst_ImgSvcResize::relaunchReplacesTheDialog()
{
    ImgSvcResizeMgr mgr;
    mgr.launchResizeDlg(QSize(800, 600));
    QPointer<ImgSvcResizeDlg> first = mgr.dialog();
    mgr.launchResizeDlg(QSize(400, 300));
    QVERIFY(!first);
    QVERIFY(mgr.dialog()->choices().contains(QSize(200, 150)));
    QPointer<ImgSvcResizeDlg> second = mgr.dialog();
    {
        ImgSvcResizeMgr other;
        other.launchResizeDlg(QSize(800, 600));
        second = other.dialog();
    }
    QVERIFY(!second); // never outlives the control it points at
}

QTEST_MAIN(tst_ImgSvcResize)
#include "tst_imgsvc_resize.moc"
