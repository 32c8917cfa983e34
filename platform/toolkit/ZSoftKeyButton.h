#pragma once
#include <QPushButton>

// One half of the soft-key bar. Paints the bar's gradient under its text so
// the two halves form one bar, and elides the text towards the middle of the
// screen rather than clipping it. Never takes focus: the keypad reaches the
// soft keys through the window, not through focus.
class ZSoftKeyButton : public QPushButton
{
    Q_OBJECT
public:
    ZSoftKeyButton(Qt::Alignment alignment, QWidget *parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Qt::Alignment m_alignment;
};
