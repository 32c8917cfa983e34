#pragma once
#include <QObject>
#include <QPointer>

class ImgSvcEffectCtl;
class ImgSvcEffectDlg;

// The style service: a dialog listing the styles with a live preview of the
// selected one applied to the control's input. Select or the left soft key
// confirms (result 0), the right soft key leaves (result 1).
class ImgSvcEffectMgr : public QObject
{
    Q_OBJECT
public:
    ImgSvcEffectMgr();
    ~ImgSvcEffectMgr() override;

    ImgSvcEffectCtl *getEffectCtl() const { return m_ctl; }
    void launchEffectDlg();
    ImgSvcEffectDlg *dialog() const;

private:
    ImgSvcEffectCtl *m_ctl;
    QPointer<ImgSvcEffectDlg> m_dlg;
};
