#include "ZGlobal.h"
#include "ZResourceTranslator.h"
#include "ZSkinService.h"
#include "datarows.h"
#include <QCoreApplication>
#include <QImage>
#include <QTest>

class tst_ToolkitResources : public QObject
{
    Q_OBJECT
private slots:
    void cleanup() { qunsetenv("VO_SCREEN_SIZE"); }

    void screenGeometry_data()
    {
        columns<QByteArray, QSize>({"value", "expected"});
        const QSize qvga(240, 320);
        QTest::newRow("unset") << QByteArray() << qvga;
        QTest::newRow("landscape, spaces") << QByteArray(" 320X240 ") << QSize(320, 240);
        QTest::newRow("missing height") << QByteArray("480x") << qvga;
        QTest::newRow("negative") << QByteArray("-240x320") << qvga;
        QTest::newRow("absurd") << QByteArray("100000x100000") << qvga;
    }

    // Title on top (a tenth of the height), soft keys at the bottom (about 9 %),
    // the home area from under the title to the bottom; all full width.
    void screenGeometry()
    {
        auto [value, expected] = fetch<QByteArray, QSize>({"value", "expected"});
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

    void languagePack_data()
    {
        columns<QString, QString, QString, QByteArray, QByteArray, QString>({"locale", "language", "context", "key", "english", "shown"});
        QTest::newRow("German") << "de_DE" << "de" << "ZNoticeDlg" << QByteArray("TXT_RID_NOTICE_ERROR")
                                << QByteArray("Error") << "Fehler";
        QTest::newRow("Swiss German") << "de_CH" << "de" << "ZNoticeDlg" << QByteArray("TXT_RID_NOTICE_WARNING")
                                      << QByteArray("Warning") << "Warnung";
        // Each catalogue is found from its region's locale, and a region the
        // catalogue was not written for finds the language's catalogue.
        QTest::newRow("French (Canada)") << "fr_CA" << "fr" << "ZNoticeDlg" << QByteArray("TXT_RID_NOTICE_ERROR")
                                         << QByteArray("Error") << "Erreur";
        QTest::newRow("Spanish (Mexico)") << "es_MX" << "es" << "ZSoftKey" << QByteArray("TXT_RID_SOFTKEY_BACK")
                                          << QByteArray("Back") << "Atrás";
        QTest::newRow("Portuguese (Brazil)") << "pt_BR" << "pt_BR" << "ZSoftKey" << QByteArray("TXT_RID_SOFTKEY_BACK")
                                             << QByteArray("Back") << "Voltar";
        QTest::newRow("Russian") << "ru_RU" << "ru" << "ZNoticeDlg" << QByteArray("TXT_RID_NOTICE_ERROR")
                                 << QByteArray("Error") << "Ошибка";
        QTest::newRow("Arabic (Egypt)") << "ar_EG" << "ar" << "ZNoticeDlg" << QByteArray("TXT_RID_NOTICE_ERROR")
                                        << QByteArray("Error") << "خطأ";
        QTest::newRow("Hindi") << "hi_IN" << "hi" << "ZNoticeDlg" << QByteArray("TXT_RID_NOTICE_ERROR")
                               << QByteArray("Error") << "त्रुटि";
        QTest::newRow("Chinese (China)") << "zh_CN" << "zh_CN" << "ZNoticeDlg" << QByteArray("TXT_RID_NOTICE_ERROR")
                                         << QByteArray("Error") << "错误";
        QTest::newRow("Indonesian") << "id_ID" << "id" << "ZSoftKey" << QByteArray("TXT_RID_SOFTKEY_BACK")
                                    << QByteArray("Back") << "Kembali";
        QTest::newRow("Swahili (Kenya)") << "sw_KE" << "sw" << "ZSoftKey" << QByteArray("TXT_RID_SOFTKEY_BACK")
                                         << QByteArray("Back") << "Rudi";
        QTest::newRow("Italian: English") << "it_IT" << "en" << "ZNoticeDlg" << QByteArray("TXT_RID_NOTICE_ERROR")
                                          << QByteArray("Error") << "Error";
        QTest::newRow("C locale: English") << "C" << "en" << "ZNoticeDlg" << QByteArray("TXT_RID_NOTICE_WARNING")
                                           << QByteArray("Warning") << "Warning";
        // Texts outside the catalogues are Qt's business: a key stays a key.
        QTest::newRow("unknown key") << "de_DE" << "de" << "ZNoticeDlg" << QByteArray("TXT_RID_NOTHING")
                                     << QByteArray("Nothing") << "TXT_RID_NOTHING";
        QTest::newRow("Qt's own") << "de_DE" << "de" << "QGuiApplication" << QByteArray("QT_LAYOUT_DIRECTION")
                                  << QByteArray() << "QT_LAYOUT_DIRECTION";
    }

    // The keys are translated by the built catalogues; a locale without one
    // gets English, and switching replaces the language rather than stacking.
    void languagePack()
    {
        auto [locale, language, context, key, english, shown] =
            fetch<QString, QString, QString, QByteArray, QByteArray, QString>({"locale", "language", "context", "key", "english", "shown"});
        QCOMPARE(ZResourceTranslator::install(QLocale(locale)), language);
        const char *comment = english.isNull() ? nullptr : english.constData();
        QCOMPARE(QCoreApplication::translate(context.toLatin1().constData(), key.constData(), comment), shown);
    }

    void skinIcons_data()
    {
        // mirrorOf: the left-turn icons mirror the right-turn ones
        columns<QString, bool, QString>({"name", "exists", "mirrorOf"});
        QTest::newRow("right") << "mp_vid_rot_90_rt_unp_nav" << true << QString();
        QTest::newRow("right pressed") << "mp_vid_rot_90_rt_p_nav" << true << QString();
        QTest::newRow("left") << "mp_vid_rot_90_lft_unp_nav" << true << "mp_vid_rot_90_rt_unp_nav";
        QTest::newRow("left pressed") << "mp_vid_rot_90_lft_p_nav" << true << "mp_vid_rot_90_rt_p_nav";
        QTest::newRow("error") << "error_pop" << true << QString();
        QTest::newRow("unknown") << "no_such_icon" << false << QString();
    }

    void skinIcons()
    {
        auto [name, exists, mirrorOf] = fetch<QString, bool, QString>({"name", "exists", "mirrorOf"});
        const QImage icon = ZSkinService::getPixmap(name).toImage();
        QCOMPARE(!icon.isNull(), exists);
        if (!mirrorOf.isEmpty()) {
            const QImage other = ZSkinService::getPixmap(mirrorOf).toImage();
            QVERIFY(icon != other); // the two turn different ways
            QCOMPARE(icon, other.mirrored(true, false));
        }
    }
};

QTEST_MAIN(tst_ToolkitResources)
#include "tst_toolkit_resources.moc"
