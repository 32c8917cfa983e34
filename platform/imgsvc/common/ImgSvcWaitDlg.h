#pragma once
#include "ZPopup.h"

// "Please wait" over the screen while work runs on the GUI thread: no soft
// keys, no time-out, and no key takes it away; whoever started the work
// deletes it. showNow() paints it before returning, so that it is on the
// screen before the work blocks the event loop.
class ImgSvcWaitDlg : public ZPopup
{
    Q_OBJECT
public:
    explicit ImgSvcWaitDlg(const QString &text, QWidget *parent = nullptr);
    ~ImgSvcWaitDlg() override;

    void showNow();

protected:
    bool event(QEvent *event) override;
};
