#include "ImgSvcCtlEvent.h"

ImgSvcCtlEvent::ImgSvcCtlEvent(int type, int result) : QCustomEvent(type), m_result(result)
{
}

ImgSvcCtlEvent::~ImgSvcCtlEvent() = default;
