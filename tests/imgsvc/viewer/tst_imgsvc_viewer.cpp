#include "ImgSvcTestSupport.h"
#include "ImgSvcFitMapper.h"
#include "ImgSvcViewer.h"
#include "testimages.h"
#include <QTemporaryDir>
#include <QTransform>
#include <QtTest>

// Display edits as letters: L, R (quarter turns), H, V (mirrors), made on
// the viewer and, for reference, with QImage's own transforms.
static QImage applyEdits(ImgSvcViewer &v, QImage img, const QString &edits)
{
    for (QChar c : edits) {
        switch (c.toLatin1()) {
        case 'L': v.rotate90L(); img = img.transformed(QTransform().rotate(270)); break;
        case 'R': v.rotate90R(); img = img.transformed(QTransform().rotate(90)); break;
        case 'H': v.mirrorH(); img = img.mirrored(true, false); break;
        case 'V': v.mirrorV(); img = img.mirrored(false, true); break;
        }
    }
    return img;
}

class tst_ImgSvcViewer : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        m_image = quadrantImage(64, 48);
        writeSource(m_src, m_dir.filePath("small.png"), m_image);
    }

    void editsChangeOnlyTheDisplay_data()
    {
        QTest::addColumn<QString>("edits");
        QTest::newRow("right") << "R";
        QTest::newRow("left") << "L";
        QTest::newRow("mirror h") << "H";
        QTest::newRow("mirror v") << "V";
        QTest::newRow("four rights") << "RRRR";
        QTest::newRow("turned mirror") << "RHL";
        QTest::newRow("turned h is v") << "RHLV";
    }

    void editsChangeOnlyTheDisplay()
    {
        QFETCH(QString, edits);
        const QByteArray before = testimages::bytes(m_dir.filePath("small.png"));
        ImgSvcViewer v(nullptr, nullptr);
        v.resize(240, 320);
        v.show();
        v.setInput(&m_src);
        v.createFitWindowImage();
        QCOMPARE(v.displayImage().convertToFormat(QImage::Format_RGB32), m_image); // small pictures are shown as they are

        const QImage expected = applyEdits(v, m_image, edits);
        const QImage edited = v.displayImage().convertToFormat(QImage::Format_RGB32);
        QCOMPARE(edited, expected);
        QCOMPARE(testimages::bytes(m_dir.filePath("small.png")), before);

        // What is painted follows the display: the top-left quadrant's colour.
        const QImage painted = v.grab().toImage();
        const QPoint probe = ImgSvcFitMapper(edited.size(), v.rect()).displayRect().topLeft().toPoint() + QPoint(4, 4);
        QCOMPARE(QColor(painted.pixel(probe)), QColor(edited.pixel(2, 2)));

        // Growing the window decodes again and keeps the edits; a fresh decode drops them.
        v.resize(480, 640);
        QCOMPARE(v.displayImage().convertToFormat(QImage::Format_RGB32), expected);
        v.createFitWindowImage();
        QCOMPARE(v.displayImage().convertToFormat(QImage::Format_RGB32), m_image);
    }

private:
    QTemporaryDir m_dir;
    QImage m_image;
    MMImageSource m_src;
};

QTEST_MAIN(tst_ImgSvcViewer)
#include "tst_imgsvc_viewer.moc"
