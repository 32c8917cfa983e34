#pragma once
#include "ImgSvcCtlInterface.h"
#include <list>

class MMOverlayImageCommand;

// Overlay control: one MMOverlayImageCommand per placed element, in placing
// order, rectangles in input-image pixels. Once the control has reported
// result 0 the commands belong to whoever reads the list; until then (and
// when the user leaves without confirming) the control deletes them.
class ImgSvcOverlayCtl : public ImgSvcCtlInterface
{
    Q_OBJECT
public:
    explicit ImgSvcOverlayCtl(QObject *parent = nullptr);
    ~ImgSvcOverlayCtl() override;

    std::list<MMOverlayImageCommand *> &getCommandList() { return m_commands; }
    void addCommand(MMOverlayImageCommand *command);
    // Ownership of the listed commands passes to the reader of the list.
    void releaseCommands() { m_owned = false; }

protected:
    void writeResult() override;

private:
    std::list<MMOverlayImageCommand *> m_commands;
    bool m_owned = true;
};
