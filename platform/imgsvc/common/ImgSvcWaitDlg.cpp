#include "ImgSvcWaitDlg.h"
#include <QCoreApplication>
#include <QEvent>

ImgSvcWaitDlg::ImgSvcWaitDlg(const QString &text, QWidget *parent) : ZPopup(parent)
{
    setText(text);
    setTimeout(0);
    // Nothing to acknowledge: soft keys would only suggest there was.
    setSoftKeyTexts(QString(), QString());
}

ImgSvcWaitDlg::~ImgSvcWaitDlg() = default;

void ImgSvcWaitDlg::showNow()
{
    show();
    repaint();
    // The work starts as soon as we return: let the window system take the
    // frame first. User input waits, it must not reach the work half-done.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

bool ImgSvcWaitDlg::event(QEvent *event)
{
    // The dialog stands for work under way: a key must not end it early.
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
        event->accept();
        return true;
    default:
        return ZPopup::event(event);
    }
}
