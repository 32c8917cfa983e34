// Every kind of notice, popup and menu, on each screen size the handset
// comes in: wholly on the screen, centred where it belongs, its text sized
// for the screen. With VO_SCREENS_DIR set, each screen is also written there
// as a PNG (the README's screenshots of the screens a key script can not
// catch: they are up only while the work they announce blocks the host).
#include "ImgSvcSaveMgr.h"
#include "ImgSvcSaveNamePage.h"
#include "ImgSvcWaitDlg.h"
#include "ZGlobal.h"
#include "ZKbMainWidget.h"
#include "ZNoticeDlg.h"
#include "ZOptMenuParser.h"
#include "ZOptionsMenu.h"
#include "ZSoftKey.h"
#include "ZTheme.h"
#include "datarows.h"
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QtTest>
#include <memory>

namespace {
enum Kind { StorageFull, BeingEdited, Question, Wait, NoticeOverWait, OptionsMenu, FormatNotice, FormatNoticeDe };

const char *const kStorageFull = "Because the currently selected memory is full, you must select another memory "
                                 "location or delete files to make room.";
// A picture whose format can not be written back, in English and in the
// longer German.
const char *const kFormatNotice = "Pictures in this format can not be saved over. Save as keeps the edits in a "
                                  "new .jpg picture.";
const char *const kFormatNoticeDe = "Bilder in diesem Format können nicht überschrieben werden. „Speichern unter“ "
                                    "behält die Änderungen in einem neuen .jpg-Bild.";

// The editor's menu, long labels included.
struct EditorMenu final : ZOptMenuParser {
    void parseMenu(QList<MenuItem> &items, const QString &) override
    {
        int id = 0;
        for (const char *label : {"Rotate 90 left", "Rotate 90 right", "Mirror horizontal", "Mirror vertical", "Crop",
                                  "Resize", "Add Elements", "Style", "Cancel"})
            items << MenuItem{label, ++id, 0, 0};
    }
};

// The font of the main text of w: its longest label.
int textPixelSize(const QWidget *w)
{
    const QLabel *text = nullptr;
    for (const QLabel *l : w->findChildren<QLabel *>())
        if (l->isVisibleTo(w) && (!text || l->text().size() > text->text().size()))
            text = l;
    return text ? QFontInfo(text->font()).pixelSize() : 0;
}
} // namespace

class tst_ImgSvcGeometry : public QObject
{
    Q_OBJECT
private slots:
    void liesOnScreen_data()
    {
        columns<QSize, int>({"screen", "kind"});
        const QList<QPair<const char *, int>> kinds = {{"storage full", StorageFull}, {"being edited", BeingEdited},
                                                       {"question", Question},        {"wait", Wait},
                                                       {"notice over wait", NoticeOverWait},
                                                       {"options menu", OptionsMenu},
                                                       {"format notice", FormatNotice},
                                                       {"format notice de", FormatNoticeDe}};
        for (const QSize &s : {QSize(240, 320), QSize(320, 240), QSize(480, 640)})
            for (const auto &k : kinds)
                QTest::addRow("%dx%d %s", s.width(), s.height(), k.first) << s << k.second;
    }

