#include "ImgEditor5wayBtn.h"
#include "ImgImplImageStore.h"
#include "ImgImplInterface.h"
#include "ImgImplIoStep.h"
#include "ImgImplMainFrame.h"
#include "ImgImplMenuEvent.h"
#include "ImgImplMenuItems.h"
#include "ImgImplStatMachine.h"
#include "ImgSvcCropMgr.h"
#include "ImgSvcEffectDlg.h"
#include "ImgSvcLayout.h"
#include "ImgSvcOverlayMgr.h"
#include "ImgSvcResizeDlg.h"
#include "ImgSvcSaveMgr.h"
#include "ImgSvcViewer.h"
#include "MMImageDecoder.h"
#include "MMMirrorCommand.h"
#include "MMOrientation.h"
#include "MMOverlayImageCommand.h"
#include "MMRotateCommand.h"
#include "ZGlobal.h"
#include "ZOptionsMenu.h"
#include "ZSoftKey.h"
#include "editortestutil.h"
#include "testimages.h"
#include "datarows.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <sys/mount.h>
#include <unistd.h>

using namespace testimages;
using editortest::press;
using editortest::visibleNotice;
using editortest::visibleWindow;

namespace {
QList<int> rotationDegrees(const ImgImplMainFrame *frame)
{
    QList<int> out;
    for (MMCommand *c : frame->pendingCommands()) {
        if (auto *r = dynamic_cast<MMRotateCommand *>(c))
            out << r->getDegree();
        else if (auto *m = dynamic_cast<MMMirrorCommand *>(c))
            out << (m->getMirrorType() ? 1000 : 2000);
    }
    return out;
}

// What the viewer shows after the quick edits in `codes` (as
// rotationDegrees gives them), starting from `unedited`.
QImage turned(const QImage &unedited, const QList<int> &codes)
{
    MMOrientation total;
    for (int code : codes)
        total = total.then(code >= 1000 ? MMOrientation::mirror(code == 1000) : MMOrientation::rotation(code));
    return total.apply(unedited);
}

// Another process's view of the lock: can it take it right now?
bool otherProcessCanLock(const QString &file)
{
    return QProcess::execute("flock", {"-n", "-x", file, "true"}) == 0;
}
} // namespace

class TestMainFrame : public QObject
{
    Q_OBJECT
    QTemporaryDir m_work;
    QTemporaryDir m_files;

    QString photo(const QString &name, int w = 320, int h = 240)
    {
        const QString path = m_files.filePath(name);
        if (!QFileInfo::exists(path))
            write(path, w, h, "PNG");
        return path;
    }

    static void settle() { QTest::qWait(20); QCoreApplication::processEvents(); }

    // Turns the picture right and applies; the save screen, once it is up.
    static ImgSvcSaveMgr *turnAndOpenSave(ImgImplMainFrame *frame)
    {
        press(frame, Qt::Key_Up);
        press(frame, Qt::Key_Context2);
        const auto shown = [] { return editortest::visibleWindow<ImgSvcSaveMgr>(); };
        return QTest::qWaitFor([&] { return shown() != nullptr; }, 5000) ? shown() : nullptr;
    }

    // Opens the Options menu and chooses the item with this id.
    static void choose(ImgImplMainFrame *frame, int itemId)
    {
        press(frame, Qt::Key_Context1);
        for (int i = 0; i < 12 && frame->menu()->currentItemId() != itemId; ++i)
            press(frame->menu(), Qt::Key_Down);
        QCOMPARE(frame->menu()->currentItemId(), itemId);
        press(frame->menu(), Qt::Key_Select);
    }

    template <typename T> static T *waitForWindow()
    {
        return QTest::qWaitFor([] { return editortest::visibleWindow<T>() != nullptr; }, 5000)
            ? editortest::visibleWindow<T>()
            : nullptr;
    }

private slots:
    void init() { ImgImplImageStore::setWorkingDirForTest(m_work.path()); }

