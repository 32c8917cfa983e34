#include "ImgEditorErrEvent.h"

ImgEditorErrEvent::ImgEditorErrEvent(int code)
    : QCustomEvent(IMG_ERR_EVENT_TYPE), errCode(code)
{
}

ImgEditorErrEvent::~ImgEditorErrEvent() = default;
