#pragma once
#include <QObject>
#include <QPointer>
#include <QSize>

class ImgSvcResizeCtl;
class ImgSvcResizeDlg;

// The resize service: a dialog listing target sizes that keep the aspect
// ratio and are smaller than the input (75 %, 50 %, 25 %, common screen
// sizes). Choosing one sets the control's target size and reports result 0;
// leaving reports result 1.
class ImgSvcResizeMgr : public QObject
{
    Q_OBJECT
public:
    ImgSvcResizeMgr();
    ~ImgSvcResizeMgr() override;

    ImgSvcResizeCtl *getResizeCtl() const { return m_ctl; }
    void launchResizeDlg(const QSize &inputSize);
    ImgSvcResizeDlg *dialog() const;

private:
    ImgSvcResizeCtl *m_ctl;
    QPointer<ImgSvcResizeDlg> m_dlg;
};
