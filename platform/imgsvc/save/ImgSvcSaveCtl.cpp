#include "ImgSvcSaveCtl.h"
#include "ImgSvcCtlEvent.h"

ImgSvcSaveCtl::ImgSvcSaveCtl(QObject *parent) : ImgSvcCtlInterface(CTL_EVENT_SAVE, parent)
{
}

ImgSvcSaveCtl::~ImgSvcSaveCtl() = default;
