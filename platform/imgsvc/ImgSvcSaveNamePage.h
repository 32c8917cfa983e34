#pragma once
#include <QWidget>

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

    // The path the name stands for: a relative name lies in the original's
    // folder; a name without extension gets the original's.
    static QString resolve(const QString &name, const QString &original);
    static QString suggestedName(const QString &original);

private:
    QLineEdit *m_edit;
};
