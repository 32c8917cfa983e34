#include "ImgSvcResizeCtl.h"
#include "ImgSvcCtlEvent.h"
#include "ImgSvcPreviewScale.h"
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
    const int result = scale();
    // Run on its own, this makes a preview: screens shown it later give
    // sizes in the pixels of the picture it was made from.
    if (result == 0)
        ImgSvcPreviewScale::record(QString::fromStdString(getOutput()->getFileName()), m_target, getInputSize());
    return result;
}

int ImgSvcResizeCtl::scale()
{
    if (!getInput() || !getOutput() || m_target.isEmpty())
        return -1;
    return MMImageScaler::scaleFile(QString::fromStdString(getInput()->getFileName()),
                                    QString::fromStdString(getOutput()->getFileName()), m_target);
}

void ImgSvcResizeCtl::writeResult()
{
    // The user's resize: a new picture, not a preview.
    if (m_target.isValid() && !m_target.isEmpty())
        scale();
}
