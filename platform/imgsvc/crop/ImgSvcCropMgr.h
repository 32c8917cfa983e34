#pragma once
#include "ImgSvcScreen.h"

class ImgSvcCropCtl;
class ImgSvcCropView;
class QLabel;

// The crop screen: the input image with the selection rectangle and its
// size in the pixels of the picture that will be written. The five-way keys
// move the active corner or the whole frame (small step, growing to the
// large step while a key repeats), Select goes on to the next of those, the
// left soft key confirms (result 0), the right one leaves (result 1). The
// control's steps are in input pixels and raised to a hundredth of the
// picture (small) and a tenth (large), at least one and eight screen
// pixels, so that every press shows. The screen stays up after it has
// reported; whoever showed it closes it.
class ImgSvcCropMgr : public ImgSvcScreen
{
    Q_OBJECT
public:
    ImgSvcCropMgr(QWidget *canvas, QWidget *parent, const char *name = nullptr, unsigned int flags = 0);
    ~ImgSvcCropMgr() override;

    ImgSvcCropCtl *getCropCtl() const { return m_ctl; }
    // The selection's size as the screen states it.
    QSize shownSize() const;

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
    QLabel *m_hint;
    // Input pixels per pixel of the picture it stands for.
    float m_scale = 1.0f;
};