    void cleanup() { editortest::releaseEditorAndNotices(); }

    void launchShowsPreview_data()
    {
        columns<QSize, bool>({"size", "fromPreview"});
        QTest::newRow("small: real-size copy") << QSize(320, 240) << false;
        QTest::newRow("large: preview") << QSize(1280, 960) << true;
    }

    void launchShowsPreview()
    {
        auto [size, fromPreview] = fetch<QSize, bool>({"size", "fromPreview"});
        const QString file = photo(QString("a%1.png").arg(size.width()), size.width(), size.height());
        auto *frame = ImgImplInterface::launchImageEditor(file, nullptr, reinterpret_cast<void *>(0x1));
        QVERIFY(frame->isVisible());
        // Its title and soft keys, in each language: tst_language.
        QCOMPARE(frame->imageViewer()->getInput(),
                 fromPreview ? frame->store()->getPreviewSource() : frame->store()->getRealSource());
        QVERIFY(!frame->imageViewer()->displayImage().isNull());
        QCOMPARE(frame->stateMachine()->currentStat(), STAT_MAIN);
        QVERIFY(frame->lockDescriptor() >= 0);
    }

    void menuShowsEightItemsOrSevenForNonEditable_data()
    {
        columns<int, int, QList<int>>({"w", "h", "visible"});
        const QList<int> all{OPT_ITEM_ROTATE_90_LEFT, OPT_ITEM_ROTATE_90_RIGHT, OPT_ITEM_MIRROR_HORIZONTAL,
                             OPT_ITEM_MIRROR_VERTICAL, OPT_ITEM_CROP, OPT_ITEM_RESIZE, OPT_ITEM_ADD_ELEMENTS,
                             OPT_ITEM_STYLE};
        QList<int> withoutElements = all;
        withoutElements.removeOne(OPT_ITEM_ADD_ELEMENTS);
        QTest::newRow("editable") << 320 << 240 << all;
        QTest::newRow("too many pixels") << 641 << 480 << withoutElements;
        QTest::newRow("too narrow") << 20 << 300 << withoutElements;
    }

    void menuShowsEightItemsOrSevenForNonEditable()
    {
        auto [w, h, visible] = fetch<int, int, QList<int>>({"w", "h", "visible"});
        auto *frame = ImgImplInterface::launchImageEditor(photo(QString("m%1x%2.png").arg(w).arg(h), w, h), nullptr, nullptr);
        ZOptionsMenu *menu = frame->menu();
        QCOMPARE(menu->visibleItemIds(), visible);
        // The visible rows' texts: tst_language.
        QCOMPARE(menu->itemText(OPT_ITEM_CANCEL), QString("Cancel"));
        // Open, the menu lies in the home area above the soft keys.
        press(frame, Qt::Key_Context1);
        QVERIFY(menu->isOpen());
        const QRect home = ZGlobal::getHomeR(false);
        const QRect bound(home.topLeft(), QSize(home.width(), home.height() - ZGlobal::getCstR().height()));
        QVERIFY(bound.contains(menu->geometry()));
    }

    // Each quick edit from its menu row, by keys only; Cancel, then the
    // ninth visible row, drops it again. An event no row sends runs nothing.
    void menuItemsRunTheirOperation_data()
    {
        // row: -1: an unknown event, posted
        columns<int, QList<int>>({"row", "commands"});
        QTest::newRow("rotate left is -90") << 0 << QList<int>{-90};
        QTest::newRow("rotate right is 90") << 1 << QList<int>{90};
        QTest::newRow("mirror horizontal is true") << 2 << QList<int>{1000};
        QTest::newRow("mirror vertical is false") << 3 << QList<int>{2000};
        QTest::newRow("unknown event runs nothing") << -1 << QList<int>{};
    }

