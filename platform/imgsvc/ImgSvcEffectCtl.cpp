#include "ImgSvcEffectCtl.h"
#include "ImgSvcCtlEvent.h"

ImgSvcEffectCtl::ImgSvcEffectCtl(QObject *parent) : ImgSvcCtlInterface(CTL_EVENT_EFFECT, parent)
{
}

ImgSvcEffectCtl::~ImgSvcEffectCtl() = default;
