#include "ImgSvcEffectMgr.h"
#include "ImgSvcEffectCtl.h"
#include "ImgSvcEffectDlg.h"

ImgSvcEffectMgr::ImgSvcEffectMgr() : m_ctl(new ImgSvcEffectCtl(this))
{
}

ImgSvcEffectMgr::~ImgSvcEffectMgr()
{
    // The dialog points at our control; it must not outlive it.
    delete m_dlg.data();
}

void ImgSvcEffectMgr::launchEffectDlg()
{
    delete m_dlg.data();
    m_dlg = new ImgSvcEffectDlg(m_ctl);
    m_dlg->show();
    m_dlg->activateWindow();
}

ImgSvcEffectDlg *ImgSvcEffectMgr::dialog() const
{
    return m_dlg.data();
}