    void menuItemsRunTheirOperation()
    {
        auto [row, commands] = fetch<int, QList<int>>({"row", "commands"});
        auto *frame = ImgImplInterface::launchImageEditor(photo("k.png"), nullptr, nullptr);
        if (row < 0) {
            QCoreApplication::postEvent(frame, new ImgImplMenuEvent(42));
            settle();
            QVERIFY(frame->pendingCommands().empty() && !frame->isModified());
            // Not a quick edit: the state follows the table, which ends.
            QCOMPARE(frame->stateMachine()->currentStat(), STAT_END);
            return;
        }
        press(frame, Qt::Key_Context1);
        for (int i = 0; i < row; ++i)
            press(frame->menu(), Qt::Key_Down);
        press(frame->menu(), Qt::Key_Select);
        QVERIFY(!frame->menu()->isOpen());
        QTRY_COMPARE(rotationDegrees(frame), commands);
        QVERIFY(frame->isModified());
        QCOMPARE(frame->stateMachine()->currentStat(), STAT_MAIN);
        QCOMPARE(frame->softKeys()->text(ZSoftKey::RIGHT), QString("Apply"));
        QVERIFY(!frame->menu()->isItemHidden(OPT_ITEM_CANCEL));

        press(frame, Qt::Key_Context1);
        for (int i = 0; i < 9; ++i) // Undo comes just before
            press(frame->menu(), Qt::Key_Down);
        QCOMPARE(frame->menu()->currentItemId(), int(OPT_ITEM_CANCEL));
        press(frame->menu(), Qt::Key_Select);
        QTRY_VERIFY(frame->pendingCommands().empty());
        QCOMPARE(frame->softKeys()->text(ZSoftKey::RIGHT), QString("Back"));
        QVERIFY(frame->menu()->isItemHidden(OPT_ITEM_CANCEL));
        QVERIFY(!frame->isModified());
    }

    // Each Clear (Backspace on a desktop keyboard) or Undo from the menu
    // takes back the last quick edit, and the preview shows what is left
    // at once. Down to nothing it is as if nothing was edited: Undo and
    // Cancel are hidden, the right soft key reads Back and closes.
    // Keys: u Up, d Down, h/v mirror from the menu, c Clear, b Backspace,
    // m Undo from the menu.
    void undoTakesBackQuickEdits_data()
    {
        columns<QString, QList<int>>({"keys", "left"});
        QTest::newRow("Clear takes back a turn") << "uc" << QList<int>{};
        QTest::newRow("Backspace too") << "ub" << QList<int>{};
        QTest::newRow("Undo in the menu") << "dm" << QList<int>{};
        QTest::newRow("the last of three") << "uhdc" << QList<int>{90, 1000};
        QTest::newRow("a mix, one at a time") << "uhvdcbmc" << QList<int>{};
        QTest::newRow("then edit again") << "uvccdh" << QList<int>{-90, 1000};
        QTest::newRow("more undos than edits") << "uccc" << QList<int>{};
        QTest::newRow("nothing to undo") << "c" << QList<int>{};
    }

