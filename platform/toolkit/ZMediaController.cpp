#include "ZMediaController.h"
#include "ZGlobal.h"
#include "ZTheme.h"
#include <QPainter>
#include <QPainterPath>

ZMediaController::ZMediaController(QWidget *parent, unsigned int flags, ZSkinService::WidgetClsID cls,
                                   ColumnA columnA, ColumnB columnB, ProgressWidget progress, MeterStyle meter)
    : QWidget(parent)
    , m_columnA(columnA)
{
    Q_UNUSED(flags);
    Q_UNUSED(cls);
    // No media plays here: no time, progress or level to show.
    Q_UNUSED(columnB);
    Q_UNUSED(progress);
    Q_UNUSED(meter);
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_TranslucentBackground); // drawn over an image
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

ZMediaController::~ZMediaController() = default;

QSize ZMediaController::sizeHint() const
{
    const QSize s = ZGlobal::screenSize();
    return QSize(qRound(s.width() * 0.3), qRound(s.height() * 0.11));
}

// The pad is an ellipse somewhat wider than high, centred in the bar, with
// room around it for the bar's rounded edge.
QRect ZMediaController::getCurr5WayButton() const
{
    if (m_columnA != COLUMN_A_5WAY)
        return QRect();
    // Laid out on the preferred size: callers ask for the pad before the bar is placed.
    const QRect bar(QPoint(0, 0), sizeHint());
    const int margin = qMax(1, ZTheme::scaled(2));
    const int h = qMax(1, bar.height() - 2 * margin);
    const int w = qMin(bar.width() - 2 * margin, qRound(h * 1.5));
    return QRect(bar.left() + (bar.width() - w) / 2, bar.top() + margin, w, h);
}

void ZMediaController::set5WayButtonPixmap(FiveWayButtons button, const QString &pressed, const QString &unpressed)
{
    if (button < BTN_CENTER || button > BTN_LEFT)
        return;
    m_icons[button] = {pressed, unpressed};
    update();
}

QString ZMediaController::buttonPixmapName(FiveWayButtons button, bool pressed) const
{
    if (button < BTN_CENTER || button > BTN_LEFT)
        return QString();
    return pressed ? m_icons[button].pressed : m_icons[button].unpressed;
}

void ZMediaController::setButtonPressed(FiveWayButtons button, bool pressed)
{
    if (button < BTN_CENTER || button > BTN_LEFT)
        return;
    if (pressed)
        m_pressed = button;
    else if (m_pressed == button)
        m_pressed = -1;
    update();
}

// Up and down each take one half of the pad's height, so neither crosses
// the middle; left and right sit at the pad's ends, the centre in the middle.
QRect ZMediaController::iconRect(FiveWayButtons button) const
{
    const QRect pad = getCurr5WayButton();
    const int inset = qMax(1, pad.height() / 20);
    const int side = qMax(1, (pad.height() - 2 * inset - 1) / 2);
    const QPoint c = pad.center();
    QRect r(0, 0, side, side);
    r.moveCenter(c);
    switch (button) {
    case BTN_UP:
        r.moveTop(pad.top() + inset);
        break;
    case BTN_DOWN:
        r.moveBottom(pad.bottom() - inset);
        break;
    case BTN_LEFT:
        r.moveLeft(pad.left() + inset + pad.width() / 10);
        break;
    case BTN_RIGHT:
        r.moveRight(pad.right() - inset - pad.width() / 10);
        break;
    case BTN_CENTER:
        break;
    }
    return r;
}

void ZMediaController::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);

    const QRectF bar = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const double radius = bar.height() / 2.0;
    QColor back = ZTheme::barBottom();
    back.setAlpha(200);
    p.setPen(QPen(ZTheme::barTop(), 1));
    p.setBrush(back);
    p.drawRoundedRect(bar, radius, radius);

    const QRect pad = getCurr5WayButton();
    if (pad.isEmpty())
        return;
    QLinearGradient g(pad.topLeft(), pad.bottomLeft());
    g.setColorAt(0, ZTheme::barTop().lighter(130));
    g.setColorAt(1, ZTheme::barBottom());
    p.setPen(QPen(ZTheme::frame(), 1));
    p.setBrush(g);
    p.drawEllipse(QRectF(pad).adjusted(0.5, 0.5, -0.5, -0.5));

    for (int b = BTN_CENTER; b <= BTN_LEFT; ++b) {
        const auto button = static_cast<FiveWayButtons>(b);
        QString name = buttonPixmapName(button, b == m_pressed);
        if (name.isEmpty())
            name = buttonPixmapName(button, false);
        const QPixmap pm = ZSkinService::getPixmap(name);
        if (!pm.isNull())
            p.drawPixmap(iconRect(button), pm);
    }
}
