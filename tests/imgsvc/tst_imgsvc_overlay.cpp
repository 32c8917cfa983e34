#include "ImgSvcTestSupport.h"
#include "ImgSvcElementFactory.h"
#include "ImgSvcOverlayCtl.h"
#include "ImgSvcOverlayMgr.h"
#include "MMImageSource.h"
#include "MMOverlayImageCommand.h"
#include "ZSoftKey.h"
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

// Counts its instances, to tell who deleted the commands of a session.
class CountedOverlay : public MMOverlayImageCommand
{
public:
    static int alive;
    CountedOverlay() { ++alive; }
    ~CountedOverlay() override { --alive; }
};
int CountedOverlay::alive = 0;

static QRect commandRect(const MMOverlayImageCommand *c, QString *file = nullptr)
{
    MMRect r;
    MMImageSource src;
    c->getData(r, src);
    if (file)
        *file = QString::fromStdString(src.getFileName());
    return QRect(r.x, r.y, r.width, r.height);
}

class tst_ImgSvcOverlay : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void elementsAreDrawnWithAlpha_data();
    void elementsAreDrawnWithAlpha();
    void leftRightCycleTheElements_data();
    void leftRightCycleTheElements();
    void moveAndPlaceAStar();
    void placementsShareElementFiles();
    void frameCoversThePicture();
    void heldKeysStopAtTheEdge();
    void softKeysWhileMoving();
    void doneHandsCommandsAndFilesOver();
    void backCleansUp();

private:
    std::unique_ptr<ImgSvcOverlayMgr> makeMgr(ReportRecorder *rec = nullptr);
    QTemporaryDir m_dir;
    MMImageSource m_src; // 400 x 200
};

void tst_ImgSvcOverlay::initTestCase()
{
    m_src.setFile(writeImage(m_dir.filePath("in.png"), quadrantImage(400, 200)).toStdString());
}

std::unique_ptr<ImgSvcOverlayMgr> tst_ImgSvcOverlay::makeMgr(ReportRecorder *rec)
{
    auto mgr = std::make_unique<ImgSvcOverlayMgr>();
    mgr->getOverlayCtl()->setInput(&m_src);
    mgr->getOverlayCtl()->setEventReceiver(rec);
    mgr->setOriginalFile(m_dir.filePath("in.png"));
    return mgr;
}

void tst_ImgSvcOverlay::elementsAreDrawnWithAlpha_data()
{
    QTest::addColumn<int>("element");
    QTest::addColumn<QSize>("onPicture");
    QTest::newRow("star") << int(ImgSvcElementFactory::Star) << QSize(50, 50);
    QTest::newRow("heart") << int(ImgSvcElementFactory::Heart) << QSize(50, 50);
    QTest::newRow("frame") << int(ImgSvcElementFactory::Frame) << QSize(400, 200);
    QTest::newRow("date") << int(ImgSvcElementFactory::DateStamp) << QSize(100, 25);
    QTest::newRow("bubble") << int(ImgSvcElementFactory::Bubble) << QSize(75, 50);
}

void tst_ImgSvcOverlay::elementsAreDrawnWithAlpha()
{
    QFETCH(int, element);
    QFETCH(QSize, onPicture);
    QCOMPARE(ImgSvcElementFactory::elementSize(element, QSize(400, 200)), onPicture);
    QVERIFY(!ImgSvcElementFactory::name(element).isEmpty());

    const QString file = ImgSvcElementFactory::writeTempFile(element, onPicture);
    QVERIFY(!file.isEmpty());
    const QFileInfo fi(file);
    QCOMPARE(fi.suffix(), QStringLiteral("png"));
    QCOMPARE(fi.absolutePath(), QFileInfo(QDir::tempPath()).absoluteFilePath());
    QVERIFY(!QFile::exists(fi.path() + '/' + fi.completeBaseName())); // no placeholder left
    const QImage img(file);
    QFile::remove(file);
    QCOMPARE(img.size(), onPicture);
    QVERIFY(img.hasAlphaChannel());
    int clear = 0, solid = 0;
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x) {
            const int a = qAlpha(img.pixel(x, y));
            clear += a == 0;
            solid += a == 255;
        }
    QVERIFY(clear > img.width());  // the picture shows around it
    QVERIFY(solid > img.width() / 2); // and it is there
}

