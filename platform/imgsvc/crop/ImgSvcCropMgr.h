#pragma once
#include "ImgSvcScreen.h"

class ImgSvcCropCtl;
class ImgSvcCropView;
class QLabel;

// The crop screen: the input image with the selection rectangle. The
// five-way keys move the active corner (small step, growing to the large step
// while a key repeats), Select switches corners, the left soft key confirms
// (result 0), the right one leaves (result 1). The control's steps are in
// input pixels; on a picture larger than the screen they are raised to one
// screen pixel (small) and eight (large), so that every press shows. The
// screen stays up after it has reported; whoever showed it closes it.
class ImgSvcCropMgr : public ImgSvcScreen
{
    Q_OBJECT
public:
    ImgSvcCropMgr(QWidget *canvas, QWidget *parent, const char *name = nullptr, unsigned int flags = 0);
    ~ImgSvcCropMgr() override;

    ImgSvcCropCtl *getCropCtl() const { return m_ctl; }

protected:
    bool keypadKey(QKeyEvent *event) override;

private:
    void leftSoftKey() override;
    void rightSoftKey() override;
    // Input pixels under one screen pixel, at least 1.
    int screenPixel() const;
    void updateStatus();

    ImgSvcCropCtl *m_ctl;
    ImgSvcCropView *m_view;
    QLabel *m_status;
};
