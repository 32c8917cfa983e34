#include "QCustomEvent.h"

QCustomEvent::QCustomEvent(int type, void *data)
    : QEvent(static_cast<QEvent::Type>(type))
    , m_data(data)
{
}

// The data pointer is the poster's; the event never owns it.
QCustomEvent::~QCustomEvent() = default;
