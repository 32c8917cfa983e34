#include "ZMediaController.h"
#include "ZSkinService.h"
#include <QImage>
#include <QTest>

namespace {
const char *const kRotateRight[2] = {"mp_vid_rot_90_rt_unp_nav", "mp_vid_rot_90_rt_p_nav"};
const char *const kRotateLeft[2] = {"mp_vid_rot_90_lft_unp_nav", "mp_vid_rot_90_lft_p_nav"};

QImage imageOf(const QString &name)
{
    return ZSkinService::getPixmap(name).toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

// Rows of the controller's rendering that differ between two states.
QList<int> changedRows(const QImage &a, const QImage &b)
{
    QList<int> rows;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (a.pixel(x, y) != b.pixel(x, y)) {
                rows << y;
                break;
            }
        }
    }
    return rows;
}
} // namespace

class tst_ToolkitSkin : public QObject
{
    Q_OBJECT
private slots:
    void rotateIconPairs_data();
    void rotateIconPairs();
    void otherNames();
    void controllerDrawsIconInItsPlace_data();
    void controllerDrawsIconInItsPlace();
};

void tst_ToolkitSkin::rotateIconPairs_data()
{
    QTest::addColumn<bool>("pressed");
    QTest::newRow("unpressed") << false;
    QTest::newRow("pressed") << true;
}

// Left and right are mirror images of each other, and pressed looks different
// from unpressed; a swapped or missing name shows up here.
void tst_ToolkitSkin::rotateIconPairs()
{
    QFETCH(bool, pressed);
    const QImage right = imageOf(QLatin1String(kRotateRight[pressed]));
    const QImage left = imageOf(QLatin1String(kRotateLeft[pressed]));
    QVERIFY(!right.isNull());
    QVERIFY(right != right.mirrored(true, false)); // has a direction at all
    QCOMPARE(left, right.mirrored(true, false));
    QVERIFY(right != imageOf(QLatin1String(kRotateRight[!pressed])));
}

void tst_ToolkitSkin::otherNames()
{
    const QImage error = imageOf(QStringLiteral("error_pop"));
    const QColor ring = error.pixelColor(error.width() / 2, error.height() / 5);
    QVERIFY2(ring.red() > 2 * ring.green(), "the error sign is red");
    QVERIFY(ZSkinService::getPixmap(QStringLiteral("no_such_icon")).isNull());
}

void tst_ToolkitSkin::controllerDrawsIconInItsPlace_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<bool>("above");
    QTest::addColumn<bool>("pressed");
    QTest::newRow("up") << int(ZMediaController::BTN_UP) << true << false;
    QTest::newRow("down pressed") << int(ZMediaController::BTN_DOWN) << false << true;
}

void tst_ToolkitSkin::controllerDrawsIconInItsPlace()
{
    QFETCH(int, button);
    QFETCH(bool, above);
    QFETCH(bool, pressed);
    // Constructed the way the editor does, by value: 0, 78, 1, 0, 0, 1.
    QWidget host;
    auto *bar = new ZMediaController(&host, 0, ZSkinService::WidgetClsID(78), ZMediaController::ColumnA(1),
                                     ZMediaController::ColumnB(0), ZMediaController::ProgressWidget(0),
                                     ZMediaController::MeterStyle(1));
    bar->resize(bar->sizeHint());
    const QRect pad = bar->getCurr5WayButton();
    QVERIFY(!pad.isEmpty());
    QVERIFY(bar->rect().contains(pad));
    const QImage empty = bar->grab().toImage();

    const auto which = ZMediaController::FiveWayButtons(button);
    bar->set5WayButtonPixmap(which, QLatin1String(kRotateRight[1]), QLatin1String(kRotateRight[0]));
    const QImage unpressed = bar->grab().toImage();
    bar->setButtonPressed(which, pressed);
    const QImage shown = bar->grab().toImage();
    QCOMPARE(shown != unpressed, pressed);

    const QList<int> rows = changedRows(empty, shown);
    QVERIFY(!rows.isEmpty());
    for (int y : rows)
        QVERIFY2(above ? y <= pad.center().y() : y >= pad.center().y(), qPrintable(QString::number(y)));
}

QTEST_MAIN(tst_ToolkitSkin)
#include "tst_toolkit_skin.moc"
