#include "ZKbMainWidget.h"
#include "ZSoftKey.h"
#include <QKeyEvent>

ZKbMainWidget::ZKbMainWidget(QWidget *parent, const char *name, unsigned int flags)
    : ZMainWidget(parent, name, flags)
{
    // Keys the content does not use end up here, so the window must be able
    // to hold the focus itself when nothing inside wants it.
    setFocusPolicy(Qt::StrongFocus);
}

ZKbMainWidget::~ZKbMainWidget() = default;

void ZKbMainWidget::keyPressEvent(QKeyEvent *event)
{
    ZSoftKey::KEY_IDX idx;
    switch (event->key()) {
    case Qt::Key_Context1:
    case Qt::Key_F1:
        idx = ZSoftKey::LEFT;
        break;
    case Qt::Key_Context2:
    case Qt::Key_F2:
        idx = ZSoftKey::RIGHT;
        break;
    default:
        ZMainWidget::keyPressEvent(event);
        return;
    }
    ZSoftKey *keys = getSoftKey(false);
    if (!keys || !keys->isButtonEnabled(idx)) {
        event->ignore();
        return;
    }
    event->accept();
    // A held soft key would open and close a menu over and over.
    if (!event->isAutoRepeat())
        keys->press(idx);
}
