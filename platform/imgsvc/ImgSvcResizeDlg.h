#pragma once
#include "ZKbMainWidget.h"
#include <QList>
#include <QSize>

class ImgSvcResizeCtl;
class QLabel;
class QListWidget;

// The full-screen list of target sizes. Up/Down move, Select or the left soft
// key takes the current size into the control (result 0), the right soft key
// leaves (result 1); either way the dialog then closes and deletes itself.
class ImgSvcResizeDlg : public ZKbMainWidget
{
    Q_OBJECT
public:
    ImgSvcResizeDlg(ImgSvcResizeCtl *ctl, const QSize &inputSize, QWidget *parent = nullptr);
    ~ImgSvcResizeDlg() override;

    // Sizes offered for an input: 75 %, 50 % and 25 %, then common screen
    // sizes in the input's orientation, each fitted to its aspect; only
    // those smaller than the input on both sides, largest first, no repeats.
    static QList<QSize> sizeChoices(const QSize &inputSize);

    QList<QSize> choices() const { return m_choices; }
    int currentIndex() const;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private slots:
    void slotSelect();
    void slotBack();

private:
    void finish(int result);

    ImgSvcResizeCtl *m_ctl; // the manager's; the manager deletes this dialog first
    QList<QSize> m_choices;
    QListWidget *m_list;
    bool m_reported = false;
};
