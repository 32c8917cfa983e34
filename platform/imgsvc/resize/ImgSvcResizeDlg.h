#pragma once
#include "ImgSvcListDlg.h"
#include <QList>
#include <QSize>

class ImgSvcResizeCtl;

// The list of target sizes; taking a row sets the control's target size.
class ImgSvcResizeDlg : public ImgSvcListDlg
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
    bool take(int row) override;

private:
    ImgSvcResizeCtl *m_ctl;
    QList<QSize> m_choices;
};
