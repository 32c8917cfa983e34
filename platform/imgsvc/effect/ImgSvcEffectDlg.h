#pragma once
#include "ImgSvcListDlg.h"
#include "MMPixelFilters.h"
#include <QImage>
#include <QMap>
#include <QPointer>
#include <optional>

class ImgSvcAdjustDlg;
class ImgSvcEffectCtl;
class ImgSvcPictureView;

// The style list with a live preview: the control's input decoded small
// once, the selected style applied to that copy. Taking a row sets the
// control's effect; the last row, Adjust..., opens the adjust screen
// instead, and the list goes when that confirms.
class ImgSvcEffectDlg : public ImgSvcListDlg
{
    Q_OBJECT
public:
    explicit ImgSvcEffectDlg(ImgSvcEffectCtl *ctl, QWidget *parent = nullptr);
    ~ImgSvcEffectDlg() override;

    // The MMEffectCommand id under the cursor.
    int currentEffect() const;
    QImage previewImage() const;
    ImgSvcAdjustDlg *adjustScreen() const;

protected:
    bool take(int row) override;

private:
    void showPreview();
    void openAdjust();
    // Auto-fix's levels, measured once on the input fitted in 256 x 256:
    // the same for the preview and the save, whatever the screen.
    const MMPixelFilters::Levels &autoFixLevels();

    ImgSvcEffectCtl *m_ctl;
    ImgSvcPictureView *m_preview;
    QImage m_original;
    QMap<int, QImage> m_styled; // per effect id: moving back and forth stays instant
    std::optional<MMPixelFilters::Levels> m_levels;
    QPointer<ImgSvcAdjustDlg> m_adjust;
};
