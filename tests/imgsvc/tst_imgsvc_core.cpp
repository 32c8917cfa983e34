#include "ImgSvcTestSupport.h"
#include "ImgSvcAction.h"
#include "ImgSvcCropCtl.h"
#include "ImgSvcFitMapper.h"
#include "ImgSvcKeys.h"
#include "ImgSvcLayout.h"
#include "ImgSvcLayoutWidget.h"
#include "MMImageSource.h"
#include "MMRotateCommand.h"
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

class tst_ImgSvcCore : public QObject
{
    Q_OBJECT
private slots:
    void postResultReachesReceiverOnce();
    void postResultWithoutOrAfterReceiverIsHarmless();
    void inputSizeComesFromHeader();
    void refreshAnnouncesReload();
    void actionReplaysCommands();
    void repeatStep_data();
    void repeatStep();
    void mapperFitsAndCentres_data();
    void mapperFitsAndCentres();
    void mapperRoundTripsPixels();
    void layoutTableAndPadding();

private:
    QTemporaryDir m_dir;
};

void tst_ImgSvcCore::postResultReachesReceiverOnce()
{
    ReportRecorder rec;
    ImgSvcCropCtl ctl;
    ctl.setEventReceiver(&rec);
    ctl.postResult(1);
    QVERIFY(rec.reports.isEmpty()); // posted, not sent
    QCOMPARE(deliveredReports(rec), (QList<ReportRecorder::Report>{{CTL_EVENT_CROP, 1}}));
}

void tst_ImgSvcCore::postResultWithoutOrAfterReceiverIsHarmless()
{
    ImgSvcCropCtl ctl;
    ctl.postResult(0);
    auto *rec = new ReportRecorder;
    ctl.setEventReceiver(rec);
    delete rec;
    QVERIFY(!ctl.getEventReceiver());
    ctl.postResult(0);
    QCoreApplication::sendPostedEvents();
}

void tst_ImgSvcCore::inputSizeComesFromHeader()
{
    ImgSvcCropCtl ctl;
    QCOMPARE(ctl.getInputSize(), QSize(0, 0));
    MMImageSource missing;
    missing.setFile(m_dir.filePath("missing.png").toStdString());
    ctl.setInput(&missing);
    QCOMPARE(ctl.getInputSize(), QSize(0, 0));
    MMImageSource src;
    src.setFile(writeImage(m_dir.filePath("in.png"), quadrantImage(37, 21)).toStdString());
    ctl.setInput(&src);
    QCOMPARE(ctl.getInputSize(), QSize(37, 21));
}

void tst_ImgSvcCore::refreshAnnouncesReload()
{
    ImgSvcCropCtl ctl;
    QSignalSpy spy(&ctl, &ImgSvcCtlInterface::inputChanged);
    ctl.refresh(true);
    QCOMPARE(spy.count(), 1);
}

void tst_ImgSvcCore::actionReplaysCommands()
{
    MMImageSource src, dst;
    src.setFile(writeImage(m_dir.filePath("a.png"), quadrantImage(40, 20)).toStdString());
    dst.setFile(m_dir.filePath("b.png").toStdString());
    MMRotateCommand rotate;
    rotate.setDegree(90);
    std::list<MMCommand *> commands{&rotate};
    QCOMPARE(ImgSvcAction::processCmdList(src, dst, commands), 0);
    QCOMPARE(QImage(m_dir.filePath("b.png")).size(), QSize(20, 40));

    MMImageSource nowhere;
    nowhere.setFile(m_dir.filePath("none.png").toStdString());
    QCOMPARE(ImgSvcAction::processCmdList(nowhere, dst, commands), -1);
}

void tst_ImgSvcCore::repeatStep_data()
{
    QTest::addColumn<int>("small");
    QTest::addColumn<int>("large");
    QTest::addColumn<int>("repeats");
    QTest::addColumn<int>("step");
    QTest::newRow("first press") << 1 << 15 << 0 << 1;
    QTest::newRow("doubles") << 1 << 15 << 3 << 8;
    QTest::newRow("capped") << 1 << 15 << 4 << 15;
    QTest::newRow("long hold does not overflow") << 3 << 40 << 100 << 40;
    QTest::newRow("nonsense steps still move") << 0 << -5 << 0 << 1;
}

void tst_ImgSvcCore::repeatStep()
{
    QFETCH(int, small);
    QFETCH(int, large);
    QFETCH(int, repeats);
    QFETCH(int, step);
    QCOMPARE(ImgSvcKeys::repeatStep(small, large, repeats), step);
}

void tst_ImgSvcCore::mapperFitsAndCentres_data()
{
    QTest::addColumn<QSize>("image");
    QTest::addColumn<QRect>("area");
    QTest::addColumn<QRectF>("display");
    QTest::newRow("landscape in portrait") << QSize(2000, 1000) << QRect(0, 0, 240, 320) << QRectF(0, 100, 240, 120);
    QTest::newRow("portrait in portrait") << QSize(300, 800) << QRect(0, 0, 240, 320) << QRectF(60, 0, 120, 320);
    QTest::newRow("small image enlarged") << QSize(10, 10) << QRect(0, 0, 100, 50) << QRectF(25, 0, 50, 50);
    QTest::newRow("offset area") << QSize(100, 100) << QRect(10, 20, 100, 100) << QRectF(10, 20, 100, 100);
}

void tst_ImgSvcCore::mapperFitsAndCentres()
{
    QFETCH(QSize, image);
    QFETCH(QRect, area);
    QFETCH(QRectF, display);
    const ImgSvcFitMapper map(image, area);
    QCOMPARE(map.displayRect(), display);
    QCOMPARE(map.toArea(QRect(QPoint(0, 0), image)), display);
}

void tst_ImgSvcCore::mapperRoundTripsPixels()
{
    const ImgSvcFitMapper map(QSize(50, 40), QRect(0, 0, 240, 320)); // 4.8 screen pixels an image pixel
    for (int x = 0; x < 50; x += 7)
        for (int y = 0; y < 40; y += 5)
            QCOMPARE(map.toImage(map.toArea(QRect(x, y, 1, 1)).center()), QPoint(x, y));
    QCOMPARE(map.toImage(QPointF(-50, 9999)), QPoint(0, 39)); // clipped to the picture
    QVERIFY(!ImgSvcFitMapper(QSize(), QRect(0, 0, 10, 10)).isValid());
}

void tst_ImgSvcCore::layoutTableAndPadding()
{
    const qint16 *l = ImgSvcLayout::layout;
    QCOMPARE(l[0], qint16(4));
    QCOMPARE(l[3], qint16(2));
    for (int i = 69; i <= 72; ++i)
        QVERIFY(l[i] > 0);

    ImgSvcLayoutWidget w;
    QCOMPARE(w.padding(), QMargins(l[69], l[71], l[70], l[72]));
    w.setPadding(3, 5, 7, 11);
    auto *service = new QWidget;
    w.setService(service);
    w.resize(100, 80);
    w.show();
    QCOMPARE(service->parentWidget(), &w);
    QCOMPARE(service->geometry(), QRect(3, 5, 100 - 3 - 7, 80 - 5 - 11));
}

QTEST_MAIN(tst_ImgSvcCore)
#include "tst_imgsvc_core.moc"
