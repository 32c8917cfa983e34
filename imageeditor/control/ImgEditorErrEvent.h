#pragma once
#include "QCustomEvent.h"

constexpr int IMG_ERR_EVENT_TYPE = 1251;
constexpr int ERR_FILE_IN_USE = 0;

// The edit lock's refusal, posted so that the notice runs from the event
// loop after launch has returned.
class ImgEditorErrEvent : public QCustomEvent
{
public:
    explicit ImgEditorErrEvent(int errCode);
    ~ImgEditorErrEvent() override;

    int getErrCode() const { return errCode; }

private:
    int errCode;
};
