#include "ImgSvcCtlInterface.h"
#include "ImgSvcCtlEvent.h"
#include "MMImageSource.h"
#include <QCoreApplication>

ImgSvcCtlInterface::ImgSvcCtlInterface(int eventType, QObject *parent) : QObject(parent), m_eventType(eventType)
{
}

ImgSvcCtlInterface::~ImgSvcCtlInterface() = default;

void ImgSvcCtlInterface::setInput(MMImageSource *source)
{
    m_input = source;
    emit inputChanged();
}

void ImgSvcCtlInterface::setOutput(MMImageSource *source)
{
    m_output = source;
}

void ImgSvcCtlInterface::setEventReceiver(QObject *receiver)
{
    m_receiver = receiver;
}

QSize ImgSvcCtlInterface::getInputSize() const
{
    MMImageInfo info;
    if (!m_input || m_input->getImageInfo(info) != 0)
        return QSize(0, 0);
    return QSize(info.width, info.height);
}

void ImgSvcCtlInterface::refresh(bool reload)
{
    Q_UNUSED(reload)
    // The views listen to this and decode their picture again; the file may
    // have been rewritten under the same name.
    emit inputChanged();
}

void ImgSvcCtlInterface::postResult(int result)
{
    if (result == 0 && m_input && m_output)
        writeResult();
    // Posted, never sent: the receiver usually deletes the screen that reports.
    if (m_receiver)
        QCoreApplication::postEvent(m_receiver, new ImgSvcCtlEvent(m_eventType, result));
}
