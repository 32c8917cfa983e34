#pragma once
#include "ImgSvcScreen.h"
#include <QImage>
#include <QPointer>
#include <QSize>
#include <functional>

class ImgSvcPictureView;
class ImgSvcSaveCtl;
class ImgSvcSaveNamePage;
class QLabel;
class QStackedWidget;
class ZPopup;

// The save screen: the result image with the file name and, when given, the
// new size. "Save" (left soft key) shows the wait dialog and reports result 0;
// "Save as" (right soft key) asks for a name and reports result 1, with
// getSaveAsFilename() the chosen path (a relative name lies beside the
// original, or beside the edited file when no original was named); a name
// that exists is replaced only after the user said yes (replaceConfirmed()),
// and Back on the entry returns to the choices. Select on the choices
// offers to drop the edits: after a yes, result 2 (Discard), no name. A name that stands for a
// folder, or whose extension is no format a picture is written in, is
// refused on the entry page with a note.
// The screen reports once and stays up; whoever showed it closes it. While
// the wait dialog is up it takes no keys: only deleteWaitDlg(), closing the
// screen (with auto-delete on) or deleting it removes it.
class ImgSvcSaveMgr : public ImgSvcScreen
{
    Q_OBJECT
public:
    ImgSvcSaveMgr(QWidget *canvas, QWidget *parent, const char *name = nullptr, unsigned int flags = 0);
    ~ImgSvcSaveMgr() override;

    ImgSvcSaveCtl *getSaveCtl() const { return m_ctl; }
    void setAutoDeleteWaitDlg(bool autoDelete) { m_autoDeleteWait = autoDelete; }
    void setOriginalFileName(const QString &file, const QSize &size);
    // The file the picture was edited from: where new names are offered
    // when no original file name is given.
    void setEditedFile(const QString &file);
    QString getSaveAsFilename() const { return m_saveAsName; }
    // Whether the person agreed to replace the file at that name; without
    // it a file found there must not be written over.
    bool replaceConfirmed() const { return m_replaceConfirmed; }
    // Removes the wait dialog shown by "Save".
    void deleteWaitDlg();
    ZPopup *waitDialog() const;
    // The yes/no question open over the screen, if any.
    ZPopup *question() const;

    bool isNameEntryShown() const;
    ImgSvcSaveNamePage *namePage() const { return m_namePage; }
    // What the screen shows: the output picture, the name and size lines.
    QImage shownImage() const;
    QString shownFileName() const;
    QString shownSizeText() const;

protected:
    bool keypadKey(QKeyEvent *event) override;
    void settle() override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void leftSoftKey() override;
    void rightSoftKey() override;
    void reload();
    void showNameEntry(bool show);
    void acceptName();
    void offerDiscard();
    // Yes or no over the screen; onYes runs after a yes.
    void ask(const QString &question, std::function<void()> onYes);
    void showWait();
    void updateInfo();
    // A file name short enough for a line of a popup.
    static QString fitted(const QString &fileName);

    ImgSvcSaveCtl *m_ctl;
    QStackedWidget *m_pages;
    ImgSvcPictureView *m_view;
    QLabel *m_nameLabel;
    QLabel *m_sizeLabel;
    ImgSvcSaveNamePage *m_namePage;
    // The file new names are made beside and after.
    QString namingReference() const;
    QString m_originalFile;
    QString m_editedFile;
    QSize m_newSize;
    QString m_saveAsName;
    bool m_replaceConfirmed = false;
    bool m_autoDeleteWait = true;
    QPointer<ZPopup> m_wait;
    QPointer<ZPopup> m_question;
};
