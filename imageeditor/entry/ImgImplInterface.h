#pragma once
// The image editor's entry points. A host launches one editor on one image
// file, waits for the editor's sigMeClosed() signal, then releases it (from
// its own event loop, not inside the signal), and launches again only after
// release.

#include "voimageeditor_export.h"

class ImgImplMainFrame;
class QString;
class QWidget;

class ImgImplInterface
{
public:
    IMGIMPL_EXPORT ImgImplInterface();
    IMGIMPL_EXPORT ~ImgImplInterface();

    // Opens the editor window on file and returns it; problems with the file
    // are reported by the editor itself. reserved is not read.
    IMGIMPL_EXPORT static ImgImplMainFrame *launchImageEditor(const QString &file, QWidget *parent, void *reserved);
    // Closes and deletes the editor; nothing when none is open.
    IMGIMPL_EXPORT static void releaseImageEditor();
};

// The same two operations without C++ name mangling, for hosts that load the
// library at run time. The window is returned as a QWidget; it emits
// sigMeClosed().
extern "C" {
IMGIMPL_EXPORT QWidget *launchImageEditor(const QString &file, QWidget *parent, void *reserved);
IMGIMPL_EXPORT void releaseImageEditor();
}
