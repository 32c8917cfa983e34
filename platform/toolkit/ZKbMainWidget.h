#pragma once
#include "ZMainWidget.h"

// A ZMainWidget driven by the keypad: the left soft key (Context1, or F1)
// opens the left button's options menu, the right soft key (Context2, or F2)
// clicks the right button, each only while that button is enabled.
class ZKbMainWidget : public ZMainWidget
{
    Q_OBJECT
public:
    explicit ZKbMainWidget(QWidget *parent = nullptr, const char *name = nullptr, unsigned int flags = 0);
    ~ZKbMainWidget() override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
};
