// Every screen and notice, in every language, on each screen size the handset
// comes in: each text fits its box whole (not cut, not run past the edge, not
// elided unless it is a file name) and every character has a glyph in the
// font that draws it.
#include "ImgEditor5wayBtn.h"
#include "ImgImplImageStore.h"
#include "ImgImplInterface.h"
#include "ImgImplMainFrame.h"
#include "ImgSvcCropCtl.h"
#include "ImgSvcCropMgr.h"
#include "ImgSvcEffectCtl.h"
#include "ImgSvcEffectMgr.h"
#include "ImgSvcOverlayCtl.h"
#include "ImgSvcOverlayMgr.h"
#include "ImgSvcResizeMgr.h"
#include "ImgSvcSaveMgr.h"
#include "ImgSvcSaveNamePage.h"
#include "ImgSvcWaitDlg.h"
#include "MMImageSource.h"
#include "ZGlobal.h"
#include "ZMainWidget.h"
#include "ZNoticeDlg.h"
#include "ZOptionsMenu.h"
#include "ZResourceTranslator.h"
#include "ZSoftKey.h"
#include "ZSoftKeyButton.h"
#include "ZTheme.h"
#include "datarows.h"
#include <QAbstractItemView>
#include <QGlyphRun>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QRawFont>
#include <QTemporaryDir>
#include <QTextLayout>
#include <QtTest>
#include <memory>

namespace {
// The notices and questions, by the context and key that show them.
struct NoticeText
{
    const char *context, *key, *english;
};
const NoticeText kNotices[] = {
    {"ImgImplMainFrame", "TXT_RID_NOTICE_NO_WORKING_STORAGE",
     "The editor's working storage can not be used, so the picture can not be edited."},
    {"ImgImplMainFrame", "TXT_RID_NOTICE_CANNOT_OPEN_IMAGE", "The picture can not be opened for editing."},
    {"ImgImplMainFrame", "RESID_TBD",
     "The file is being edited now, it can not be edited in more instances at one time."},
    {"ImgImplMainFrame",
     "TXT_RID_INSTRUCTIONALTXT_CURRENTLY_SELECTED_MEMORY_IS_FULL_SELECT_ANOTHER_MEMORY_LOCATION_OR_DELETE_FILES",
     "Because the currently selected memory is full, you must select another memory location or delete files to "
     "make room."},
    {"ImgSvcOverlayMgr", "Could not prepare the element.", nullptr},
    {"HostViewer", "This picture can not be shown.", nullptr},
    {"ImgSvcSaveMgr", "TXT_RID_SAVE_DISCARD_QUESTION", "Discard all edits? The picture stays as it was."},
};

const NoticeText kWaits[] = {
    {"ImgImplMainFrame", "TXT_RID_NOTICE_OPENING", "Opening..."},
    {"ImgSvcSaveMgr", "TXT_RID_SAVE_SAVING", "Saving..."},
};

// Lays text out in box as the widget does (wrapped or on one line) and
// says what does not fit or has no glyph.
QStringList misfits(const QString &text, const QFont &font, const QRect &box, bool wrap)
{
    QStringList found;
    if (text.isEmpty())
        return found;
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(wrap ? QTextOption::WordWrap : QTextOption::NoWrap);
    layout.setTextOption(option);
    qreal height = 0, widest = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(wrap ? box.width() : 100000);
        line.setPosition(QPointF(0, height));
        height += line.height();
        widest = qMax(widest, line.naturalTextWidth());
    }
    layout.endLayout();
    if (widest > box.width() + 0.5)
        found << QString("%1 px wide in %2").arg(widest).arg(box.width());
    // Half a line of slack: line spacing is not ink.
    if (height > box.height() + QFontMetricsF(font).height() / 2)
        found << QString("%1 px high in %2").arg(height).arg(box.height());

