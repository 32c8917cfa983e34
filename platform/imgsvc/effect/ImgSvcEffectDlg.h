#pragma once
#include "ImgSvcListDlg.h"
#include <QImage>
#include <QMap>

class ImgSvcEffectCtl;
class ImgSvcPictureView;

// The style list with a live preview: the control's input decoded small
// once, the selected style applied to that copy. Taking a row sets the
// control's effect.
class ImgSvcEffectDlg : public ImgSvcListDlg
{
    Q_OBJECT
public:
    explicit ImgSvcEffectDlg(ImgSvcEffectCtl *ctl, QWidget *parent = nullptr);
    ~ImgSvcEffectDlg() override;

    // The MMEffectCommand id under the cursor.
    int currentEffect() const;
    QImage previewImage() const;

protected:
    bool take(int row) override;

private:
    void showPreview();

    ImgSvcEffectCtl *m_ctl;
    ImgSvcPictureView *m_preview;
    QImage m_original;
    QMap<int, QImage> m_styled; // per effect id: moving back and forth stays instant
};
