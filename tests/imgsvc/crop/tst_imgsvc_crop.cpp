#include "ImgSvcTestSupport.h"
#include "ImgSvcCropCtl.h"
#include "ImgSvcCropMgr.h"
#include "ImgSvcPreviewScale.h"
#include "datarows.h"
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
        // steps: small, large
        // result: -1: none
        columns<bool, QPoint, QPoint, Keys, QRect, int>({"large", "start", "steps", "keys", "rect", "result"});
        // 200 x 100 starts as 160 x 80 centred; a fresh step is 2 pixels
        // (a hundredth of the longer side), a held one grows to 20.
        const QPoint at(100, 50), fine(1, 15);
        const QRect start(21, 11, 160, 80);
        using Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Select, Qt::Key_Context1, Qt::Key_Context2;
        QTest::newRow("untouched start is the centred 80 %") << false << at << fine << Keys{} << start << -1;
        QTest::newRow("lower right corner first") << false << at << fine << Keys{Key_Right, Key_Right, Key_Down} << QRect(21, 11, 164, 82) << -1;
        QTest::newRow("select: upper left corner") << false << at << fine << Keys{Key_Select, Key_Select | Held, Key_Left, Key_Up} << QRect(19, 9, 162, 82) << -1;
        QTest::newRow("select twice: the frame moves") << false << at << fine << Keys{Key_Select, Key_Select, Key_Left} << QRect(19, 11, 160, 80) << -1;
        QTest::newRow("three selects: lower right again") << false << at << fine << Keys{Key_Select, Key_Select, Key_Select, Key_Right} << QRect(21, 11, 162, 80) << -1;
        QTest::newRow("return is select") << false << at << fine << Keys{Qt::Key_Return, Key_Left} << QRect(19, 11, 162, 80) << -1;
        QTest::newRow("corners never cross") << false << at << fine << Keys{Key_Left} + Keys(20, Key_Left | Held) << QRect(21, 11, 5, 80) << -1;
        QTest::newRow("the frame stays on the picture") << false << at << fine << Keys{Key_Select, Key_Select, Key_Right} + Keys(20, Key_Right | Held) << QRect(40, 11, 160, 80) << -1;
        QTest::newRow("started off the picture") << false << QPoint(500, -7) << fine << Keys{} << QRect(40, 0, 160, 80) << -1;
        QTest::newRow("held key doubles up to the large step") << false << at << fine << Keys{Key_Left} + Keys(5, Key_Left | Held) << QRect(21, 11, 160 - (2 + 4 + 8 + 16 + 20 + 20), 80) << -1;
        QTest::newRow("fresh press starts small") << false << at << fine << Keys{Key_Left} + Keys(3, Key_Left | Held) + Keys{Key_Left} << QRect(21, 11, 160 - (2 + 4 + 8 + 16 + 2), 80) << -1;
        QTest::newRow("the control's steps") << false << at << QPoint(5, 30) << Keys{Key_Up} + Keys(2, Key_Up | Held) << QRect(21, 11, 160, 80 - (5 + 10 + 20)) << -1;
        // 2400 x 1200: 1920 x 960 at (241,121); steps of 24 growing to 240.
        QTest::newRow("large picture: steps follow its size") << true << QPoint(1200, 600) << fine << Keys{Key_Left, Key_Up} + Keys(3, Key_Up | Held)
                                                              << QRect(241, 121, 1920 - 24, 960 - (24 + 48 + 96 + 192)) << -1;
        QTest::newRow("crop, then settled") << false << at << fine << Keys{Key_Left, Key_Context1, Key_Context2, Key_Left, Key_Select, Key_Down} << QRect(21, 11, 158, 80) << 0;
        QTest::newRow("back, then settled") << false << at << fine << Keys{Key_Context2, Key_Context1, Key_Left} << start << 1;
    }

    void keysShapeTheRectangle()
    {
        auto [large, start, steps, keys, rect, result] =
            fetch<bool, QPoint, QPoint, Keys, QRect, int>({"large", "start", "steps", "keys", "rect", "result"});
        // The arrows move what they point at on the picture, also when the
        // screens read right to left.
        for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
            QGuiApplication::setLayoutDirection(direction);
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
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }

    // On a preview the size is stated in the pixels of the picture it was
    // made from, also on a working copy named after it and turned; truncated
    // as the crop is mapped when written (a scale of 0.1 held as a float is a
    // little more than a tenth).
    void sizeInPicturePixels_data()
    {
        columns<QString, bool, QSize>({"name", "turned", "shown"});
        QTest::newRow("the preview") << "prev.png" << false << QSize(1599, 799);
        QTest::newRow("a copy named after it, turned") << "tempsmall_prev.png" << true << QSize(799, 1599);
        QTest::newRow("another picture") << "other.png" << false << QSize(160, 80);
    }
    void sizeInPicturePixels()
    {
        auto [name, turned, shown] = fetch<QString, bool, QSize>({"name", "turned", "shown"});
        ImgSvcPreviewScale::record(m_dir.filePath("prev.png"), QSize(200, 100), QSize(2000, 1000));
        MMImageSource input;
        writeSource(input, m_dir.filePath(name), quadrantImage(turned ? 100 : 200, turned ? 200 : 100));
        ImgSvcCropMgr mgr(nullptr, nullptr);
        mgr.getCropCtl()->setInput(&input);
        mgr.getCropCtl()->refresh(true);
        QCOMPARE(mgr.shownSize(), shown);
    }

private:
    QTemporaryDir m_dir;
    MMImageSource m_small, m_large;
};

QTEST_MAIN(tst_ImgSvcCrop)
#include "tst_imgsvc_crop.moc"