    void undoTakesBackQuickEdits()
    {
        auto [keys, left] = fetch<QString, QList<int>>({"keys", "left"});
        auto *frame = ImgImplInterface::launchImageEditor(photo("undo.png", 320, 240), nullptr, nullptr);
        QSignalSpy closed(frame, SIGNAL(sigMeClosed()));
        const QImage unedited = frame->imageViewer()->displayImage();
        for (const QChar k : keys) {
            switch (k.toLatin1()) {
            case 'u': press(frame, Qt::Key_Up); break;
            case 'd': press(frame, Qt::Key_Down); break;
            case 'h': choose(frame, OPT_ITEM_MIRROR_HORIZONTAL); break;
            case 'v': choose(frame, OPT_ITEM_MIRROR_VERTICAL); break;
            case 'c': press(frame, Qt::Key_Clear); break;
            case 'b': press(frame, Qt::Key_Backspace); break;
            case 'm': choose(frame, OPT_ITEM_UNDO); break;
            }
            settle();
        }
        QCOMPARE(rotationDegrees(frame), left);
        QCOMPARE(frame->stateMachine()->currentStat(), STAT_MAIN);
        QVERIFY(frame->imageViewer()->displayImage() == turned(unedited, left));
        const bool pending = !left.isEmpty();
        QCOMPARE(frame->isModified(), pending);
        QCOMPARE(frame->menu()->isItemHidden(OPT_ITEM_UNDO), !pending);
        QCOMPARE(frame->menu()->isItemHidden(OPT_ITEM_CANCEL), !pending);
        QCOMPARE(frame->softKeys()->text(ZSoftKey::RIGHT), QString(pending ? "Apply" : "Back"));
        if (pending) {
            QCOMPARE(frame->menu()->visibleItemIds().mid(8), (QList<int>{OPT_ITEM_UNDO, OPT_ITEM_CANCEL}));
            QCOMPARE(frame->menu()->itemText(OPT_ITEM_UNDO), QString("Undo"));
            return;
        }
        press(frame, Qt::Key_Context2);
        QCOMPARE(closed.count(), 1);
        QVERIFY(!visibleWindow<ImgSvcSaveMgr>());
    }

    // A confirmed sub-editor's edit waits on the save screen; Clear there
    // takes it back and returns to the main view with the edits before it.
    // What is saved then is exactly those; with none, Back closes at once
    // and the file is untouched. Elements placed in one session are one
    // step, and their files go with it.
    void undoOnTheSaveScreen_data()
    {
        columns<QString, bool>({"editor", "turnFirst"});
        for (const char *editor : {"crop", "resize", "style", "elements"}) {
            QTest::addRow("%s", editor) << editor << false;
            QTest::addRow("turn, %s", editor) << editor << true;
        }
    }

    void undoOnTheSaveScreen()
    {
        auto [editor, turnFirst] = fetch<QString, bool>({"editor", "turnFirst"});
        const QString file = photo(QString("undo-%1%2.png").arg(editor).arg(turnFirst), 320, 240);
        const QImage original(file);
        auto *frame = ImgImplInterface::launchImageEditor(file, nullptr, nullptr);
        QSignalSpy closed(frame, SIGNAL(sigMeClosed()));
        if (turnFirst)
            press(frame, Qt::Key_Up);
        if (editor == "crop") {
            choose(frame, OPT_ITEM_CROP);
            auto *crop = waitForWindow<ImgSvcCropMgr>();
            QVERIFY(crop);
            press(crop, Qt::Key_Context1);
        } else if (editor == "resize") {
            choose(frame, OPT_ITEM_RESIZE);
            auto *resize = waitForWindow<ImgSvcResizeDlg>();
            QVERIFY(resize);
            press(resize, Qt::Key_Select);
        } else if (editor == "style") {
            choose(frame, OPT_ITEM_STYLE);
            auto *style = waitForWindow<ImgSvcEffectDlg>();
            QVERIFY(style);
            press(style, Qt::Key_Select);
        } else {
            choose(frame, OPT_ITEM_ADD_ELEMENTS);
            auto *overlay = waitForWindow<ImgSvcOverlayMgr>();
            QVERIFY(overlay);
            for (int key : {Qt::Key_Select, Qt::Key_Select, Qt::Key_Right, Qt::Key_Select, Qt::Key_Select,
                            Qt::Key_Context1})
                press(overlay, key);
        }
        auto *save = waitForWindow<ImgSvcSaveMgr>();
        QVERIFY(save);
        QCOMPARE(frame->stateMachine()->currentStat(), STAT_SAVE);
        QStringList elementFiles;
        for (MMCommand *c : frame->pendingCommands()) {
            if (auto *o = dynamic_cast<MMOverlayImageCommand *>(c)) {
                MMRect rect;
                MMImageSource image(MMImageSource::SOURCE_ELEMENT);
                o->getData(rect, image);
                elementFiles << QString::fromStdString(image.getFileName());
            }
        }
        QCOMPARE(elementFiles.size() == 2, editor == "elements");
        QCOMPARE(int(frame->pendingCommands().size()), int(turnFirst) + (editor == "elements" ? 2 : 1));

        press(save, Qt::Key_Clear);
        QTRY_COMPARE(frame->stateMachine()->currentStat(), STAT_MAIN);
        QVERIFY(!visibleWindow<ImgSvcSaveMgr>());
        QCOMPARE(rotationDegrees(frame), turnFirst ? QList<int>{90} : QList<int>{});
        QCOMPARE(int(frame->pendingCommands().size()), int(turnFirst));
        for (const QString &f : elementFiles)
            QVERIFY2(!QFileInfo::exists(f), qPrintable(f));
        QCOMPARE(frame->softKeys()->text(ZSoftKey::RIGHT), QString(turnFirst ? "Apply" : "Back"));
        QTRY_VERIFY(frame->softKeys()->isButtonEnabled(ZSoftKey::RIGHT));

        press(frame, Qt::Key_Context2);
        if (!turnFirst) {
            QCOMPARE(closed.count(), 1);
            QCOMPARE(QImage(file), original);
            return;
        }
        save = waitForWindow<ImgSvcSaveMgr>();
        QVERIFY(save);
        press(save, Qt::Key_Context1);
        QTRY_VERIFY(frame->pendingCommands().empty());
        QCOMPARE(QImage(file).convertToFormat(QImage::Format_RGB32),
                 original.transformed(QTransform().rotate(90)).convertToFormat(QImage::Format_RGB32));
    }

