#include "ZSoftKey.h"
#include "ZOptionsMenu.h"
#include "ZSoftKeyButton.h"
#include <QHBoxLayout>
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
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    const Qt::Alignment align[2] = {Qt::AlignLeft | Qt::AlignAbsolute, Qt::AlignRight | Qt::AlignAbsolute};
    for (int i = 0; i < 2; ++i) {
        m_buttons[i] = new ZSoftKeyButton(align[i], this);
        layout->addWidget(m_buttons[i], 1);
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
}

void ZSoftKey::menuClosed()
{
    if (!m_menuShown)
        return;
    m_menuShown = false;
    for (int i = 0; i < 2; ++i)
        m_buttons[i]->setText(m_savedTexts[i]);
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
