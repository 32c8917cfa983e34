#include "ImgSvcTestSupport.h"
#include "ImgSvcFitMapper.h"
#include "ImgSvcViewer.h"
#include "MMImageSource.h"
#include "ZGlobal.h"
#include <QCryptographicHash>
#include <QFile>
#include <QTemporaryDir>
#include <QTransform>
#include <QtTest>

// Display edits as letters: L, R (quarter turns), H, V (mirrors).
static void applyEdits(ImgSvcViewer &v, const QString &edits)
{
    for (QChar c : edits) {
        switch (c.toLatin1()) {
        case 'L': v.rotate90L(); break;
        case 'R': v.rotate90R(); break;
        case 'H': v.mirrorH(); break;
        case 'V': v.mirrorV(); break;
        }
    }
}

static QImage reference(QImage img, const QString &edits)
{
    for (QChar c : edits) {
        switch (c.toLatin1()) {
        case 'L': img = img.transformed(QTransform().rotate(270)); break;
        case 'R': img = img.transformed(QTransform().rotate(90)); break;
        case 'H': img = img.mirrored(true, false); break;
        case 'V': img = img.mirrored(false, true); break;
        }
    }
    return img;
}

static QByteArray digest(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return QByteArray();
    return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha1);
}

class tst_ImgSvcViewer : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void editsChangeOnlyTheDisplay_data();
    void editsChangeOnlyTheDisplay();
    void largeInputIsDecodedToFitTheWindow();
    void windowWithoutSizeUsesHomeArea();
    void freshDecodeDropsDisplayEdits();

private:
    QTemporaryDir m_dir;
    QString m_small;
    QImage m_smallImage;
};

void tst_ImgSvcViewer::initTestCase()
{
    m_smallImage = quadrantImage(64, 48);
    m_small = writeImage(m_dir.filePath("small.png"), m_smallImage);
    QVERIFY(!m_small.isEmpty());
}

void tst_ImgSvcViewer::editsChangeOnlyTheDisplay_data()
{
    QTest::addColumn<QString>("edits");
    QTest::addColumn<bool>("identity");
    QTest::newRow("right") << "R" << false;
    QTest::newRow("left") << "L" << false;
    QTest::newRow("mirror h") << "H" << false;
    QTest::newRow("mirror v") << "V" << false;
    QTest::newRow("four rights") << "RRRR" << true;
    QTest::newRow("left undoes right") << "RL" << true;
    QTest::newRow("h twice") << "HH" << true;
    QTest::newRow("h v is half turn") << "HVRR" << true;
    QTest::newRow("turned mirror") << "RHL" << false;
    QTest::newRow("turned h is v") << "RHLV" << true;
}

void tst_ImgSvcViewer::editsChangeOnlyTheDisplay()
{
    QFETCH(QString, edits);
    QFETCH(bool, identity);
    const QByteArray before = digest(m_small);
    MMImageSource src;
    src.setFile(m_small.toStdString());
    ImgSvcViewer v(nullptr, nullptr);
    v.resize(240, 320);
    v.setInput(&src);
    v.createFitWindowImage();
    const QImage shown = v.displayImage().convertToFormat(QImage::Format_RGB32);
    QCOMPARE(shown, m_smallImage); // small pictures are shown as they are

    applyEdits(v, edits);
    const QImage edited = v.displayImage().convertToFormat(QImage::Format_RGB32);
    QCOMPARE(edited, reference(m_smallImage, edits));
    QCOMPARE(edited == m_smallImage, identity);
    QCOMPARE(digest(m_small), before);

    // What is painted follows the display: the top-left quadrant's colour.
    const QImage painted = v.grab().toImage();
    const ImgSvcFitMapper map(edited.size(), QRect(0, 0, 240, 320));
    const QPoint probe = map.displayRect().topLeft().toPoint() + QPoint(4, 4);
    QCOMPARE(QColor(painted.pixel(probe)), QColor(edited.pixel(2, 2)));
}

void tst_ImgSvcViewer::largeInputIsDecodedToFitTheWindow()
{
    const QString big = writeImage(m_dir.filePath("big.png"), quadrantImage(1000, 500));
    MMImageSource src;
    src.setFile(big.toStdString());
    ImgSvcViewer v(nullptr, nullptr);
    v.resize(240, 320);
    v.setInput(&src);
    v.createFitWindowImage();
    QCOMPARE(v.displayImage().size(), QSize(240, 120));
    v.rotate90R();
    QCOMPARE(v.displayImage().size(), QSize(120, 240));
}

void tst_ImgSvcViewer::windowWithoutSizeUsesHomeArea()
{
    const QString big = writeImage(m_dir.filePath("tall.png"), quadrantImage(600, 3000));
    MMImageSource src;
    src.setFile(big.toStdString());
    ImgSvcViewer v(nullptr, nullptr);
    v.setInput(&src);
    v.createFitWindowImage();
    QCOMPARE(v.displayImage().height(), ZGlobal::getHomeR(false).height());
}

void tst_ImgSvcViewer::freshDecodeDropsDisplayEdits()
{
    MMImageSource src;
    src.setFile(m_small.toStdString());
    ImgSvcViewer v(nullptr, nullptr);
    v.resize(240, 320);
    v.setInput(&src);
    v.createFitWindowImage();
    v.rotate90R();
    v.createFitWindowImage();
    QCOMPARE(v.displayImage().convertToFormat(QImage::Format_RGB32), m_smallImage);

    // Growing the window decodes again but keeps the display edits.
    v.rotate90R();
    v.resize(480, 640);
    QCOMPARE(v.displayImage().convertToFormat(QImage::Format_RGB32), reference(m_smallImage, "R"));
}

QTEST_MAIN(tst_ImgSvcViewer)
#include "tst_imgsvc_viewer.moc"