    // Typing a name, Clear edits the name; the edits stay.
    void clearOnTheNameEntryEditsTheName()
    {
        auto *frame = ImgImplInterface::launchImageEditor(photo("undo-name.png"), nullptr, nullptr);
        ImgSvcSaveMgr *save = turnAndOpenSave(frame);
        QVERIFY(save);
        press(save, Qt::Key_Context2); // Save as: the name entry
        QVERIFY(save->isNameEntryShown());
        press(QApplication::focusWidget() ? QApplication::focusWidget() : save, Qt::Key_Clear);
        settle();
        QVERIFY(save->isVisible());
        QCOMPARE(frame->stateMachine()->currentStat(), STAT_SAVE);
        QCOMPARE(rotationDegrees(frame), QList<int>{90});
    }

    void upAndDownRotateLeftAndRightDoNot()
    {
        auto *frame = ImgImplInterface::launchImageEditor(photo("u.png", 320, 240), nullptr, nullptr);
        const QSize shown = frame->imageViewer()->displayImage().size();
        press(frame, Qt::Key_Up);
        press(frame, Qt::Key_Up);
        press(frame, Qt::Key_Down);
        press(frame, Qt::Key_Left);
        press(frame, Qt::Key_Right);
        QCOMPARE(rotationDegrees(frame), (QList<int>{90, 90, -90}));
        QCOMPARE(frame->imageViewer()->displayImage().size(), shown.transposed());
    }

    // Choosing a sub-editor blocks both soft keys for a while, so that a
    // second press can not reach the editor while the service comes up; the
    // turn keys stay live.
    void subEditorBlocksTheSoftKeysForAWhile()
    {
        auto *frame = ImgImplInterface::launchImageEditor(photo("g.png"), nullptr, nullptr);
        press(frame, Qt::Key_Context1);
        while (frame->menu()->currentItemId() != OPT_ITEM_CROP)
            press(frame->menu(), Qt::Key_Down);
        press(frame->menu(), Qt::Key_Select);
        QVERIFY(!frame->softKeys()->isButtonEnabled(ZSoftKey::LEFT));
        QVERIFY(!frame->softKeys()->isButtonEnabled(ZSoftKey::RIGHT));
        QVERIFY(frame->inputTimer()->isActive());
        settle();
        QCOMPARE(frame->stateMachine()->currentStat(), STAT_CROP);
        press(frame, Qt::Key_Context2); // blocked: does not leave or apply
        settle();
        QVERIFY(frame->isVisible());
        QCOMPARE(frame->stateMachine()->currentStat(), STAT_CROP);
        QTRY_VERIFY_WITH_TIMEOUT(frame->softKeys()->isButtonEnabled(ZSoftKey::RIGHT), 5000);
        QVERIFY(frame->softKeys()->isButtonEnabled(ZSoftKey::LEFT));
    }

