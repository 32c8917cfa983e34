#include "ZOptionsMenu.h"
#include "ZGlobal.h"
#include "ZOptMenuParser.h"
#include "ZTheme.h"
#include <QAction>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

// Each item triggers through its own QAction, which gives the string-based
// connectItem() a real signal ("triggered()") to connect to.
struct ZOptionsMenu::Item
{
    MenuItem record;
    QString text;
    QPixmap pixmap;
    bool hidden = false;
    QAction *action = nullptr;
};

// The menu draws inside its parent's window, not its parent: the rectangle is
// given in window coordinates and may reach beyond the parent widget. So the
// window owns it; without a parent it becomes a frameless window of its own.
ZOptionsMenu::ZOptionsMenu(const QRect &rect, QWidget *parent, const char *name, unsigned int flags,
                           ZSkinService::WidgetClsID cls, ZOptMenuParser *parser, const QString &menuName)
    : QWidget(parent ? parent->window() : nullptr, parent ? Qt::WindowFlags() : Qt::Window | Qt::FramelessWindowHint)
    , m_rect(rect)
{
    Q_UNUSED(flags);
    Q_UNUSED(cls);
    if (name)
        setObjectName(QString::fromLatin1(name));
    setFocusPolicy(Qt::StrongFocus);
    setFont(ZTheme::menuFont());
    hide(); // otherwise it would appear with its window

    // The parser is the caller's and is deleted right after construction.
    QList<MenuItem> records;
    if (parser)
        parser->parseMenu(records, menuName);
    for (const MenuItem &record : std::as_const(records)) {
        auto *item = new Item;
        item->record = record;
        item->text = record.label;
        item->action = new QAction(record.label, this);
        m_items.append(item);
    }
}

ZOptionsMenu::~ZOptionsMenu()
{
    qDeleteAll(m_items);
}

QList<MenuItem> ZOptionsMenu::getAllItemIds() const
{
    QList<MenuItem> records;
    records.reserve(m_items.size());
    for (const Item *item : m_items)
        records.append(item->record);
    return records;
}

void ZOptionsMenu::changeItem(int id, const QString &text, const QPixmap *pixmap)
{
    const int i = indexOf(id);
    if (i < 0)
        return;
    m_items[i]->text = text;
    m_items[i]->pixmap = pixmap ? *pixmap : QPixmap();
    m_items[i]->action->setText(text);
    relayoutIfOpen();
}

bool ZOptionsMenu::connectItem(int id, const QObject *receiver, const char *member)
{
    const int i = indexOf(id);
    if (i < 0 || !receiver || !member)
        return false;
    return bool(connect(m_items[i]->action, SIGNAL(triggered()), receiver, member));
}

void ZOptionsMenu::setItemHide(int id, bool hide)
{
    const int i = indexOf(id);
    if (i < 0 || m_items[i]->hidden == hide)
        return;
    m_items[i]->hidden = hide;
    if (!isReachable(m_current))
        moveCurrent(1);
    relayoutIfOpen();
}

bool ZOptionsMenu::isItemHidden(int id) const
{
    const int i = indexOf(id);
    return i >= 0 && m_items[i]->hidden;
}

QString ZOptionsMenu::itemText(int id) const
{
    const int i = indexOf(id);
    return i >= 0 ? m_items[i]->text : QString();
}

QList<int> ZOptionsMenu::visibleItemIds() const
{
    QList<int> ids;
    for (int i = 0; i < m_items.size(); ++i) {
        if (isReachable(i))
            ids.append(m_items[i]->record.id);
    }
    return ids;
}

int ZOptionsMenu::currentItemId() const
{
    return isReachable(m_current) ? m_items[m_current]->record.id : -1;
}

