#include "ImgSvcOverlayCtl.h"
#include "ImgSvcCtlEvent.h"
#include "MMOverlayImageCommand.h"

ImgSvcOverlayCtl::ImgSvcOverlayCtl(QObject *parent) : ImgSvcCtlInterface(CTL_EVENT_OVERLAY, parent)
{
}

ImgSvcOverlayCtl::~ImgSvcOverlayCtl()
{
    if (m_owned) {
        for (MMOverlayImageCommand *c : m_commands)
            delete c;
    }
}

void ImgSvcOverlayCtl::addCommand(MMOverlayImageCommand *command)
{
    if (command)
        m_commands.push_back(command);
}