void tst_ImgSvcOverlay::leftRightCycleTheElements_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<int>("element");
    QTest::newRow("start") << QList<int>{} << 0;
    QTest::newRow("right") << QList<int>{Qt::Key_Right} << 1;
    QTest::newRow("left wraps") << QList<int>{Qt::Key_Left} << ImgSvcElementFactory::ElementCount - 1;
    QTest::newRow("right wraps") << QList<int>(ImgSvcElementFactory::ElementCount + 2, Qt::Key_Right) << 2;
    QTest::newRow("up and down do not cycle") << QList<int>{Qt::Key_Up, Qt::Key_Down} << 0;
}

void tst_ImgSvcOverlay::leftRightCycleTheElements()
{
    QFETCH(QList<int>, keys);
    QFETCH(int, element);
    auto mgr = makeMgr();
    for (int k : keys)
        clickKey(mgr.get(), k);
    QCOMPARE(mgr->currentElement(), element);
    QVERIFY(!mgr->isMoving());
    QCOMPARE(mgr->currentRect().size(), ImgSvcElementFactory::elementSize(element, QSize(400, 200)));
    QVERIFY(mgr->getOverlayCtl()->getCommandList().empty());
}

void tst_ImgSvcOverlay::moveAndPlaceAStar()
{
    auto mgr = makeMgr();
    QCOMPARE(mgr->mainWidgetTitle(), QStringLiteral("Add Elements"));
    const QRect start = mgr->currentRect();
    QCOMPARE(start.center(), QPoint(200, 100));

    clickKey(mgr.get(), Qt::Key_Select);
    QVERIFY(mgr->isMoving());
    clickKey(mgr.get(), Qt::Key_Right);
    const int step = mgr->currentRect().x() - start.x();
    QVERIFY(step > 0);
    clickKey(mgr.get(), Qt::Key_Down);
    clickKey(mgr.get(), Qt::Key_Down);
    const QRect moved = mgr->currentRect();
    QCOMPARE(moved, start.translated(step, 2 * step));
    QVERIFY(mgr->getOverlayCtl()->getCommandList().empty()); // nothing placed while moving

    clickKey(mgr.get(), Qt::Key_Select);
    QVERIFY(!mgr->isMoving());
    const auto &commands = mgr->getOverlayCtl()->getCommandList();
    QCOMPARE(commands.size(), size_t(1));
    QString file;
    QCOMPARE(commandRect(commands.front(), &file), moved);
    QCOMPARE(mgr->getOverlayTmpFiles(), std::vector<QString>{file});
    QCOMPARE(QImage(file).size(), moved.size());
}

void tst_ImgSvcOverlay::placementsShareElementFiles()
{
    auto mgr = makeMgr();
    for (int k : {Qt::Key_Select, Qt::Key_Left, Qt::Key_Select,     // star, moved left
                  Qt::Key_Select, Qt::Key_Up, Qt::Key_Select,       // star again, moved up
                  Qt::Key_Right, Qt::Key_Select, Qt::Key_Select})   // heart where it stands
        clickKey(mgr.get(), k);
    const auto &commands = mgr->getOverlayCtl()->getCommandList();
    QCOMPARE(commands.size(), size_t(3));
    QString f1, f2, f3;
    const QRect r1 = commandRect(*commands.begin(), &f1);
    const QRect r2 = commandRect(*std::next(commands.begin()), &f2);
    commandRect(commands.back(), &f3);
    QVERIFY(r2.x() == r1.x() && r2.y() < r1.y()); // in placing order
    QCOMPARE(f1, f2);
    QVERIFY(f3 != f1);
    QCOMPARE(mgr->getOverlayTmpFiles(), (std::vector<QString>{f1, f3}));
}

void tst_ImgSvcOverlay::frameCoversThePicture()
{
    auto mgr = makeMgr();
    while (mgr->currentElement() != ImgSvcElementFactory::Frame)
        clickKey(mgr.get(), Qt::Key_Right);
    clickKey(mgr.get(), Qt::Key_Select); // placed at once: nothing to move
    QVERIFY(!mgr->isMoving());
    QCOMPARE(mgr->getOverlayCtl()->getCommandList().size(), size_t(1));
    QCOMPARE(commandRect(mgr->getOverlayCtl()->getCommandList().front()), QRect(0, 0, 400, 200));
}

