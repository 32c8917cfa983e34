#include "ImgImplInterface.h"

#include "ImgImplMainFrame.h"

namespace {
// The one editor this library has open; not exported.
ImgImplMainFrame *g_mainFrame = nullptr;
} // namespace

ImgImplInterface::ImgImplInterface() = default;
ImgImplInterface::~ImgImplInterface() = default;

ImgImplMainFrame *ImgImplInterface::launchImageEditor(const QString &file, QWidget *parent, void *)
{
    g_mainFrame = new ImgImplMainFrame(file, parent, nullptr, 1);
    g_mainFrame->show();
    g_mainFrame->activateWindow();
    g_mainFrame->setFocus();
    return g_mainFrame;
}

void ImgImplInterface::releaseImageEditor()
{
    ImgImplMainFrame *frame = g_mainFrame;
    if (frame) {
        frame->close(false);
        delete frame;
    }
    g_mainFrame = nullptr;
}

extern "C" QWidget *launchImageEditor(const QString &file, QWidget *parent, void *reserved)
{
    return ImgImplInterface::launchImageEditor(file, parent, reserved);
}

extern "C" void releaseImageEditor()
{
    ImgImplInterface::releaseImageEditor();
}
