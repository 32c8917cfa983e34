#pragma once
#include "QCustomEvent.h"

constexpr int IMG_OPTION_EVENT_TYPE = 1250;

// A menu choice, posted by a menu slot to the main frame.
class ImgImplMenuEvent : public QCustomEvent
{
public:
    explicit ImgImplMenuEvent(int eventId);
    ~ImgImplMenuEvent() override;

    int getEventId() const { return eventId; }

private:
    int eventId;
};
