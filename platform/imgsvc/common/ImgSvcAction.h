#pragma once
#include <list>

class MMCommand;
class MMImageSource;

class ImgSvcAction
{
public:
    // Replays commands from source into destination (which may be the same
    // file). 0 on success, -1 on failure with the destination untouched.
    static int processCmdList(MMImageSource &source, MMImageSource &destination, std::list<MMCommand *> &commands);
};
