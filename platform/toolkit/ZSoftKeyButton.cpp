#include "ZSoftKeyButton.h"
#include "ZTheme.h"
#include <QPainter>
#include <QtMath>

ZSoftKeyButton::ZSoftKeyButton(Qt::Alignment alignment, QWidget *parent)
    : QPushButton(parent)
    , m_alignment(alignment)
{
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    setFont(ZTheme::softKeyFont());
}

QSize ZSoftKeyButton::sizeHint() const
{
    // Rounded up: a label a fraction of a pixel wider than its button is elided.
    return QSize(qCeil(QFontMetricsF(font()).horizontalAdvance(text())) + 2 * ZTheme::scaled(6),
                 fontMetrics().height());
}

QSize ZSoftKeyButton::minimumSizeHint() const
{
    return QSize(0, 0);
}

void ZSoftKeyButton::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    const QRect r = rect();
    QLinearGradient g(r.topLeft(), r.bottomLeft());
    g.setColorAt(0, ZTheme::barTop());
    g.setColorAt(1, ZTheme::barBottom());
    p.fillRect(r, g);
    p.setPen(ZTheme::barTop().lighter(140));
    p.drawLine(r.topLeft(), r.topRight());

    if (isDown()) {
        QLinearGradient hg(r.topLeft(), r.bottomLeft());
        hg.setColorAt(0, ZTheme::accent());
        hg.setColorAt(1, ZTheme::accentDark());
        p.fillRect(r.adjusted(0, 1, 0, 0), hg);
    }

    const int margin = ZTheme::scaled(6);
    const QRect textRect = r.adjusted(margin, 0, -margin, 0);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, textRect.width());
    p.setFont(font());
    p.setPen(isEnabled() ? ZTheme::barText() : ZTheme::disabledText());
    p.drawText(textRect, int(m_alignment | Qt::AlignVCenter), shown);
}