    // The fonts that really draw it, fallbacks included.
    QList<QRawFont> used;
    for (const QGlyphRun &run : layout.glyphRuns()) {
        used << run.rawFont();
        if (run.glyphIndexes().contains(0))
            found << "a missing glyph in " + run.rawFont().familyName();
    }
    for (const QChar c : text) {
        if (c.isSpace() || c.category() == QChar::Other_Format || c.isSurrogate())
            continue;
        if (!std::any_of(used.cbegin(), used.cend(), [c](const QRawFont &f) { return f.supportsCharacter(c); }))
            found << QString("no font for U+%1").arg(c.unicode(), 4, 16, QChar('0'));
    }
    return found;
}

// Every text on the windows on screen.
QStringList misfitsOnScreen()
{
    QStringList found;
    auto check = [&found](const QWidget *w, const QString &text, const QFont &font, const QRect &box, bool wrap) {
        for (const QString &m : misfits(text, font, box, wrap))
            found << QString("%1 \"%2\": %3").arg(w->metaObject()->className(), text, m);
    };
    for (QWidget *top : QApplication::topLevelWidgets()) {
        if (!top->isVisible())
            continue;
        const QRect screen = top->rect();
        QList<QWidget *> widgets = top->findChildren<QWidget *>();
        widgets << top;
        for (QWidget *w : widgets) {
            if (!w->isVisibleTo(top))
                continue;
            const QRect at(w->mapTo(top, QPoint(0, 0)), w->size());
            if (auto *label = qobject_cast<QLabel *>(w); label && !label->text().isEmpty()) {
                if (!screen.contains(at))
                    found << QString("\"%1\" runs off its window").arg(label->text());
                // The title bar elides what does not fit: its whole title must.
                auto *main = qobject_cast<ZMainWidget *>(top);
                const bool title = main && at == ZGlobal::getTitleR();
                const QString text = title ? main->mainWidgetTitle() : label->text();
                const int indent = title ? ZTheme::scaled(6) : 0;
                check(label, text, label->font(), label->contentsRect().adjusted(indent, 0, -indent, 0),
                      label->wordWrap());
            } else if (auto *key = qobject_cast<ZSoftKeyButton *>(w)) {
                const int margin = ZTheme::scaled(6);
                check(key, key->text(), key->font(), key->rect().adjusted(margin, 0, -margin, 0), false);
            } else if (auto *menu = qobject_cast<ZOptionsMenu *>(w); menu && menu->isOpen()) {
                const int inset = ZTheme::scaled(2) + ZTheme::scaled(8);
                const QRect row(0, 0, menu->width() - 2 * inset, menu->fontMetrics().height() + ZTheme::scaled(10));
                for (int id : menu->visibleItemIds())
                    check(menu, menu->itemText(id), menu->font(), row, false);
            } else if (auto *list = qobject_cast<QListWidget *>(w)) {
                for (int i = 0; i < list->count(); ++i) {
                    // The style's text margins on either side of an item.
                    const QRect item = list->visualItemRect(list->item(i)).adjusted(4, 0, -4, 0);
                    check(list, list->item(i)->text(), list->font(), QRect(0, 0, item.width(), item.height()), false);
                }
            }
        }
    }
    return found;
}

void press(QWidget *target, int key)
{
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(target, &down);
    QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
    QApplication::sendEvent(target, &up);
}
} // namespace

class TestTextsFit : public QObject
{
    Q_OBJECT
    QTemporaryDir m_work, m_files;
    QString m_photo;
    MMImageSource m_source;
    QStringList m_found;

    void look(const char *screen)
    {
        QCoreApplication::processEvents();
        for (const QString &m : misfitsOnScreen())
            m_found << QString("%1: %2").arg(screen, m);
    }

private slots:
    void initTestCase()
    {
        ImgImplImageStore::setWorkingDirForTest(m_work.path());
        m_photo = m_files.filePath("photo.png");
        QImage photo(640, 480, QImage::Format_RGB32);
        photo.fill(QColor(90, 140, 60));
        QVERIFY(photo.save(m_photo));
        m_source.setFile(m_photo.toStdString());
    }

