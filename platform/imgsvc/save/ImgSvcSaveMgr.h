#pragma once
#include "ImgSvcScreen.h"
#include <QImage>
#include <QPointer>
#include <QSize>

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
// original) or a null string when the user backs out of the name entry. A
// name that stands for a folder is refused on the entry page.
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
    QString getSaveAsFilename() const { return m_saveAsName; }
    // Removes the wait dialog shown by "Save".
    void deleteWaitDlg();
    ZPopup *waitDialog() const;

    bool isNameEntryShown() const;
    ImgSvcSaveNamePage *namePage() const { return m_namePage; }
    // What the screen shows: the output picture, the name and size lines.
    QImage shownImage() const;
    QString shownFileName() const { return m_fileName; }
    QString shownSizeText() const;

protected:
    bool keypadKey(QKeyEvent *event) override;
    void settle() override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void leftSoftKey() override;
    void rightSoftKey() override;
    void reload();
    void showNameEntry(bool show);
    void acceptName();
    void updateInfo();

    ImgSvcSaveCtl *m_ctl;
    QStackedWidget *m_pages;
    ImgSvcPictureView *m_view;
    QLabel *m_nameLabel;
    QLabel *m_sizeLabel;
    ImgSvcSaveNamePage *m_namePage;
    QString m_fileName;
    // The file new names are made beside and after.
    QString namingReference() const;
    QString m_originalFile;
    QSize m_newSize;
    QString m_saveAsName;
    bool m_autoDeleteWait = true;
    QPointer<ZPopup> m_wait;
};
