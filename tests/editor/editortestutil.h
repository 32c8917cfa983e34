#pragma once
// Helpers for tests that drive a whole editor window.
#include "ImgImplInterface.h"
#include "ZNoticeDlg.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace editortest {

// A key press and release as the keypad sends them. QtTest cannot make the
// soft keys (Context1, Context2), so the events are built here.
inline void press(QWidget *target, int key)
{
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(target, &down);
    QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
    QApplication::sendEvent(target, &up);
}

// The notice on screen, if any.
inline ZNoticeDlg *visibleNotice()
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (auto *n = qobject_cast<ZNoticeDlg *>(w); n && n->isVisible())
            return n;
    }
    return nullptr;
}

// Ends a test case: the editor released, no notice left on screen.
inline void releaseEditorAndNotices()
{
    ImgImplInterface::releaseImageEditor();
    while (ZNoticeDlg *n = visibleNotice())
        n->close();
}

// Window of a given class that is on screen, if any.
template <typename T> T *visibleWindow()
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (auto *t = qobject_cast<T *>(w); t && t->isVisible())
            return t;
    }
    return nullptr;
}

} // namespace editortest
