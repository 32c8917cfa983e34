#include "ZSoftKey.h"
#include "ZOptionsMenu.h"
#include "ZSoftKeyButton.h"
#include <QPointer>

ZSoftKey::ZSoftKey(QWidget *parent, const char *name)
    : QWidget(parent)
{
    if (name)
        setObjectName(QString::fromLatin1(name));
    setFocusPolicy(Qt::NoFocus);
    // Each label sits over its key, so the bar does not mirror with a
    // right-to-left language: the left key's label stays on the left.
    setLayoutDirection(Qt::LeftToRight);
    const Qt::Alignment align[2] = {Qt::AlignLeft | Qt::AlignAbsolute, Qt::AlignRight | Qt::AlignAbsolute};
    for (int i = 0; i < 2; ++i) {
        m_buttons[i] = new ZSoftKeyButton(align[i], this);
        const KEY_IDX idx = static_cast<KEY_IDX>(i);
        connect(m_buttons[i], &QPushButton::clicked, this, [this, idx] { press(idx); });
    }
}

ZSoftKey::~ZSoftKey() = default;

void ZSoftKey::setText(KEY_IDX idx, const QString &text, TEXT_PRIORITY priority)
{
    Q_UNUSED(priority); // one text per key here; the priority only matters with more content than room
    if (idx != LEFT && idx != RIGHT)
        return;
    m_buttons[idx]->setText(text);
    placeButtons();
}

void ZSoftKey::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeButtons();
}

// Half the bar each; a label longer than its half borrows from the other key
// when both then fit whole ("Save" beside "Save as" in a long language).
void ZSoftKey::placeButtons()
{
    const int w = width(), half = w / 2;
    const int need[2] = {m_buttons[LEFT]->sizeHint().width(), m_buttons[RIGHT]->sizeHint().width()};
    int left = half;
    if (need[LEFT] + need[RIGHT] <= w) {
        if (need[RIGHT] > w - half)
            left = w - need[RIGHT];
        else if (need[LEFT] > half)
            left = need[LEFT];
    }
    m_buttons[LEFT]->setGeometry(0, 0, left, height());
    m_buttons[RIGHT]->setGeometry(left, 0, w - left, height());
}

QString ZSoftKey::text(KEY_IDX idx) const
{
    return (idx == LEFT || idx == RIGHT) ? m_buttons[idx]->text() : QString();
}

void ZSoftKey::setClickedSlot(KEY_IDX idx, const QObject *receiver, const char *member)
{
    if (idx != LEFT && idx != RIGHT)
        return;
    // A key has one clicked slot: setting another one replaces it.
    QObject::disconnect(m_slots[idx]);
    m_slots[idx] = QMetaObject::Connection();
    if (!receiver || !member)
        return;
    const char *signal = idx == LEFT ? SIGNAL(leftClicked()) : SIGNAL(rightClicked());
    m_slots[idx] = connect(this, signal, receiver, member);
}

void ZSoftKey::setOptMenu(KEY_IDX idx, ZOptionsMenu *menu)
{
    if (idx != LEFT && idx != RIGHT)
        return;
    for (QMetaObject::Connection &c : m_menuConnections[idx])
        QObject::disconnect(c);
    m_menus[idx] = menu;
    if (!menu)
        return;
    m_menuConnections[idx][0] = connect(menu, &ZOptionsMenu::opened, this, &ZSoftKey::menuOpened);
    m_menuConnections[idx][1] = connect(menu, &ZOptionsMenu::closed, this, &ZSoftKey::menuClosed);
}

void ZSoftKey::menuOpened()
{
    if (m_menuShown)
        return;
    m_menuShown = true;
    for (int i = 0; i < 2; ++i)
        m_savedTexts[i] = m_buttons[i]->text();
    m_buttons[LEFT]->setText(tr("TXT_RID_SOFTKEY_SELECT", "Select"));
    m_buttons[RIGHT]->setText(tr("TXT_RID_SOFTKEY_BACK", "Back"));
    placeButtons();
}

void ZSoftKey::menuClosed()
{
    if (!m_menuShown)
        return;
    m_menuShown = false;
    for (int i = 0; i < 2; ++i)
        m_buttons[i]->setText(m_savedTexts[i]);
    placeButtons();
}

ZOptionsMenu *ZSoftKey::optMenu(KEY_IDX idx) const
{
    return (idx == LEFT || idx == RIGHT) ? m_menus[idx].data() : nullptr;
}

bool ZSoftKey::isButtonEnabled(KEY_IDX idx) const
{
    return (idx == LEFT || idx == RIGHT) && m_buttons[idx]->isEnabled();
}

void ZSoftKey::setButtonEnable(KEY_IDX idx, bool enable)
{
    if (idx == LEFT || idx == RIGHT)
        m_buttons[idx]->setEnabled(enable);
}

void ZSoftKey::press(KEY_IDX idx)
{
    if (!isButtonEnabled(idx))
        return;
    // An open menu has both keys: left selects, right closes.
    for (const QPointer<ZOptionsMenu> &open : m_menus) {
        if (open && open->isOpen()) {
            if (idx == LEFT)
                open->selectCurrent();
            else
                open->dismiss();
            return;
        }
    }
    if (ZOptionsMenu *menu = m_menus[idx]) {
        if (menu->isOpen())
            menu->dismiss();
        else
            menu->popup();
        return;
    }
    if (idx == LEFT)
        emit leftClicked();
    else
        emit rightClicked();
}
