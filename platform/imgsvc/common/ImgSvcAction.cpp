#include "ImgSvcAction.h"
#include "MMCommandRunner.h"

int ImgSvcAction::processCmdList(MMImageSource &source, MMImageSource &destination, std::list<MMCommand *> &commands)
{
    return MMCommandRunner::run(source, destination, commands);
}