void ZOptionsMenu::popup()
{
    m_current = 0;
    m_top = 0;
    if (!isReachable(m_current))
        moveCurrent(1);
    if (currentItemId() < 0)
        return; // nothing to offer

    QWidget *win = parentWidget() ? parentWidget()->window() : nullptr;
    QWidget *focused = win ? win->focusWidget() : nullptr;
    m_returnFocus = (focused && focused != this) ? focused : win;

    m_open = true;
    setGeometry(boxGeometry());
    ensureCurrentShown();
    show();
    raise();
    if (isWindow())
        activateWindow();
    // Holding the focus keeps the window from acting on the menu's keys.
    setFocus(Qt::PopupFocusReason);
    update();
    emit opened();
}

void ZOptionsMenu::dismiss()
{
    if (!m_open)
        return;
    m_open = false;
    hide();
    QWidget *target = m_returnFocus;
    if (!target || !target->isVisible())
        target = parentWidget() ? parentWidget()->window() : nullptr;
    if (target)
        target->setFocus(Qt::PopupFocusReason);
    emit closed();
}

void ZOptionsMenu::selectCurrent()
{
    activateCurrent();
}

bool ZOptionsMenu::isOpen() const
{
    return m_open;
}

void ZOptionsMenu::keyPressEvent(QKeyEvent *event)
{
    // Everything is swallowed while open: the keys are the menu's.
    event->accept();
    switch (event->key()) {
    case Qt::Key_Up:
        moveCurrent(-1);
        break;
    case Qt::Key_Down:
        moveCurrent(1);
        break;
    case Qt::Key_Select:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Context1:
    case Qt::Key_F1:
        if (!event->isAutoRepeat())
            activateCurrent();
        break;
    case Qt::Key_Context2:
    case Qt::Key_F2:
    case Qt::Key_Escape:
    case Qt::Key_Back:
        if (!event->isAutoRepeat())
            dismiss();
        break;
    default:
        break;
    }
}

void ZOptionsMenu::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    const QRect r = rect();
    p.fillRect(r, ZTheme::menuBackground());
    p.setPen(ZTheme::frame());
    p.drawRect(r.adjusted(0, 0, -1, -1));

    const int pad = ZTheme::scaled(2);
    const int margin = ZTheme::scaled(8);
    const int rowH = rowHeight();
    const QList<int> ids = visibleItemIds();
    const int rows = visibleRowCount();
    for (int row = 0; row < rows && m_top + row < ids.size(); ++row) {
        const Item *item = m_items[indexOf(ids[m_top + row])];
        const QRect rowRect(pad, pad + row * rowH, r.width() - 2 * pad, rowH);
        const bool current = item->record.id == currentItemId();
        if (current) {
            QLinearGradient g(rowRect.topLeft(), rowRect.bottomLeft());
            g.setColorAt(0, ZTheme::accent());
            g.setColorAt(1, ZTheme::accentDark());
            p.fillRect(rowRect, g);
        }
        // Laid out left to right, then mirrored for a right-to-left language.
        QRect textRect = rowRect.adjusted(margin, 0, -margin, 0);
        if (!item->pixmap.isNull()) {
            const int s = rowH - 2 * pad;
            p.drawPixmap(QStyle::visualRect(layoutDirection(), r, QRect(textRect.left(), rowRect.top() + pad, s, s)),
                         item->pixmap);
            textRect.setLeft(textRect.left() + s + margin / 2);
        }
        p.setPen(current ? QColor(Qt::white) : ZTheme::menuText());
        p.drawText(QStyle::visualRect(layoutDirection(), r, textRect),
                   QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter),
                   fontMetrics().elidedText(item->text, Qt::ElideRight, textRect.width()));
    }

    // Small marks where the list continues beyond the box.
    const int a = ZTheme::scaled(4);
    const int cx = isRightToLeft() ? margin : r.width() - margin;
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(ZTheme::disabledText());
    if (m_top > 0)
        p.drawPolygon(QPolygon({QPoint(cx - a, pad + a + 1), QPoint(cx + a, pad + a + 1), QPoint(cx, pad + 1)}));
    if (m_top + rows < ids.size()) {
        const int b = r.height() - pad - 1;
        p.drawPolygon(QPolygon({QPoint(cx - a, b - a), QPoint(cx + a, b - a), QPoint(cx, b)}));
    }
}

