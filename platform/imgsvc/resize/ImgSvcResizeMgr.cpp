#include "ImgSvcResizeMgr.h"
#include "ImgSvcResizeCtl.h"
#include "ImgSvcResizeDlg.h"

ImgSvcResizeMgr::ImgSvcResizeMgr() : m_ctl(new ImgSvcResizeCtl(this))
{
}

ImgSvcResizeMgr::~ImgSvcResizeMgr()
{
    // The dialog points at our control; it must not outlive it.
    delete m_dlg.data();
}

void ImgSvcResizeMgr::launchResizeDlg(const QSize &inputSize)
{
    delete m_dlg.data();
    m_dlg = new ImgSvcResizeDlg(m_ctl, inputSize);
    m_dlg->show();
    m_dlg->activateWindow();
}

ImgSvcResizeDlg *ImgSvcResizeMgr::dialog() const
{
    return m_dlg.data();
}
