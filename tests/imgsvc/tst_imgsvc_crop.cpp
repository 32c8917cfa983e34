#include "ImgSvcTestSupport.h"
#include "ImgSvcCropCtl.h"
#include "ImgSvcCropMgr.h"
#include "MMImageSource.h"
#include "ZSoftKey.h"
#include <QTemporaryDir>
#include <QtTest>

using Keys = QList<int>;

class tst_ImgSvcCrop : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void keysShapeTheRectangle_data();
    void keysShapeTheRectangle();
    void heldKeyAcceleratesUntilReleased();
    void stepsShowOnLargePictures();
    void rectangleStaysOnThePicture();
    void softKeysReportOnce_data();
    void softKeysReportOnce();
    void screenShowsTheSelection();
    void otherKeysAreLeftToTheParent();

private:
    QTemporaryDir m_dir;
    MMImageSource m_src; // 200 x 100
};

void tst_ImgSvcCrop::initTestCase()
{
    m_src.setFile(writeImage(m_dir.filePath("in.png"), quadrantImage(200, 100)).toStdString());
}

void tst_ImgSvcCrop::keysShapeTheRectangle_data()
{
    QTest::addColumn<QPoint>("start");
    QTest::addColumn<Keys>("keys");
    QTest::addColumn<QRect>("rect");
    QTest::newRow("untouched start is one pixel") << QPoint(100, 50) << Keys{} << QRect(100, 50, 1, 1);
    QTest::newRow("grow right and down")
        << QPoint(100, 50) << Keys{Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Down, Qt::Key_Down}
        << QRect(100, 50, 4, 3);
    QTest::newRow("other corner after select")
        << QPoint(100, 50) << Keys{Qt::Key_Right, Qt::Key_Down, Qt::Key_Select, Qt::Key_Left, Qt::Key_Left, Qt::Key_Up}
        << QRect(98, 49, 4, 3);
    QTest::newRow("crossing over normalises")
        << QPoint(100, 50) << Keys{Qt::Key_Left, Qt::Key_Left, Qt::Key_Up} << QRect(98, 49, 3, 2);
    QTest::newRow("select twice returns to second corner")
        << QPoint(10, 10) << Keys{Qt::Key_Select, Qt::Key_Select, Qt::Key_Right} << QRect(10, 10, 2, 1);
    QTest::newRow("one pixel back is two wide") << QPoint(10, 10) << Keys{Qt::Key_Left} << QRect(9, 10, 2, 1);
    QTest::newRow("return is select") << QPoint(10, 10) << Keys{Qt::Key_Return, Qt::Key_Left} << QRect(9, 10, 2, 1);
}

void tst_ImgSvcCrop::keysShapeTheRectangle()
{
    QFETCH(QPoint, start);
    QFETCH(Keys, keys);
    QFETCH(QRect, rect);
    ImgSvcCropMgr mgr(nullptr, nullptr);
    mgr.getCropCtl()->setInput(&m_src);
    mgr.getCropCtl()->set1stPoint(start);
    for (int k : keys)
        clickKey(&mgr, k);
    QCOMPARE(mgr.getCropCtl()->getCropRect(), rect);
}

void tst_ImgSvcCrop::heldKeyAcceleratesUntilReleased()
{
    ImgSvcCropMgr mgr(nullptr, nullptr);
    ImgSvcCropCtl *ctl = mgr.getCropCtl();
    ctl->setInput(&m_src);
    ctl->setCropMoveStep(1, 15);
    ctl->set1stPoint(QPoint(0, 0));

    pressKey(&mgr, Qt::Key_Right); // 1
    for (int i = 0; i < 5; ++i)
        pressRepeated(&mgr, Qt::Key_Right); // 2, 4, 8, 15, 15
    QCOMPARE(ctl->getCropRect(), QRect(0, 0, 1 + 1 + 2 + 4 + 8 + 15 + 15, 1));

    releaseKey(&mgr, Qt::Key_Right);
    clickKey(&mgr, Qt::Key_Down); // a fresh press starts small again
    QCOMPARE(ctl->getCropRect().height(), 2);

    ctl->setCropMoveStep(5, 12);
    pressKey(&mgr, Qt::Key_Down);
    pressRepeated(&mgr, Qt::Key_Down);
    QCOMPARE(ctl->getCropRect().height(), 2 + 5 + 10);
}

