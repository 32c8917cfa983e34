#pragma once
#include <QEvent>

// Qt 6 dropped the classic custom event that carries a type and a data
// pointer; the editor and the services post events of this shape.
class QCustomEvent : public QEvent
{
public:
    explicit QCustomEvent(int type, void *data = nullptr);
    ~QCustomEvent() override;

    void *data() const { return m_data; }
    void setData(void *data) { m_data = data; }

private:
    void *m_data;
};
