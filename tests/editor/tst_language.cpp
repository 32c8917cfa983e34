// The editor in the user's language: chosen from the system locale at start
// (this test runs with LC_ALL=de_DE.UTF-8), switched at run time, with English
// for a locale that has no catalogue, right to left for Arabic. The first row
// must run first.
#include "ImgEditor5wayBtn.h"
#include "ImgImplImageStore.h"
#include "ImgImplInterface.h"
#include "ImgImplMainFrame.h"
#include "ZOptionsMenu.h"
#include "ZResourceTranslator.h"
#include "ZSoftKey.h"
#include "editortestutil.h"
#include "testimages.h"
#include "datarows.h"

#include <QAbstractButton>
#include <QTemporaryDir>
#include <QtTest>

using editortest::press;
using editortest::visibleNotice;

class TestLanguage : public QObject
{
    Q_OBJECT
    QTemporaryDir m_work;
    QTemporaryDir m_files;

    QString photo()
    {
        const QString path = m_files.filePath("sprache.png");
        if (!QFileInfo::exists(path))
            testimages::write(path, 320, 240, "PNG");
        return path;
    }

    static QStringList menuTexts(ImgImplMainFrame *frame)
    {
        QStringList texts;
        for (int id : frame->menu()->visibleItemIds())
            texts << frame->menu()->itemText(id);
        return texts;
    }

private slots:
    void init() { ImgImplImageStore::setWorkingDirForTest(m_work.path()); }

    void cleanup() { editortest::releaseEditorAndNotices(); }

    void screensFollowTheChosenLanguage_data()
    {
        // locale: null: none chosen, the system's (first row only)
        // softKeys: left, right, right after an edit
        columns<QString, QString, QString, QStringList, QStringList, QString>({"locale", "language", "title", "menu", "softKeys", "inUse"});
        const QStringList german{"90° nach links drehen", "90° nach rechts drehen", "Horizontal spiegeln",
                                 "Vertikal spiegeln", "Zuschneiden", "Größe ändern",
                                 "Elemente hinzufügen", "Stil"};
        const QStringList english{"Rotate 90 left", "Rotate 90 right", "Mirror Horizontal", "Mirror Vertical",
                                  "Crop", "Resize", "Add Elements", "Style"};
        const QString germanInUse =
            "Die Datei wird gerade bearbeitet und kann nicht gleichzeitig mehrfach bearbeitet werden.";
        const QString englishInUse =
            "The file is being edited now, it can not be edited in more instances at one time.";
        const QStringList germanKeys{"Optionen", "Zurück", "Übernehmen"};
        const QStringList englishKeys{"Options", "Back", "Apply"};
        QTest::newRow("system: German") << QString() << "de" << "Bearbeiten" << german << germanKeys << germanInUse;
        QTest::newRow("German") << "de_DE" << "de" << "Bearbeiten" << german << germanKeys << germanInUse;
        QTest::newRow("Austrian German") << "de_AT" << "de" << "Bearbeiten" << german << germanKeys << germanInUse;
        QTest::newRow("Italian: no catalogue, English")
            << "it_IT" << "en" << "Edit" << english << englishKeys << englishInUse;
        QTest::newRow("English") << "en_GB" << "en" << "Edit" << english << englishKeys << englishInUse;
        QTest::newRow("Arabic (Egypt)")
            << "ar_EG" << "ar" << "تعديل"
            << QStringList{"تدوير 90° لليسار", "تدوير 90° لليمين", "انعكاس أفقي", "انعكاس رأسي", "اقتصاص",
                           "تغيير الحجم", "إضافة عناصر", "نمط"}
            << QStringList{"خيارات", "رجوع", "تطبيق"}
            << "يجري تعديل الملف الآن، ولا يمكن تعديله مرتين في الوقت نفسه.";
        QTest::newRow("Chinese (China)")
            << "zh_CN" << "zh_CN" << "编辑"
            << QStringList{"向左旋转 90°", "向右旋转 90°", "水平镜像", "垂直镜像", "裁剪", "调整大小", "添加元素", "风格"}
            << QStringList{"选项", "返回", "应用"} << "该文件正在编辑中，不能同时编辑两次。";
    }

    void screensFollowTheChosenLanguage()
    {
        auto [locale, language, title, menu, softKeys, inUse] =
            fetch<QString, QString, QString, QStringList, QStringList, QString>({"locale", "language", "title", "menu", "softKeys", "inUse"});
        if (locale.isNull())
            QVERIFY2(QLocale::system().name().startsWith(language), "run this test with LC_ALL=de_DE.UTF-8");
        else
            QCOMPARE(ZResourceTranslator::install(QLocale(locale)), language);

        auto *frame = ImgImplInterface::launchImageEditor(photo(), nullptr, nullptr);
        const bool rtl = language == "ar";
        QCOMPARE(frame->layoutDirection(), rtl ? Qt::RightToLeft : Qt::LeftToRight);
        QCOMPARE(frame->mainWidgetTitle(), title);
        QCOMPARE(menuTexts(frame), menu);
        QCOMPARE(frame->softKeys()->text(ZSoftKey::LEFT), softKeys.at(0));
        QCOMPARE(frame->softKeys()->text(ZSoftKey::RIGHT), softKeys.at(1));
        press(frame, Qt::Key_Up); // a quick edit: the right key now applies
        QCOMPARE(frame->softKeys()->text(ZSoftKey::RIGHT), softKeys.at(2));

        // Whatever the direction, each soft key's label stays over its key
        // and the rotation bar shows the turns where the keys make them.
        const QList<QWidget *> keys = frame->softKeys()->findChildren<QWidget *>();
        QCOMPARE(keys.size(), 2);
        QVERIFY(keys[0]->geometry().right() < keys[1]->geometry().left());
        QCOMPARE(static_cast<QAbstractButton *>(keys[0])->text(), softKeys.at(0));
        const QImage bar = frame->rotationBar()->grab().toImage();
        frame->rotationBar()->setLayoutDirection(rtl ? Qt::LeftToRight : Qt::RightToLeft);
        QCOMPARE(frame->rotationBar()->grab().toImage(), bar);

        // A second editor on the same file is refused with a notice.
        auto *second = new ImgImplMainFrame(photo(), nullptr, nullptr, 1);
        QTRY_VERIFY(visibleNotice());
        QCOMPARE(visibleNotice()->text(), inUse);
        delete second;
    }
};

QTEST_MAIN(TestLanguage)
#include "tst_language.moc"
