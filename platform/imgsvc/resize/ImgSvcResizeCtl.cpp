#include "ImgSvcResizeCtl.h"
#include "ImgSvcCtlEvent.h"
#include "MMImageScaler.h"
#include "MMImageSource.h"

ImgSvcResizeCtl::ImgSvcResizeCtl(QObject *parent) : ImgSvcCtlInterface(CTL_EVENT_RESIZE, parent)
{
}

ImgSvcResizeCtl::~ImgSvcResizeCtl() = default;

void ImgSvcResizeCtl::setTargetSize(const QSize &size)
{
    m_target = size;
}

int ImgSvcResizeCtl::process()
{
    if (!getInput() || !getOutput() || m_target.isEmpty())
        return -1;
    return MMImageScaler::scaleFile(QString::fromStdString(getInput()->getFileName()),
                                    QString::fromStdString(getOutput()->getFileName()), m_target);
}

void ImgSvcResizeCtl::writeResult()
{
    if (m_target.isValid() && !m_target.isEmpty())
        process();
}
