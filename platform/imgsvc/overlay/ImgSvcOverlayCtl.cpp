#include "ImgSvcOverlayCtl.h"
#include "MMCommandRunner.h"
#include "MMImageSource.h"
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

void ImgSvcOverlayCtl::writeResult()
{
    if (m_commands.empty())
        return;
    const std::list<MMCommand *> commands(m_commands.begin(), m_commands.end());
    MMCommandRunner::run(*getInput(), *getOutput(), commands);
}
