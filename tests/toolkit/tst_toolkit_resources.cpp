#include "ZGlobal.h"
#include "ZResourceTranslator.h"
#include "ZSkinService.h"
#include <QCoreApplication>
#include <QImage>
#include <QTest>
#include <QTranslator>

namespace {
// A loaded translation, as the host installs one.
class GermanTranslator final : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *sourceText, const char *, int) const override
    {
        return QByteArray(sourceText) == "TXT_RID_SOFTKEY_BACK" ? QStringLiteral("Zurück") : QString();
    }
};
} // namespace

class tst_ToolkitResources : public QObject
{
    Q_OBJECT
private slots:
    void cleanup() { qunsetenv("VO_SCREEN_SIZE"); }
    void screenGeometry_data();
    void screenGeometry();
    void translatorFallback_data();
    void translatorFallback();
    void skinIcons_data();
    void skinIcons();
};

void tst_ToolkitResources::screenGeometry_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QSize>("expected");
    const QSize qvga(240, 320);
    QTest::newRow("unset") << QByteArray() << qvga;
    QTest::newRow("landscape, spaces") << QByteArray(" 320X240 ") << QSize(320, 240);
    QTest::newRow("missing height") << QByteArray("480x") << qvga;
    QTest::newRow("negative") << QByteArray("-240x320") << qvga;
    QTest::newRow("absurd") << QByteArray("100000x100000") << qvga;
}

// Title on top (a tenth of the height), soft keys at the bottom (about 9 %),
// the home area from under the title to the bottom; all full width.
void tst_ToolkitResources::screenGeometry()
{
    QFETCH(QByteArray, value);
    QFETCH(QSize, expected);
    if (!value.isNull())
        qputenv("VO_SCREEN_SIZE", value);
    const QRect screen = ZGlobal::getScreenR(), title = ZGlobal::getTitleR(), keys = ZGlobal::getCstR();
    const QRect home = ZGlobal::getHomeR(false);
    QCOMPARE(screen, QRect(QPoint(0, 0), expected));
    for (const QRect &r : {title, keys, home})
        QVERIFY(!r.isEmpty() && screen.contains(r) && r.width() == screen.width());
    QCOMPARE(title.top(), 0);
    QCOMPARE(home.top(), title.bottom() + 1);
    QVERIFY(home.bottom() == screen.bottom() && keys.bottom() == screen.bottom());
    QVERIFY(qAbs(title.height() - screen.height() * 0.10) <= 1.0);
    QVERIFY(qAbs(keys.height() - screen.height() * 0.09) <= 1.0);
}

void tst_ToolkitResources::translatorFallback_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("english");
    QTest::addColumn<bool>("german");
    QTest::addColumn<QString>("shown");
    QTest::newRow("German wins") << QByteArray("TXT_RID_SOFTKEY_BACK") << QByteArray("Back") << true << "Zurück";
    QTest::newRow("German lacks it") << QByteArray("TXT_RID_SOFTKEY_OK") << QByteArray("OK") << true << "OK";
    QTest::newRow("text key") << QByteArray("TXT_RID_SOFTKEY_BACK") << QByteArray("Back") << false << "Back";
    QTest::newRow("capitals") << QByteArray("MENU_CROP") << QByteArray("Crop") << false << "Crop";
    QTest::newRow("plain text") << QByteArray("Save picture") << QByteArray("button") << false << "Save picture";
    QTest::newRow("one word") << QByteArray("CROP") << QByteArray("Crop") << false << "CROP";
    QTest::newRow("no English") << QByteArray("TXT_RID_NOTHING") << QByteArray() << false << "TXT_RID_NOTHING";
    QTest::newRow("Qt's own") << QByteArray("QT_LAYOUT_DIRECTION") << QByteArray("RTL") << false
                              << "QT_LAYOUT_DIRECTION";
}

// The English text rides in the disambiguation; a translation loaded by the
// host, even before the first window, is asked first.
void tst_ToolkitResources::translatorFallback()
{
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, english);
    QFETCH(bool, german);
    QFETCH(QString, shown);
    GermanTranslator translator; // removes itself when destroyed
    if (german)
        QCoreApplication::installTranslator(&translator);
    ZResourceTranslator::ensureInstalled(); // what every window and popup does
    const char *comment = english.isNull() ? nullptr : english.constData();
    QCOMPARE(QCoreApplication::translate("ImgEditor", key.constData(), comment), shown);
}

void tst_ToolkitResources::skinIcons_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("exists");
    QTest::addColumn<QString>("mirrorOf"); // the left-turn icons mirror the right-turn ones
    QTest::newRow("right") << "mp_vid_rot_90_rt_unp_nav" << true << QString();
    QTest::newRow("right pressed") << "mp_vid_rot_90_rt_p_nav" << true << QString();
    QTest::newRow("left") << "mp_vid_rot_90_lft_unp_nav" << true << "mp_vid_rot_90_rt_unp_nav";
    QTest::newRow("left pressed") << "mp_vid_rot_90_lft_p_nav" << true << "mp_vid_rot_90_rt_p_nav";
    QTest::newRow("error") << "error_pop" << true << QString();
    QTest::newRow("unknown") << "no_such_icon" << false << QString();
}

void tst_ToolkitResources::skinIcons()
{
    QFETCH(QString, name);
    QFETCH(bool, exists);
    QFETCH(QString, mirrorOf);
    const QImage icon = ZSkinService::getPixmap(name).toImage();
    QCOMPARE(!icon.isNull(), exists);
    if (!mirrorOf.isEmpty()) {
        const QImage other = ZSkinService::getPixmap(mirrorOf).toImage();
        QVERIFY(icon != other); // the two turn different ways
        QCOMPARE(icon, other.mirrored(true, false));
    }
}

QTEST_MAIN(tst_ToolkitResources)
#include "tst_toolkit_resources.moc"