    void cleanupTestCase() { QGuiApplication::setLayoutDirection(Qt::LeftToRight); }

    void everyTextFits_data()
    {
        columns<QString, QByteArray>({"locale", "screen"});
        const QStringList locales = QDir(VO_SOURCE_DIR "/translations")
                                        .entryList({"voimageeditor_*.ts"}, QDir::Files)
                                        .replaceInStrings(QRegularExpression("voimageeditor_(.*)\\.ts"), "\\1");
        for (const QString &locale : locales)
            for (const char *size : {"240x320", "320x240", "480x640"})
                QTest::addRow("%s %s", qPrintable(locale), size) << locale << QByteArray(size);
    }

    void everyTextFits()
    {
        auto [locale, screen] = fetch<QString, QByteArray>({"locale", "screen"});
        qputenv("VO_SCREEN_SIZE", screen);
        QCOMPARE(ZResourceTranslator::install(QLocale(locale)), locale == "en" ? QString("en") : locale);
        m_found.clear();

        // The editor: the main view, the menu, an edit waiting to be applied.
        auto *frame = ImgImplInterface::launchImageEditor(m_photo, nullptr, nullptr);
        QVERIFY(frame);
        look("main view");
        press(frame, Qt::Key_Context1);
        look("options menu");
        press(frame, Qt::Key_Context2);
        press(frame, Qt::Key_Up);
        look("turned");
        ImgImplInterface::releaseImageEditor();

        {
            ImgSvcCropMgr crop(nullptr, nullptr);
            crop.getCropCtl()->setInput(&m_source);
            crop.show();
            for (const char *hint : {"crop: lower right", "crop: upper left", "crop: move"}) {
                look(hint);
                press(&crop, Qt::Key_Select);
            }
        }
        for (const QSize input : {QSize(640, 480), QSize(20, 20)}) {
            ImgSvcResizeMgr resize;
            resize.launchResizeDlg(input);
            look("resize");
        }
        {
            ImgSvcEffectMgr effect;
            effect.getEffectCtl()->setInput(&m_source);
            effect.launchEffectDlg();
            look("style");
        }
        {
            ImgSvcOverlayMgr overlay;
            overlay.getOverlayCtl()->setInput(&m_source);
            overlay.show();
            look("add elements");
            press(&overlay, Qt::Key_Select);
            look("add elements: moving");
        }
        {
            ImgSvcSaveMgr save(nullptr, nullptr);
            save.setOriginalFileName(m_photo, QSize(320, 240));
            save.setEditedFile(m_photo);
            save.show();
            look("save");
            press(&save, Qt::Key_Context2);
            look("save as");
            QLineEdit *name = save.namePage()->lineEdit();
            for (const char *typed : {"notes.txt", "", "photo.png"}) {
                if (*typed)
                    name->setText(typed);
                else
                    name->setText(m_files.path() + "/"); // a folder
                press(name, Qt::Key_Select);
                look(*typed ? "save as: note" : "save as: folder");
                if (ZPopup *question = save.question()) {
                    look("save as: replace");
                    press(question, Qt::Key_Context2);
                }
            }
        }
        for (const NoticeText &w : kWaits) {
            ImgSvcWaitDlg dialog(QCoreApplication::translate(w.context, w.key, w.english));
            dialog.showNow();
            look(w.key);
        }
        for (const NoticeText &n : kNotices) {
            ZNoticeDlg notice(ZNoticeDlg::Error, 0, QString(), QCoreApplication::translate(n.context, n.key, n.english));
            notice.open();
            look(n.key);
            ZNoticeDlg info(ZNoticeDlg::Warning, 0, QString(), QCoreApplication::translate(n.context, n.key, n.english));
            info.open();
            look(n.key);
        }
        QVERIFY2(m_found.isEmpty(), qPrintable(m_found.join('\n')));
    }
};

QTEST_MAIN(TestTextsFit)
#include "tst_texts_fit.moc"
