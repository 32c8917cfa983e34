#pragma once
#include <QPointer>
#include <QWidget>

class ZOptionsMenu;
class QPushButton;

// The soft-key bar: two buttons with text. The left one may carry an options
// menu, which it opens; while that menu is open the keys read "Select" and
// "Back" and do that, and their own texts come back when it closes.
// Otherwise a button invokes its clicked slot. A disabled button ignores its
// key and its click.
class ZSoftKey : public QWidget
{
    Q_OBJECT
public:
    enum KEY_IDX { LEFT = 0, RIGHT = 1 };
    enum TEXT_PRIORITY { PRIORITY_NORMAL = 0, PRIORITY_HIGH = 1 };

    ZSoftKey(QWidget *parent = nullptr, const char *name = nullptr);
    ~ZSoftKey() override;

    void setText(KEY_IDX idx, const QString &text, TEXT_PRIORITY priority = PRIORITY_NORMAL);
    QString text(KEY_IDX idx) const;
    void setClickedSlot(KEY_IDX idx, const QObject *receiver, const char *member);
    void setOptMenu(KEY_IDX idx, ZOptionsMenu *menu);
    ZOptionsMenu *optMenu(KEY_IDX idx) const;
    bool isButtonEnabled(KEY_IDX idx) const;
    void setButtonEnable(KEY_IDX idx, bool enable);

    // What the key or a click on the button does; nothing when disabled.
    void press(KEY_IDX idx);

signals:
    void leftClicked();
    void rightClicked();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void placeButtons();
    void menuOpened();
    void menuClosed();

    QPushButton *m_buttons[2] = {nullptr, nullptr};
    // The keys' own texts while a menu has them.
    QString m_savedTexts[2];
    bool m_menuShown = false;
    QMetaObject::Connection m_menuConnections[2][2];
    // The menu belongs to whoever made it and may go first.
    QPointer<ZOptionsMenu> m_menus[2];
    QMetaObject::Connection m_slots[2];
};
