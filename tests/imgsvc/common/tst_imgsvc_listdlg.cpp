#include "ImgSvcTestSupport.h"
#include "ImgSvcAdjustDlg.h"
#include "ImgSvcEffectCtl.h"
#include "ImgSvcEffectDlg.h"
#include "ImgSvcEffectMgr.h"
#include "ImgSvcResizeCtl.h"
#include "ImgSvcResizeDlg.h"
#include "ImgSvcResizeMgr.h"
#include "ImgSvcKeys.h"
#include "MMEffectCommand.h"
#include "datarows.h"
#include <QTemporaryDir>
#include <QtTest>

using Sizes = QList<QSize>;

// The two list dialogs, target sizes and styles; the keys work alike in both.
class tst_ImgSvcListDlg : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        writeSource(m_src, m_dir.filePath("in.png"), quadrantImage(60, 40));
    }

    void sizeChoicesKeepAspectAndShrink_data()
    {
        columns<QSize, Sizes>({"input", "mustOffer"});
        QTest::newRow("4:3 photo") << QSize(4000, 3000) << Sizes{{3000, 2250}, {2000, 1500}, {1000, 750}, {1280, 960}, {640, 480}, {320, 240}};
        QTest::newRow("portrait photo") << QSize(3000, 4000) << Sizes{{960, 1280}, {480, 640}, {240, 320}};
        QTest::newRow("wide panorama") << QSize(5000, 1000) << Sizes{{1280, 256}, {640, 128}, {320, 64}};
        QTest::newRow("exactly a screen size") << QSize(640, 480) << Sizes{{480, 360}, {320, 240}, {160, 120}};
        QTest::newRow("odd size") << QSize(333, 221) << Sizes{{250, 166}, {167, 111}, {83, 55}};
        QTest::newRow("small") << QSize(4, 3) << Sizes{{3, 2}, {2, 2}, {1, 1}};
        QTest::newRow("one pixel wide") << QSize(1, 900) << Sizes{};
    }

    void sizeChoicesKeepAspectAndShrink()
    {
        auto [input, mustOffer] = fetch<QSize, Sizes>({"input", "mustOffer"});
        const Sizes choices = ImgSvcResizeDlg::sizeChoices(input);
        QCOMPARE(choices.isEmpty(), mustOffer.isEmpty());
        for (const QSize &s : mustOffer)
            QVERIFY2(choices.contains(s), qPrintable(QStringLiteral("%1x%2").arg(s.width()).arg(s.height())));
        for (int i = 0; i < choices.size(); ++i) {
            const QSize s = choices.at(i);
            QVERIFY(s.width() >= 1 && s.height() >= 1 && s.width() < input.width() && s.height() < input.height());
            // Rounding one side by half a pixel is all the aspect may lose.
            QVERIFY(qAbs(qint64(s.width()) * input.height() - qint64(s.height()) * input.width()) <= (input.width() + input.height()) / 2 + 1);
            QCOMPARE(choices.count(s), 1);
            QVERIFY(i == 0 || s.width() * s.height() <= choices.at(i - 1).width() * choices.at(i - 1).height()); // largest first
        }
    }

    void keysChooseTheSize_data()
    {
        // target: invalid: left as it was
        columns<QSize, Keys, QSize, int>({"input", "keys", "target", "result"});
        const QSize photo(4000, 3000);
        QTest::newRow("select takes the largest") << photo << Keys{Qt::Key_Select, Qt::Key_Down, Qt::Key_Select} << QSize(3000, 2250) << 0;
        QTest::newRow("down twice, left soft key") << photo << Keys{Qt::Key_Down, Qt::Key_Down, Qt::Key_Context1} << QSize(1280, 960) << 0;
        QTest::newRow("up stops at the top") << photo << Keys{Qt::Key_Up, Qt::Key_Down, Qt::Key_Up, Qt::Key_Up, Qt::Key_Return} << QSize(3000, 2250) << 0;
        QTest::newRow("down stops at the bottom") << photo << Keys(20, Qt::Key_Down) + Keys{Qt::Key_Select} << QSize(320, 240) << 0;
        QTest::newRow("back leaves the target") << photo << Keys{Qt::Key_Down, Qt::Key_Context2, Qt::Key_Context2, Qt::Key_Context1} << QSize() << 1;
        QTest::newRow("nothing to take from one pixel") << QSize(1, 1) << Keys{Qt::Key_Select, Qt::Key_Context1, Qt::Key_Down, Qt::Key_Context2} << QSize() << 1;
    }

    void keysChooseTheSize()
    {
        auto [input, keys, target, result] = fetch<QSize, Keys, QSize, int>({"input", "keys", "target", "result"});
        ReportRecorder rec;
        ImgSvcResizeMgr mgr;
        mgr.getResizeCtl()->setEventReceiver(&rec);
        mgr.launchResizeDlg(input);
        QPointer<ImgSvcResizeDlg> dlg = mgr.dialog();
        sendKeys(dlg, keys);
        QCOMPARE(mgr.getResizeCtl()->getTargetSize(), target);
        QCOMPARE(rec.delivered(), (Reports{{CTL_EVENT_RESIZE, result}}));
        QTRY_VERIFY(!dlg); // closes and deletes itself
    }

    void keysChooseTheEffect()
    {
        ReportRecorder rec;
        ImgSvcEffectMgr mgr;
        mgr.getEffectCtl()->setInput(&m_src);
        mgr.getEffectCtl()->setEventReceiver(&rec);
        mgr.launchEffectDlg();
        sendKeys(mgr.dialog(), {Qt::Key_Down, Qt::Key_Down, Qt::Key_Context1, Qt::Key_Up, Qt::Key_Select});
        QCOMPARE(mgr.getEffectCtl()->getEffect(), MMEffectCommand::EFFECT_GRAYSCALE + 2);
        QCOMPARE(rec.delivered(), (Reports{{CTL_EVENT_EFFECT, 0}}));
    }

    // Adjust..., the last style, opens the adjust screen: Up/Down choose,
    // Left/Right change in steps of 5 within -100..100 and the preview
    // follows; Back returns to the list with the control untouched, Select
    // confirms the adjustment. Auto-fix takes its levels along.
    void adjustScreenFromTheStyleList_data()
    {
        columns<Keys, int, QList<int>, int>({"keys", "effect", "values", "result"});
        const Keys toAdjust = Keys(7, Qt::Key_Down) + Keys{Qt::Key_Select};
        QTest::newRow("brighter, less colour") << toAdjust + Keys{Qt::Key_Right, Qt::Key_Right, Qt::Key_Down, Qt::Key_Down,
                                                                  Qt::Key_Left, Qt::Key_Select}
                                               << int(MMEffectCommand::EFFECT_ADJUST) << QList<int>{10, 0, -5} << 0;
        QTest::newRow("stops at 100") << toAdjust + Keys(30, Qt::Key_Right) + Keys{Qt::Key_Context1}
                                      << int(MMEffectCommand::EFFECT_ADJUST) << QList<int>{100, 0, 0} << 0;
        QTest::newRow("back to the list, then a style")
            << toAdjust + Keys{Qt::Key_Right, Qt::Key_Context2, Qt::Key_Up, Qt::Key_Select}
            << int(MMEffectCommand::EFFECT_AUTO_FIX) << QList<int>{0, 0, 0} << 0;
    }

    void adjustScreenFromTheStyleList()
    {
        auto [keys, effect, values, result] = fetch<Keys, int, QList<int>, int>({"keys", "effect", "values", "result"});
        ReportRecorder rec;
        ImgSvcEffectMgr mgr;
        mgr.getEffectCtl()->setInput(&m_src);
        mgr.getEffectCtl()->setEventReceiver(&rec);
        mgr.launchEffectDlg();
        QPointer<ImgSvcEffectDlg> list = mgr.dialog();
        for (int key : keys) {
            ImgSvcAdjustDlg *adjust = list && list->adjustScreen() && list->adjustScreen()->isVisible()
                ? list->adjustScreen() : nullptr;
            QWidget *target = adjust ? static_cast<QWidget *>(adjust) : list.data();
            QVERIFY(target);
            const QImage before = adjust ? adjust->previewImage() : QImage();
            const int brightness = adjust ? adjust->adjustment().brightness : 0;
            sendKeys(target, {key});
            // (near 100 the test picture is white already)
            if (adjust && adjust->isVisible() && adjust->adjustment().brightness != brightness && brightness < 30)
                QVERIFY(adjust->previewImage() != before); // live
        }
        const MMEffectCommand &chosen = mgr.getEffectCtl()->effectCommand();
        QCOMPARE(chosen.getEffect(), effect);
        const MMPixelFilters::Adjustment a = chosen.getAdjustment();
        QCOMPARE((QList<int>{a.brightness, a.contrast, a.saturation}), values);
        QCOMPARE(chosen.hasLevels(), effect == MMEffectCommand::EFFECT_AUTO_FIX);
        QCOMPARE(rec.delivered(), (Reports{{CTL_EVENT_EFFECT, result}}));
        QTRY_VERIFY(!list); // the list goes with the adjust screen
    }

private:
    QTemporaryDir m_dir;
    MMImageSource m_src;
};

QTEST_MAIN(tst_ImgSvcListDlg)
#include "tst_imgsvc_listdlg.moc"
