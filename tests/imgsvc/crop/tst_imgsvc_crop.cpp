#include "ImgSvcTestSupport.h"
#include "ImgSvcCropCtl.h"
#include "ImgSvcCropMgr.h"
#include <QTemporaryDir>
#include <QtTest>

class tst_ImgSvcCrop : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        writeSource(m_small, m_dir.filePath("small.png"), quadrantImage(200, 100));
        // 2400 pixels across a 240-pixel screen: ten to a screen pixel.
        writeSource(m_large, m_dir.filePath("large.png"), quadrantImage(2400, 1200));
    }

    void keysShapeTheRectangle_data()
    {
        QTest::addColumn<bool>("large");
        QTest::addColumn<QPoint>("start");
        QTest::addColumn<QPoint>("steps"); // small, large
        QTest::addColumn<Keys>("keys");
        QTest::addColumn<QRect>("rect");
        QTest::addColumn<int>("result"); // -1: none
        const QPoint at(100, 50), fine(1, 15);
        using Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Select, Qt::Key_Context1, Qt::Key_Context2;
        QTest::newRow("untouched start is one pixel") << false << at << fine << Keys{} << QRect(100, 50, 1, 1) << -1;
        QTest::newRow("edges are inclusive") << false << at << fine << Keys{Key_Right, Key_Right, Key_Right, Key_Down, Key_Down} << QRect(100, 50, 4, 3) << -1;
        QTest::newRow("one step back crosses over") << false << at << fine << Keys{Key_Left, Key_Up} << QRect(99, 49, 2, 2) << -1;
        QTest::newRow("select moves the other corner") << false << at << fine << Keys{Key_Right, Key_Down, Key_Select, Key_Select | Held, Key_Left, Key_Left, Key_Up} << QRect(98, 49, 4, 3) << -1;
        QTest::newRow("second select switches back") << false << at << fine << Keys{Key_Right, Key_Select, Key_Select, Key_Right} << QRect(100, 50, 3, 1) << -1;
        QTest::newRow("return is select") << false << at << fine << Keys{Key_Right, Key_Right, Qt::Key_Return, Key_Left} << QRect(99, 50, 4, 1) << -1;
        QTest::newRow("clipped to the picture") << false << QPoint(500, -7) << fine
                                                << Keys{Key_Select, Key_Left} + Keys(20, Key_Left | Held) + Keys{Key_Down} + Keys(20, Key_Down | Held) + Keys{Key_Right, Key_Select, Key_Left}
                                                << QRect(1, 0, 198, 100) << -1;
        QTest::newRow("held key doubles up to the large step") << false << QPoint(0, 0) << fine << Keys{Key_Right} + Keys(5, Key_Right | Held) << QRect(0, 0, 1 + 1 + 2 + 4 + 8 + 15 + 15, 1) << -1;
        QTest::newRow("fresh press starts small") << false << QPoint(0, 0) << fine << Keys{Key_Right} + Keys(3, Key_Right | Held) + Keys{Key_Right} << QRect(0, 0, 1 + 1 + 2 + 4 + 8 + 1, 1) << -1;
        QTest::newRow("the control's steps") << false << QPoint(0, 0) << QPoint(5, 12) << Keys{Key_Down} + Keys(2, Key_Down | Held) << QRect(0, 0, 1, 1 + 5 + 10 + 12) << -1;
        QTest::newRow("large picture: a screen pixel at least") << true << QPoint(1200, 600) << fine << Keys{Key_Right, Key_Down} + Keys(6, Key_Down | Held)
                                                                << QRect(1200, 600, 1 + 10, 1 + 10 + 20 + 40 + 80 + 80 + 80 + 80) << -1;
        QTest::newRow("large picture: coarser steps as given") << true << QPoint(1200, 600) << QPoint(50, 200) << Keys{Key_Left} << QRect(1150, 600, 51, 1) << -1;
        QTest::newRow("crop, then settled") << false << at << fine << Keys{Key_Right, Key_Context1, Key_Context2, Key_Right, Key_Select, Key_Down} << QRect(100, 50, 2, 1) << 0;
        QTest::newRow("back, then settled") << false << at << fine << Keys{Key_Context2, Key_Context1, Key_Right} << QRect(100, 50, 1, 1) << 1;
    }

    void keysShapeTheRectangle()
    {
        QFETCH(bool, large);
        QFETCH(QPoint, start);
        QFETCH(QPoint, steps);
        QFETCH(Keys, keys);
        QFETCH(QRect, rect);
        QFETCH(int, result);
        ReportRecorder rec;
        ImgSvcCropMgr mgr(nullptr, nullptr);
        ImgSvcCropCtl *ctl = mgr.getCropCtl();
        ctl->setInput(large ? &m_large : &m_small);
        ctl->setEventReceiver(&rec);
        ctl->setCropMoveStep(steps.x(), steps.y());
        ctl->set1stPoint(start);
        sendKeys(&mgr, keys);
        QCOMPARE(ctl->getCropRect(), rect);
        QVERIFY(rec.received.isEmpty()); // posted, not sent: the receiver may delete the screen
        QCOMPARE(rec.delivered(), (result < 0 ? Reports() : Reports{{CTL_EVENT_CROP, result}}));
    }

private:
    QTemporaryDir m_dir;
    MMImageSource m_small, m_large;
};

QTEST_MAIN(tst_ImgSvcCrop)
#include "tst_imgsvc_crop.moc"
