#pragma once
#include "ImgSvcListDlg.h"
#include "MMPixelFilters.h"
#include <QImage>

class ImgSvcEffectCtl;
class ImgSvcPictureView;

// Brightness, contrast and saturation over a live preview, reached from the
// style list. Up/Down choose the control, Left/Right change it in steps of
// 5 (growing while the key is held) between -100 and 100; Select or the
// left soft key puts the adjustment into the control and confirms (result
// 0), the right soft key goes back to the style list with the control as
// it was.
class ImgSvcAdjustDlg : public ImgSvcListDlg
{
    Q_OBJECT
public:
    // picture: what the style list previews on, adjusted here as it is.
    ImgSvcAdjustDlg(ImgSvcEffectCtl *ctl, const QImage &picture, QWidget *parent = nullptr);
    ~ImgSvcAdjustDlg() override;

    MMPixelFilters::Adjustment adjustment() const { return m_adjustment; }
    QImage previewImage() const;

signals:
    void applied();
    void leftUnchanged();

protected:
    bool take(int row) override;
    bool keypadKey(QKeyEvent *event) override;
    void settle() override;

private:
    void rightSoftKey() override;
    void showValues();

    ImgSvcEffectCtl *m_ctl;
    ImgSvcPictureView *m_preview;
    QImage m_original;
    MMPixelFilters::Adjustment m_adjustment;
};
