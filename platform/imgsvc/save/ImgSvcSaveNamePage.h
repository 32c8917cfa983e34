#pragma once
#include <QWidget>

class QLabel;
class QLineEdit;

// The name entry of "Save as": a line edit offered with a name derived from
// the original. Typing goes to the edit; the keys it does not use (Select,
// the soft keys) reach the screen.
class ImgSvcSaveNamePage : public QWidget
{
    Q_OBJECT
public:
    explicit ImgSvcSaveNamePage(QWidget *parent = nullptr);
    ~ImgSvcSaveNamePage() override;

    // Offers "<base>_edited.<ext>" of original, the base name selected for
    // typing over it.
    void offerNameFor(const QString &original);
    QString enteredName() const;
    QLineEdit *lineEdit() const { return m_edit; }
    // The path to save to for the entered name (see resolve()); empty when
    // nothing is typed, or, with a note on the page, when the name stands for
    // a folder: a copy would land inside it under another name; or when
    // its extension is no format a picture is written in, in which case the
    // picture's own extension is added to the entry for the user to confirm.
    QString chosenPath(const QString &original);
    // The note under the edit; empty when none is shown.
    QString note() const;
    // The folder the entered name is saved in, as the page names it.
    QString folderShown() const;

    // The path the name stands for: a relative name lies in the original's
    // folder; a name without extension gets the original's.
    static QString resolve(const QString &name, const QString &original);
    static QString suggestedName(const QString &original);
    // Whether the extension of path names a format pictures are written in.
    static bool isPictureName(const QString &path);
    // The extension new names get: the original's, or png for one we only read.
    static QString defaultSuffix(const QString &original);

private:
    static QString beside(const QString &name, const QString &original);
    void setNote(const QString &text);
    void showFolder();

    QLineEdit *m_edit;
    QLabel *m_note;
    QLabel *m_folder;
    QString m_original;
};
