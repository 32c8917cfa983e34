#pragma once
#include "ImgSvcPictureView.h"

class ImgSvcCropCtl;

// The picture with the control's selection: outside dimmed, a bright frame,
// the active corner marked.
class ImgSvcCropView : public ImgSvcPictureView
{
    Q_OBJECT
public:
    explicit ImgSvcCropView(ImgSvcCropCtl *ctl, QWidget *parent = nullptr);
    ~ImgSvcCropView() override;

    // Decodes the control's input afresh.
    void reload();

protected:
    void paintMarks(QPainter &painter, const ImgSvcFitMapper &map) override;

private:
    ImgSvcCropCtl *m_ctl; // the screen's, outlives the view
};
