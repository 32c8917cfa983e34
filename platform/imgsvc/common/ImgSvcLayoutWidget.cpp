#include "ImgSvcLayoutWidget.h"
#include "ImgSvcLayout.h"
#include <QMargins>

ImgSvcLayoutWidget::ImgSvcLayoutWidget(QWidget *parent, const char *name, unsigned int flags)
    : QWidget(parent)
{
    Q_UNUSED(flags) // always a child of its screen
    if (name)
        setObjectName(QString::fromLatin1(name));
    const qint16 *l = ImgSvcLayout::layout;
    setPadding(l[69], l[71], l[70], l[72]);
}

ImgSvcLayoutWidget::~ImgSvcLayoutWidget() = default;

void ImgSvcLayoutWidget::setPadding(int left, int top, int right, int bottom)
{
    m_left = left;
    m_top = top;
    m_right = right;
    m_bottom = bottom;
    relayout();
}

QMargins ImgSvcLayoutWidget::padding() const
{
    return QMargins(m_left, m_top, m_right, m_bottom);
}

void ImgSvcLayoutWidget::setService(QWidget *service)
{
    if (m_service == service)
        return;
    m_service = service;
    if (m_service) {
        m_service->setParent(this);
        m_service->show();
    }
    relayout();
}

void ImgSvcLayoutWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    relayout();
}

void ImgSvcLayoutWidget::relayout()
{
    if (m_service)
        m_service->setGeometry(rect().marginsRemoved(padding()));
}
