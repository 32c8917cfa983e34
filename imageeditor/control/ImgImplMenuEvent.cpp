#include "ImgImplMenuEvent.h"

ImgImplMenuEvent::ImgImplMenuEvent(int id)
    : QCustomEvent(IMG_OPTION_EVENT_TYPE), eventId(id)
{
}

ImgImplMenuEvent::~ImgImplMenuEvent() = default;
