#include "ImgSvcEffectCtl.h"
#include "MMEffectCommand.h"
#include "MMCommandRunner.h"
#include "MMImageSource.h"
#include "ImgSvcCtlEvent.h"

ImgSvcEffectCtl::ImgSvcEffectCtl(QObject *parent) : ImgSvcCtlInterface(CTL_EVENT_EFFECT, parent)
{
}

ImgSvcEffectCtl::~ImgSvcEffectCtl() = default;

void ImgSvcEffectCtl::writeResult()
{
    MMEffectCommand effect = m_command;
    std::list<MMCommand *> commands{&effect};
    MMCommandRunner::run(*getInput(), *getOutput(), commands);
}