    // A save that fails at any step leaves the file as it was (bar a failed
    // flush of its folder after the commit), drops the edits, shows the file
    // unturned, keeps the lock and tells the truth: the storage-full notice
    // only for no room, otherwise "could not be saved" with the reason. The
    // working copy never keeps the edits of a failed save, even when the
    // reload after it fails, so the next save cannot apply them twice. A
    // save that succeeds puts a new file in place and the lock moves with
    // it; neither is lost to the decoder opening and closing the file.
    void saveKeepsTheLock_data()
    {
        // step 0: the working copy is damaged; -1: nothing fails. Steps 1 and
        // 2 write and flush the edits into a working file, 3 onwards write
        // the file: data, owner, mode, flush, rename, folder flush.
        columns<int, int, QString, bool, bool>({"step", "error", "notice", "changed", "reloadFails"});
        const QString full = "memory is full", unreadable = "could not be read;", io = "could not be read or written",
                      denied = "You may not change";
        QTest::newRow("saved") << -1 << 0 << QString() << true << false;
        QTest::newRow("working copy damaged") << 0 << 0 << unreadable << false << false;
        QTest::newRow("applying the edits, no space") << 1 << ENOSPC << full << false << false;
        QTest::newRow("applying the edits, I/O error") << 1 << EIO << io << false << false;
        QTest::newRow("applying the edits, flush fails") << 2 << EIO << io << false << false;
        QTest::newRow("first write, no space") << 3 << ENOSPC << full << false << false;
        QTest::newRow("first write, quota") << 3 << EDQUOT << full << false << false;
        QTest::newRow("flush, I/O error") << 6 << EIO << io << false << false;
        QTest::newRow("flush, I/O error, reload fails") << 6 << EIO << io << false << true;
        QTest::newRow("rename refused") << 7 << EACCES << denied << false << false;
        QTest::newRow("rename, I/O error") << 7 << EIO << io << false << false;
        QTest::newRow("folder flush, I/O error") << 8 << EIO << io << true << false;
    }