    void liesOnScreen()
    {
        auto [screen, kind] = fetch<QSize, int>({"screen", "kind"});
        qputenv("VO_SCREEN_SIZE", QByteArray::number(screen.width()) + 'x' + QByteArray::number(screen.height()));
        auto main = std::make_unique<ZKbMainWidget>();
        main->setMainWidgetTitle("Edit");
        main->getSoftKey()->setText(ZSoftKey::LEFT, "Options");
        main->getSoftKey()->setText(ZSoftKey::RIGHT, "Back");
        main->show();
        QVERIFY(QTest::qWaitForWindowExposed(main.get()));

        std::unique_ptr<ImgSvcSaveMgr> save;
        std::unique_ptr<ImgSvcWaitDlg> wait;
        std::unique_ptr<ZPopup> popup;
        std::unique_ptr<ZOptionsMenu> menu;
        QWidget *shown = nullptr;
        switch (kind) {
        case FormatNotice:
        case FormatNoticeDe:
            popup = std::make_unique<ZNoticeDlg>(1, 0, QString(),
                                                 QString::fromUtf8(kind == FormatNotice ? kFormatNotice : kFormatNoticeDe),
                                                 nullptr, nullptr, true, 0);
            popup->setTitleIcon("error_pop");
            popup->open();
            shown = popup.get();
            break;
        case StorageFull:
        case NoticeOverWait:
            if (kind == NoticeOverWait) {
                wait = std::make_unique<ImgSvcWaitDlg>("Saving...", main.get());
                wait->showNow();
            }
            // As the editor makes it: no parent.
            popup = std::make_unique<ZNoticeDlg>(1, 0, QString(), kStorageFull, nullptr, nullptr, true, 0);
            popup->setTitleIcon("error_pop");
            popup->open();
            shown = popup.get();
            break;
        case BeingEdited:
            shown = ZNoticeDlg::information("This picture is being edited elsewhere.");
            break;
        case Question: {
            // The save screen's, on a name too long for a line.
            QFile existing(m_dir.filePath("a_rather_long_picture_name_from_the_camera_edited.jpg"));
            QVERIFY(existing.open(QIODevice::WriteOnly));
            save = std::make_unique<ImgSvcSaveMgr>(nullptr, nullptr);
            save->setEditedFile(m_dir.filePath("a_rather_long_picture_name_from_the_camera.jpg"));
            save->show();
            QTest::sendKeyEvent(QTest::Click, save.get(), Qt::Key_Context2, QString(), Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Click, save->namePage()->lineEdit(), Qt::Key_Select, QString(), Qt::NoModifier);
            shown = save->question();
            QVERIFY(shown);
            // Every character of the text can be seen: nothing runs past the edges.
            auto *label = shown->findChildren<QLabel *>().constLast();
            for (const QString &word : label->text().split(' '))
                QVERIFY(label->fontMetrics().horizontalAdvance(word) < label->contentsRect().width());
            break;
        }
        case Wait:
            wait = std::make_unique<ImgSvcWaitDlg>("Saving...", main.get());
            wait->showNow();
            shown = wait.get();
            break;
        case OptionsMenu: {
            EditorMenu parser;
            menu = std::make_unique<ZOptionsMenu>(ZGlobal::getHomeR(false), main.get(), "menu", 0,
                                                  ZSkinService::clsZOptionsMenu, &parser, "main");
            main->getSoftKey()->setOptMenu(ZSoftKey::LEFT, menu.get());
            main->getSoftKey()->press(ZSoftKey::LEFT);
            shown = menu.get();
            break;
        }
        }
        QVERIFY(shown && shown->isVisible());
        QCoreApplication::processEvents();

        // Where it lies on the handset screen (the main window's origin).
        QWidget *screenWindow = save ? static_cast<QWidget *>(save.get()) : main.get();
        const QPoint origin = screenWindow->mapToGlobal(QPoint(0, 0));
        const QRect at(shown->mapToGlobal(QPoint(0, 0)) - origin, shown->size());
        const QRect home = ZGlobal::getHomeR(false);
        QVERIFY2(ZGlobal::getScreenR().contains(at), qPrintable(QString("at %1,%2 %3x%4").arg(at.x()).arg(at.y())
                                                                      .arg(at.width()).arg(at.height())));
        if (kind == OptionsMenu) {
            // Above the soft keys, which read what they do while it is open.
            QVERIFY(at.bottom() < ZGlobal::getCstR().top());
            QCOMPARE(main->getSoftKey()->text(ZSoftKey::LEFT), QStringLiteral("Select"));
            QVERIFY(QFontInfo(menu->font()).pixelSize() >= ZTheme::scaled(14));
        } else {
            QVERIFY(qAbs(at.left() - (home.right() - at.right())) <= 1);
            QVERIFY(qAbs((at.top() - home.top()) - (home.bottom() - at.bottom())) <= 1);
            // Readable: as large as the body text of the screen, which grows with it.
            QCOMPARE(textPixelSize(shown), QFontInfo(ZTheme::bodyFont()).pixelSize());
            QVERIFY(textPixelSize(shown) >= ZTheme::scaled(13));
        }
        dump(screenWindow, shown, QString(QTest::currentDataTag()));
        if (kind == BeingEdited)
            delete shown;
    }

private:
    QTemporaryDir m_dir;
    // Composes the screen as the handset shows it, when asked to.
    static void dump(QWidget *main, QWidget *top, const QString &tag)
    {
        const QString dir = qEnvironmentVariable("VO_SCREENS_DIR");
        if (dir.isEmpty())
            return;
        QImage shot(ZGlobal::screenSize(), QImage::Format_RGB32);
        QPainter p(&shot);
        p.drawPixmap(0, 0, main->grab());
        if (top->isWindow())
            p.drawPixmap(top->mapToGlobal(QPoint(0, 0)) - main->mapToGlobal(QPoint(0, 0)), top->grab());
        p.end();
        QDir().mkpath(dir);
        shot.save(QDir(dir).filePath(QString(tag).replace(' ', '-') + ".png"));
    }
};

QTEST_MAIN(tst_ImgSvcGeometry)
#include "tst_imgsvc_geometry.moc"
