#pragma once
#include "ImgSvcScreen.h"

class ImgSvcCtlInterface;
class QListWidget;
class QVBoxLayout;

// A full-screen list over a control. Up/Down move the cursor, Select or the
// left soft key takes the current row into the control (result 0), the right
// soft key leaves (result 1); either way the dialog then closes and deletes
// itself. Subclasses fill the list and add it, with whatever goes with it,
// to the page's column.
class ImgSvcListDlg : public ImgSvcScreen
{
    Q_OBJECT
public:
    ImgSvcListDlg(ImgSvcCtlInterface *ctl, const QString &title, QWidget *parent = nullptr);
    ~ImgSvcListDlg() override;

protected:
    QWidget *page() const { return m_page; }
    QVBoxLayout *column() const { return m_column; }
    QListWidget *list() const { return m_list; }
    // Puts row into the control; false when there is nothing to take.
    virtual bool take(int row) = 0;

    bool keypadKey(QKeyEvent *event) override;
    void settle() override;

private:
    void leftSoftKey() override;
    void rightSoftKey() override;

    ImgSvcCtlInterface *m_ctl; // the manager's; the manager deletes this dialog first
    QWidget *m_page;
    QVBoxLayout *m_column;
    QListWidget *m_list;
};