void tst_ImgSvcOverlay::heldKeysStopAtTheEdge()
{
    auto mgr = makeMgr();
    clickKey(mgr.get(), Qt::Key_Select);
    for (Qt::Key key : {Qt::Key_Right, Qt::Key_Down}) {
        pressKey(mgr.get(), key);
        for (int i = 0; i < 30; ++i)
            pressRepeated(mgr.get(), key);
        releaseKey(mgr.get(), key);
    }
    QCOMPARE(mgr->currentRect().bottomRight(), QPoint(399, 199));
    // Back off by one small step: the element leaves the edge at once.
    clickKey(mgr.get(), Qt::Key_Left);
    QVERIFY(mgr->currentRect().right() < 399);
}

void tst_ImgSvcOverlay::softKeysWhileMoving()
{
    ReportRecorder rec;
    auto mgr = makeMgr(&rec);
    ZSoftKey *keys = mgr->getSoftKey();
    QCOMPARE(keys->text(ZSoftKey::LEFT), QStringLiteral("Done"));
    QCOMPARE(keys->text(ZSoftKey::RIGHT), QStringLiteral("Back"));
    clickKey(mgr.get(), Qt::Key_Select);
    QVERIFY(keys->text(ZSoftKey::LEFT) != QStringLiteral("Done"));
    clickKey(mgr.get(), Qt::Key_Context2); // cancels the move, stays on the screen
    QVERIFY(!mgr->isMoving());
    QVERIFY(mgr->getOverlayCtl()->getCommandList().empty());
    clickKey(mgr.get(), Qt::Key_Select);
    clickKey(mgr.get(), Qt::Key_Context1); // places
    QCOMPARE(mgr->getOverlayCtl()->getCommandList().size(), size_t(1));
    QCOMPARE(keys->text(ZSoftKey::LEFT), QStringLiteral("Done"));
    QVERIFY(deliveredReports(rec).isEmpty());
}

void tst_ImgSvcOverlay::doneHandsCommandsAndFilesOver()
{
    ReportRecorder rec;
    auto mgr = makeMgr(&rec);
    clickKey(mgr.get(), Qt::Key_Select);
    clickKey(mgr.get(), Qt::Key_Select);
    mgr->getOverlayCtl()->addCommand(new CountedOverlay);
    clickKey(mgr.get(), Qt::Key_Context1);
    clickKey(mgr.get(), Qt::Key_Context2);
    QCOMPARE(deliveredReports(rec), (QList<ReportRecorder::Report>{{CTL_EVENT_OVERLAY, 0}}));

    const std::list<MMOverlayImageCommand *> taken = mgr->getOverlayCtl()->getCommandList();
    const std::vector<QString> files = mgr->getOverlayTmpFiles();
    mgr.reset();
    QCOMPARE(CountedOverlay::alive, 1); // ours now
    QCOMPARE(files.size(), size_t(1));
    QVERIFY(QFile::exists(files.front()));
    for (MMOverlayImageCommand *c : taken)
        delete c;
    QCOMPARE(CountedOverlay::alive, 0);
    QFile::remove(files.front());
}

void tst_ImgSvcOverlay::backCleansUp()
{
    ReportRecorder rec;
    auto mgr = makeMgr(&rec);
    clickKey(mgr.get(), Qt::Key_Select);
    clickKey(mgr.get(), Qt::Key_Select);
    mgr->getOverlayCtl()->addCommand(new CountedOverlay);
    const std::vector<QString> files = mgr->getOverlayTmpFiles();
    QCOMPARE(files.size(), size_t(1));
    clickKey(mgr.get(), Qt::Key_Context2);
    clickKey(mgr.get(), Qt::Key_Context1);
    QCOMPARE(deliveredReports(rec), (QList<ReportRecorder::Report>{{CTL_EVENT_OVERLAY, 1}}));
    QVERIFY(QFile::exists(files.front())); // until the screen goes
    mgr.reset();
    QCOMPARE(CountedOverlay::alive, 0);
    QVERIFY(!QFile::exists(files.front()));
}

QTEST_MAIN(tst_ImgSvcOverlay)
#include "tst_imgsvc_overlay.moc"