    void saveKeepsTheLock()
    {
        auto [step, error, notice, changed, reloadFails] =
            fetch<int, int, QString, bool, bool>({"step", "error", "notice", "changed", "reloadFails"});
        const QString file = photo(QString("save%1_%2.png").arg(step).arg(error));
        const QByteArray before = bytes(file);
        auto *frame = ImgImplInterface::launchImageEditor(file, nullptr, nullptr);
        for (int i = 0; i < 50; ++i)
            QVERIFY(!MMImageDecoder::decode(file).isNull());
        QStringList shown;
        const QString away = file + ".away";
        // The notice runs its own loop inside the save: read and close it
        // there. The reload comes after it: a folder at the file's name
        // makes it fail.
        QTimer poll;
        connect(&poll, &QTimer::timeout, [&] {
            if (ZNoticeDlg *n = visibleNotice()) {
                shown << n->text();
                if (reloadFails && shown.size() == 1)
                    QVERIFY(QFile::rename(file, away) && QDir().mkdir(file));
                n->close();
            }
        });
        poll.start(20);
        ImgSvcSaveMgr *save = turnAndOpenSave(frame);
        QVERIFY(save);
        if (step == 0)
            QVERIFY(writeBytes(frame->store()->realFilePath(), "no longer a picture"));
        else if (step > 0)
            ImgImplIoStep::arm(ImgImplIoStep::FailAt, step, error);
        press(save, Qt::Key_Context1); // Save
        QTRY_COMPARE(frame->stateMachine()->currentStat(), STAT_MAIN);
        ImgImplIoStep::disarm();
        if (reloadFails)
            QVERIFY(QDir().rmdir(file) && QFile::rename(away, file));
        QCOMPARE(shown.size(), notice.isEmpty() ? 0 : 1);
        QVERIFY2(notice.isEmpty() || shown.first().contains(notice), qPrintable(shown.join("|")));
        QVERIFY2(notice.isEmpty() || notice == "memory is full" || shown.first().startsWith("The picture could not be saved."),
                 qPrintable(shown.join("|")));
        QCOMPARE(bytes(file) != before, changed);
        // The working copy holds what the file holds, never the dropped edits.
        if (step != 0)
            QCOMPARE(bytes(frame->store()->realFilePath()), bytes(file));
        QCOMPARE(QDir(m_files.path()).entryList(QDir::Hidden | QDir::Files).filter(".vo-"), QStringList());
        QVERIFY(frame->pendingCommands().empty());
        QVERIFY(!otherProcessCanLock(file));
        auto *second = new ImgImplMainFrame(file, nullptr, nullptr, 1);
        QCOMPARE(second->lockDescriptor(), -1);
        delete second;
        if (changed)
            return;
        QCOMPARE(frame->softKeys()->text(ZSoftKey::RIGHT), QString("Back"));
        // The 320x240 picture is shown unturned again.
        const QSize size = frame->imageViewer()->displayImage().size();
        QVERIFY2(size.width() > size.height(), qPrintable(QString("%1x%2").arg(size.width()).arg(size.height())));
    }

    void secondEditorInOneProcessIsRefusedUntilRelease()
    {
        const QString file = photo("lock.png");
        auto *first = new ImgImplMainFrame(file, nullptr, nullptr, 1);
        QVERIFY(first->lockDescriptor() >= 0);
        QVERIFY(!otherProcessCanLock(file));
        auto *second = new ImgImplMainFrame(file, nullptr, nullptr, 1);
        QCOMPARE(second->lockDescriptor(), -1);
        QTRY_VERIFY(visibleNotice());
        delete second; // a refused editor holds nothing to release
        delete first;
        QVERIFY(otherProcessCanLock(file));
        auto *third = ImgImplInterface::launchImageEditor(file, nullptr, nullptr);
        QVERIFY(third->lockDescriptor() >= 0);
    }

    // Every file the editor cannot edit gets a notice; dismissing it closes
    // the editor once, and nothing is written.
    void badFileIsReportedAndClosesOnce_data()
    {
        columns<QString, QString>({"kind", "notice"});
        const QString inUse = "The file is being edited now, it can not be edited in more instances at one time.";
        QTest::newRow("missing") << "missing" << inUse;
        QTest::newRow("directory") << "directory" << inUse;
        QTest::newRow("read-only") << "readonly" << inUse;
        QTest::newRow("locked by another process") << "held" << inUse;
        QTest::newRow("zero bytes") << "empty" << "The picture can not be opened for editing.";
        QTest::newRow("not a picture") << "text" << "The picture can not be opened for editing.";
        QTest::newRow("truncated jpeg") << "cut" << "The picture can not be opened for editing.";
    }

