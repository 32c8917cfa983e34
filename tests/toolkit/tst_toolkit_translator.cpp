#include "ZMainWidget.h"
#include "ZNoticeDlg.h"
#include "ZResourceTranslator.h"
#include <QCoreApplication>
#include <QLabel>
#include <QTest>

namespace {
// A loaded translation, as the host would install one.
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

class tst_ToolkitTranslator : public QObject
{
    Q_OBJECT
private slots:
    // First, so that no window or popup has been made before it.
    void loadedTranslationWins_data();
    void loadedTranslationWins();
    void fallback_data();
    void fallback();
    void noticeTitleInEnglish();
};

void tst_ToolkitTranslator::fallback_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("comment");
    QTest::addColumn<QString>("shown");
    QTest::newRow("text key") << QByteArray("TXT_RID_SOFTKEY_BACK") << QByteArray("Back") << "Back";
    QTest::newRow("resource id") << QByteArray("RESID_SAVE_AS") << QByteArray("Save as") << "Save as";
    QTest::newRow("capitals") << QByteArray("MENU_CROP") << QByteArray("Crop") << "Crop";
    QTest::newRow("plain text") << QByteArray("Save picture") << QByteArray("button") << "Save picture";
    QTest::newRow("one word") << QByteArray("CROP") << QByteArray("Crop") << "CROP";
    QTest::newRow("key without English") << QByteArray("TXT_RID_NOTHING") << QByteArray() << "TXT_RID_NOTHING";
    QTest::newRow("Qt's own") << QByteArray("QT_LAYOUT_DIRECTION") << QByteArray("Translate to RTL") << "QT_LAYOUT_DIRECTION";
}

void tst_ToolkitTranslator::fallback()
{
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, comment);
    QFETCH(QString, shown);
    ZResourceTranslator::ensureInstalled();
    const char *disambiguation = comment.isNull() ? nullptr : comment.constData();
    QCOMPARE(QCoreApplication::translate("ImgEditor", key.constData(), disambiguation), shown);
    QCOMPARE(QObject::tr(key.constData(), disambiguation), shown);
}

void tst_ToolkitTranslator::loadedTranslationWins_data()
{
    QTest::addColumn<bool>("loadedBeforeFirstWindow");
    QTest::newRow("loaded before the first window") << true;
    QTest::newRow("loaded after a window") << false;
}

void tst_ToolkitTranslator::loadedTranslationWins()
{
    QFETCH(bool, loadedBeforeFirstWindow);
    GermanTranslator german;
    if (loadedBeforeFirstWindow)
        QCoreApplication::installTranslator(&german);
    ZMainWidget window; // installs the fallback if it is not there yet
    if (!loadedBeforeFirstWindow)
        QCoreApplication::installTranslator(&german);

    QCOMPARE(QObject::tr("TXT_RID_SOFTKEY_BACK", "Back"), QStringLiteral("Zurück"));
    QCOMPARE(QObject::tr("TXT_RID_SOFTKEY_OK", "OK"), QStringLiteral("OK"));
    QCoreApplication::removeTranslator(&german);
    QCOMPARE(QObject::tr("TXT_RID_SOFTKEY_BACK", "Back"), QStringLiteral("Back"));
}

void tst_ToolkitTranslator::noticeTitleInEnglish()
{
    ZNoticeDlg notice(ZNoticeDlg::Error, 0, QString(), QStringLiteral("Storage full"));
    QStringList texts;
    for (const QLabel *label : notice.findChildren<QLabel *>())
        texts << label->text();
    QVERIFY2(texts.contains(QStringLiteral("Error")), qPrintable(texts.join(QLatin1Char('|'))));
    for (const QString &text : std::as_const(texts))
        QVERIFY2(!text.contains(QLatin1String("TXT_RID")), qPrintable(text));
}

QTEST_MAIN(tst_ToolkitTranslator)
#include "tst_toolkit_translator.moc"
