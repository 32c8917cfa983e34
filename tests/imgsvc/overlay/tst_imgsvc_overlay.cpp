#include "ImgSvcTestSupport.h"
#include "ImgSvcElementFactory.h"
#include "ImgSvcOverlayCtl.h"
#include "ImgSvcOverlayMgr.h"
#include "MMOverlayImageCommand.h"
#include "datarows.h"
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>
#include <set>

using Rects = QList<QRect>;

// Counts its instances, to tell who deleted the commands of a session.
struct CountedOverlay : MMOverlayImageCommand
{
    static inline int alive = 0;
    CountedOverlay() { ++alive; }
    ~CountedOverlay() override { --alive; }
};

class tst_ImgSvcOverlay : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        writeSource(m_src, m_dir.filePath("in.png"), quadrantImage(400, 200));
    }

    void keysPlaceElements_data()
    {
        columns<Keys, Rects, int>({"keys", "placed", "files"});
        using Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Select;
        const QRect star(176, 76, 50, 50);
        QTest::newRow("star moved, then placed") << Keys{Key_Select, Key_Right, Key_Down, Key_Down, Key_Select} << Rects{star.translated(3, 6)} << 1;
        QTest::newRow("left soft key places") << Keys{Key_Select, Key_Left, Qt::Key_Context1} << Rects{star.translated(-3, 0)} << 1;
        QTest::newRow("right soft key cancels the move") << Keys{Key_Select, Key_Right, Qt::Key_Context2} << Rects{} << 0;
        QTest::newRow("up and down do not cycle") << Keys{Key_Up, Key_Select, Key_Down, Key_Select} << Rects{star.translated(0, 3)} << 1;
        QTest::newRow("one element, one file") << Keys{Key_Select, Key_Left, Key_Select, Key_Select, Key_Up, Key_Select} << Rects{star.translated(-3, 0), star.translated(-3, -3)} << 1;
        QTest::newRow("another element, another file") << Keys{Key_Select, Key_Select, Key_Right, Key_Select, Key_Select} << Rects{star, star} << 2;
        QTest::newRow("left wraps to the bubble") << Keys{Key_Left, Key_Select, Key_Select} << Rects{QRect(163, 76, 75, 50)} << 1;
        QTest::newRow("frame covers the picture at once") << Keys{Key_Right, Key_Right, Key_Select} << Rects{QRect(0, 0, 400, 200)} << 1;
        QTest::newRow("held keys stop at the edge, one step leaves it")
            << Keys{Key_Select, Key_Right} + Keys(30, Key_Right | Held) + Keys{Key_Down} + Keys(30, Key_Down | Held) + Keys{Key_Left, Key_Select} << Rects{QRect(347, 150, 50, 50)} << 1;
    }

    void keysPlaceElements()
    {
        auto [keys, placed, files] = fetch<Keys, Rects, int>({"keys", "placed", "files"});
        ReportRecorder rec;
        auto mgr = makeMgr(&rec);
        sendKeys(mgr.get(), keys);
        Rects rects;
        std::set<QString> used;
        for (const MMOverlayImageCommand *c : mgr->getOverlayCtl()->getCommandList()) {
            MMRect r;
            MMImageSource element;
            c->getData(r, element);
            rects.append(QRect(r.x, r.y, r.width, r.height));
            const QImage img(*used.insert(QString::fromStdString(element.getFileName())).first);
            QVERIFY(img.hasAlphaChannel() && img.size() == rects.last().size());
        }
        QCOMPARE(rects, placed);
        const std::vector<QString> tmp = mgr->getOverlayTmpFiles();
        QCOMPARE(int(tmp.size()), files);
        QCOMPARE(std::set<QString>(tmp.begin(), tmp.end()), used);
        QVERIFY(rec.delivered().isEmpty()); // placing decides nothing
    }

    void ownershipOfCommandsAndFiles_data()
    {
        columns<int, int>({"key", "result"});
        QTest::newRow("done hands them over") << int(Qt::Key_Context1) << 0;
        QTest::newRow("back deletes them with the screen") << int(Qt::Key_Context2) << 1;
    }

    void ownershipOfCommandsAndFiles()
    {
        auto [key, result] = fetch<int, int>({"key", "result"});
        ReportRecorder rec;
        auto mgr = makeMgr(&rec);
        sendKeys(mgr.get(), {Qt::Key_Select, Qt::Key_Select});
        mgr->getOverlayCtl()->addCommand(new CountedOverlay);
        sendKeys(mgr.get(), {key, Qt::Key_Context1, Qt::Key_Context2, Qt::Key_Select});
        QCOMPARE(rec.delivered(), (Reports{{CTL_EVENT_OVERLAY, result}}));
        const std::list<MMOverlayImageCommand *> commands = mgr->getOverlayCtl()->getCommandList();
        const QString file = mgr->getOverlayTmpFiles().at(0);
        QVERIFY(QFile::exists(file)); // until the screen goes
        mgr.reset();
        QCOMPARE(CountedOverlay::alive, 1 - result);
        QCOMPARE(QFile::exists(file), result == 0);
        if (result == 0) {
            for (MMOverlayImageCommand *c : commands)
                delete c;
            QFile::remove(file);
        }
    }

    // Done with nothing placed is nothing to apply: reported as leaving.
    void doneWithNothingPlacedLeaves()
    {
        ReportRecorder rec;
        auto mgr = makeMgr(&rec);
        sendKeys(mgr.get(), {Qt::Key_Select, Qt::Key_Context2, Qt::Key_Context1});
        QCOMPARE(rec.delivered(), (Reports{{CTL_EVENT_OVERLAY, 1}}));
        QVERIFY(mgr->getOverlayCtl()->getCommandList().empty());
    }

    // The date stamp says when the photo was taken, when its EXIF tells;
    // today otherwise.
    void dateStampShowsCaptureDate_data()
    {
        columns<QString, QDate>({"taken", "shown"});
        QTest::newRow("taken on a known day") << "2019:07:14 10:11:12" << QDate(2019, 7, 14);
        QTest::newRow("no date in the photo") << QString() << QDate::currentDate();
    }
    void dateStampShowsCaptureDate()
    {
        auto [taken, shown] = fetch<QString, QDate>({"taken", "shown"});
        if (QStandardPaths::findExecutable("exiftool").isEmpty())
            QSKIP("exiftool is needed to date the photo");
        const QString photo = m_dir.filePath(QString("taken-%1.jpg").arg(QTest::currentDataTag()));
        QVERIFY(quadrantImage(400, 200).save(photo, "JPEG"));
        if (!taken.isEmpty()) {
            QProcess tool;
            tool.start("exiftool", {"-q", "-overwrite_original", "-DateTimeOriginal=" + taken, photo});
            QVERIFY(tool.waitForFinished() && tool.exitCode() == 0);
        }
        auto mgr = makeMgr(nullptr);
        mgr->setOriginalFile(photo);
        // Star, Heart, Frame, Date: chosen, then placed where it starts.
        sendKeys(mgr.get(), {Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Select, Qt::Key_Select});
        QCOMPARE(int(mgr->getOverlayTmpFiles().size()), 1);
        const QImage element = QImage(mgr->getOverlayTmpFiles().at(0)).convertToFormat(QImage::Format_ARGB32);
        const auto drawn = [&](const QDate &date) {
            return ImgSvcElementFactory::render(ImgSvcElementFactory::DateStamp, element.size(), date)
                .convertToFormat(QImage::Format_ARGB32);
        };
        QVERIFY(element == drawn(shown));
        QVERIFY(element != drawn(shown.addYears(-1)));
    }

private:
    std::unique_ptr<ImgSvcOverlayMgr> makeMgr(ReportRecorder *rec)
    {
        auto mgr = std::make_unique<ImgSvcOverlayMgr>();
        mgr->getOverlayCtl()->setInput(&m_src);
        mgr->getOverlayCtl()->setEventReceiver(rec);
        return mgr;
    }
    QTemporaryDir m_dir;
    MMImageSource m_src; // 400 x 200: a star is 50 x 50, the small step 3, the large 25
};

QTEST_MAIN(tst_ImgSvcOverlay)
#include "tst_imgsvc_overlay.moc"