void tst_ImgSvcCrop::stepsShowOnLargePictures()
{
    // 2400 pixels across a 240-pixel screen: ten to a screen pixel.
    MMImageSource big;
    big.setFile(writeImage(m_dir.filePath("big.png"), quadrantImage(2400, 1200)).toStdString());
    ImgSvcCropMgr mgr(nullptr, nullptr);
    ImgSvcCropCtl *ctl = mgr.getCropCtl();
    ctl->setInput(&big);
    ctl->setCropMoveStep(1, 15);
    ctl->set1stPoint(QPoint(1200, 600));
    clickKey(&mgr, Qt::Key_Right);
    QCOMPARE(ctl->getCropRect().width(), 1 + 10);
    pressKey(&mgr, Qt::Key_Down);
    for (int i = 0; i < 6; ++i)
        pressRepeated(&mgr, Qt::Key_Down); // 20, 40, 80, then the large step: 80
    QCOMPARE(ctl->getCropRect().height(), 1 + 10 + 20 + 40 + 80 + 80 + 80 + 80);

    ctl->setCropMoveStep(50, 200); // coarser than a screen pixel: taken as given
    releaseKey(&mgr, Qt::Key_Down);
    clickKey(&mgr, Qt::Key_Left);
    QCOMPARE(ctl->getCropRect().left(), 1200 - 50 + 10);
}

void tst_ImgSvcCrop::rectangleStaysOnThePicture()
{
    ImgSvcCropMgr mgr(nullptr, nullptr);
    ImgSvcCropCtl *ctl = mgr.getCropCtl();
    ctl->setInput(&m_src);
    ctl->set1stPoint(QPoint(500, -7)); // off the picture: clipped
    QCOMPARE(ctl->getCropRect(), QRect(199, 0, 1, 1));
    ctl->switchCorner();
    for (Qt::Key key : {Qt::Key_Left, Qt::Key_Down}) {
        pressKey(&mgr, key);
        for (int i = 0; i < 20; ++i)
            pressRepeated(&mgr, key);
        releaseKey(&mgr, key);
    }
    QCOMPARE(ctl->getCropRect(), QRect(0, 0, 200, 100));
}

void tst_ImgSvcCrop::softKeysReportOnce_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("result");
    QTest::newRow("left soft key crops") << int(Qt::Key_Context1) << 0;
    QTest::newRow("F1 crops") << int(Qt::Key_F1) << 0;
    QTest::newRow("right soft key leaves") << int(Qt::Key_Context2) << 1;
}

void tst_ImgSvcCrop::softKeysReportOnce()
{
    QFETCH(int, key);
    QFETCH(int, result);
    ReportRecorder rec;
    ImgSvcCropMgr mgr(nullptr, nullptr);
    mgr.getCropCtl()->setInput(&m_src);
    mgr.getCropCtl()->setEventReceiver(&rec);
    mgr.getCropCtl()->set1stPoint(QPoint(5, 5));
    clickKey(&mgr, key);
    clickKey(&mgr, Qt::Key_Context1);
    clickKey(&mgr, Qt::Key_Context2);
    clickKey(&mgr, Qt::Key_Right); // the selection is settled once reported
    QCOMPARE(deliveredReports(rec), (QList<ReportRecorder::Report>{{CTL_EVENT_CROP, result}}));
    QCOMPARE(mgr.getCropCtl()->getCropRect(), QRect(5, 5, 1, 1));
}

void tst_ImgSvcCrop::screenShowsTheSelection()
{
    ImgSvcCropMgr mgr(nullptr, nullptr);
    mgr.getCropCtl()->setInput(&m_src);
    mgr.getCropCtl()->set1stPoint(QPoint(0, 0));
    QCOMPARE(mgr.mainWidgetTitle(), QStringLiteral("Crop"));
    QCOMPARE(mgr.getSoftKey()->text(ZSoftKey::LEFT), QStringLiteral("Crop"));
    QCOMPARE(mgr.getSoftKey()->text(ZSoftKey::RIGHT), QStringLiteral("Back"));

    // From the whole picture to its right half: the left half is dimmed,
    // the right half is left as it was.
    mgr.getCropCtl()->moveActiveCorner(199, 99);
    const QImage whole = mgr.grab().toImage();
    mgr.getCropCtl()->set1stPoint(QPoint(100, 0));
    mgr.getCropCtl()->moveActiveCorner(99, 99);
    const QImage half = mgr.grab().toImage();
    const QPoint leftQuarter(mgr.width() / 4, mgr.height() / 2 - 20);
    const QPoint rightQuarter(mgr.width() * 3 / 4, mgr.height() / 2 - 20);
    QVERIFY(qGray(half.pixel(leftQuarter)) < qGray(whole.pixel(leftQuarter)) - 20);
    QCOMPARE(half.pixel(rightQuarter), whole.pixel(rightQuarter));
}

void tst_ImgSvcCrop::otherKeysAreLeftToTheParent()
{
    ImgSvcCropMgr mgr(nullptr, nullptr);
    QKeyEvent digit(QEvent::KeyPress, Qt::Key_5, Qt::NoModifier, QStringLiteral("5"));
    QCoreApplication::sendEvent(&mgr, &digit);
    QVERIFY(!digit.isAccepted());
}

QTEST_MAIN(tst_ImgSvcCrop)
#include "tst_imgsvc_crop.moc"
