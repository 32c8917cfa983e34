#pragma once
#include "QCustomEvent.h"

enum ImgSvcCtlEventType {
    CTL_EVENT_CROP = 1001,
    CTL_EVENT_RESIZE = 1002,
    CTL_EVENT_OVERLAY = 1003,
    CTL_EVENT_SAVE = 1004,
    CTL_EVENT_EFFECT = 1005,
    CTL_EVENT_APPLY = 1006,
};

// A service control's report: its type says which control sent it, its result
// is 0 (confirmed), 1 (left without confirming; from the save screen: save as)
// or 2.
class ImgSvcCtlEvent : public QCustomEvent
{
public:
    ImgSvcCtlEvent(int type, int result);
    ~ImgSvcCtlEvent() override;

    int getResult() const { return m_result; }

private:
    int m_result;
};