    void badFileIsReportedAndClosesOnce()
    {
        auto [kind, notice] = fetch<QString, QString>({"kind", "notice"});
        QTemporaryDir dir;
        QString file = dir.filePath("x.jpg");
        QString roMount;
        QProcess holder;
        if (kind == "directory") {
            QDir().mkdir(file);
        } else if (kind == "empty" || kind == "text") {
            QVERIFY(writeBytes(file, kind == "text" ? "hello, this is text" : ""));
        } else if (kind == "cut") {
            QVERIFY(write(file, 800, 600, "JPEG"));
            QVERIFY(writeBytes(file, bytes(file).left(int(QFileInfo(file).size() / 2))));
        } else if (kind == "held") {
            QVERIFY(write(file, 64, 48, "JPEG"));
            holder.start("flock", {"-x", file, "sleep", "20"});
            QVERIFY(holder.waitForStarted());
            QTRY_VERIFY(!otherProcessCanLock(file));
        } else if (kind == "readonly") {
            QVERIFY(write(file, 64, 48, "JPEG"));
            if (geteuid() == 0) {
                // Root ignores permission bits: use a read-only bind mount.
                roMount = dir.filePath("ro");
                QDir().mkdir(roMount);
                const QByteArray ro = QFile::encodeName(roMount);
                QCOMPARE(mount(QFile::encodeName(dir.path()).constData(), ro.constData(), nullptr, MS_BIND, nullptr), 0);
                QCOMPARE(mount(nullptr, ro.constData(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr), 0);
                file = roMount + "/x.jpg";
            } else {
                QFile::setPermissions(file, QFile::ReadOwner);
            }
        }
        const QByteArray before = bytes(file);
        auto *frame = ImgImplInterface::launchImageEditor(file, nullptr, nullptr);
        QSignalSpy closed(frame, SIGNAL(sigMeClosed()));
        QTRY_VERIFY(visibleNotice());
        QCOMPARE(visibleNotice()->text(), notice);
        QCOMPARE(closed.count(), 0);
        press(visibleNotice(), Qt::Key_Select);
        QTRY_COMPARE(closed.count(), 1);
        settle();
        QCOMPARE(closed.count(), 1);
        ImgImplInterface::releaseImageEditor();
        QCOMPARE(bytes(file), before);
        if (!roMount.isEmpty())
            umount2(QFile::encodeName(roMount).constData(), MNT_DETACH);
        holder.kill();
        holder.waitForFinished();
    }

    void childProcessDoesNotKeepTheLock()
    {
        const QString file = photo("child.png");
        ImgImplInterface::launchImageEditor(file, nullptr, nullptr);
        // A process the host starts meanwhile, through the shell as system() does.
        QCOMPARE(system("sleep 5 >/dev/null 2>&1 &"), 0);
        ImgImplInterface::releaseImageEditor();
        QVERIFY(otherProcessCanLock(file));
    }

    void rotationBarSitsAboveSoftKeysWithEllipticalMask()
    {
        auto *frame = ImgImplInterface::launchImageEditor(photo("bar.png"), nullptr, nullptr);
        ImgEditor5wayBtn *bar = frame->rotationBar();
        QVERIFY(bar->isVisible());
        const QSize hint = bar->sizeHint();
        QCOMPARE(bar->size(), hint);
        QCOMPARE(bar->x(), int(ImgSvcLayout::layout[0]));
        const int cstTop = frame->height() - ZGlobal::getCstR().height();
        QCOMPARE(bar->geometry().bottom() + 1, cstTop - ImgSvcLayout::layout[3]);
        const QRect pad = bar->getCurr5WayButton();
        QCOMPARE(bar->mask().boundingRect(), QRect(pad.x(), 6, pad.width(), pad.height()));
        // Up (button 1) turns right, down (button 3) turns left.
        for (auto [button, name] : {std::pair{1, "rt"}, std::pair{3, "lft"}}) {
            const auto b = ZMediaController::FiveWayButtons(button);
            QCOMPARE(bar->buttonPixmapName(b, true), QString("mp_vid_rot_90_%1_p_nav").arg(name));
            QCOMPARE(bar->buttonPixmapName(b, false), QString("mp_vid_rot_90_%1_unp_nav").arg(name));
        }
    }
};

QTEST_MAIN(TestMainFrame)
#include "tst_mainframe.moc"