void ZOptionsMenu::mouseReleaseEvent(QMouseEvent *event)
{
    const int row = (event->position().toPoint().y() - ZTheme::scaled(2)) / rowHeight();
    const QList<int> ids = visibleItemIds();
    if (row < 0 || row >= visibleRowCount() || m_top + row >= ids.size())
        return;
    m_current = indexOf(ids[m_top + row]);
    activateCurrent();
}

void ZOptionsMenu::activateCurrent()
{
    const int id = currentItemId();
    if (id < 0)
        return;
    QAction *action = m_items[m_current]->action;
    // Closed first, so that whatever the slot opens (a dialog, another
    // screen) gets the focus instead of the menu taking it back.
    dismiss();
    QPointer<ZOptionsMenu> self(this);
    action->trigger();
    if (self)
        emit activated(id);
}

void ZOptionsMenu::moveCurrent(int step)
{
    const int n = m_items.size();
    if (n == 0)
        return;
    int i = m_current;
    for (int tries = 0; tries < n; ++tries) {
        i = ((i + step) % n + n) % n;
        if (isReachable(i)) {
            m_current = i;
            break;
        }
    }
    ensureCurrentShown();
    update();
}

bool ZOptionsMenu::isReachable(int index) const
{
    return index >= 0 && index < m_items.size() && !m_items[index]->hidden && m_items[index]->record.state != -1;
}

int ZOptionsMenu::indexOf(int id) const
{
    for (int i = 0; i < m_items.size(); ++i) {
        if (m_items[i]->record.id == id && m_items[i]->record.state != -1)
            return i;
    }
    return -1;
}

int ZOptionsMenu::rowHeight() const
{
    return fontMetrics().height() + ZTheme::scaled(10);
}

// Anchored to the bottom-left of the rectangle, just above the soft-key bar
// when the rectangle reaches it, so the keys that close the menu stay visible.
QRect ZOptionsMenu::boxGeometry() const
{
    QRect avail = m_rect;
    if (!isWindow()) {
        avail &= parentWidget()->rect();
        const QRect keys = ZGlobal::getCstR();
        if (avail.top() < keys.top() && avail.bottom() >= keys.top())
            avail.setBottom(keys.top() - 1);
    }
    const int gap = ZTheme::scaled(3);
    const int pad = ZTheme::scaled(2);
    const int margin = ZTheme::scaled(8);
    const int rowH = rowHeight();

    int textW = 0;
    for (int i = 0; i < m_items.size(); ++i) {
        if (!isReachable(i))
            continue;
        int w = fontMetrics().horizontalAdvance(m_items[i]->text);
        if (!m_items[i]->pixmap.isNull())
            w += rowH;
        textW = qMax(textW, w);
    }
    const int maxW = qMax(1, avail.width() - 2 * gap);
    // Slack of one margin: the widest label must not be elided by rounding.
    const int width = qBound(qMin(maxW, int(avail.width() * 0.6)), textW + 3 * margin + 2 * pad, maxW);
    const int fit = qMax(1, (avail.height() - 2 * gap - 2 * pad) / rowH);
    const int rows = qMax(1, qMin(int(visibleItemIds().size()), fit));
    const int height = rows * rowH + 2 * pad;
    return QRect(avail.left() + gap, avail.bottom() - gap - height + 1, width, height);
}

int ZOptionsMenu::visibleRowCount() const
{
    return qMax(1, (height() - 2 * ZTheme::scaled(2)) / rowHeight());
}

void ZOptionsMenu::ensureCurrentShown()
{
    const int row = visibleItemIds().indexOf(currentItemId());
    if (row < 0) {
        m_top = 0;
        return;
    }
    const int rows = visibleRowCount();
    if (row < m_top)
        m_top = row;
    else if (row >= m_top + rows)
        m_top = row - rows + 1;
}

void ZOptionsMenu::relayoutIfOpen()
{
    if (!m_open)
        return;
    if (currentItemId() < 0) {
        dismiss();
        return;
    }
    setGeometry(boxGeometry());
    ensureCurrentShown();
    update();
}
