#pragma once
#include "MenuItem.h"
#include "ZSkinService.h"
#include <QList>
#include <QPointer>
#include <QWidget>

class ZOptMenuParser;
class QPixmap;

// Keypad options menu. Opens over the given rectangle; Up/Down move, Select
// activates the current item (the menu closes, then the item's slot runs);
// the left soft key selects too, the right one closes it; while it is open
// the window's soft keys say so. Hidden items are neither shown nor reachable.
class ZOptionsMenu : public QWidget
{
    Q_OBJECT
public:
    ZOptionsMenu(const QRect &rect, QWidget *parent, const char *name, unsigned int flags,
                 ZSkinService::WidgetClsID cls, ZOptMenuParser *parser, const QString &menuName);
    ~ZOptionsMenu() override;

    QList<MenuItem> getAllItemIds() const;
    void changeItem(int id, const QString &text, const QPixmap *pixmap);
    bool connectItem(int id, const QObject *receiver, const char *member);
    void setItemHide(int id, bool hide);

    bool isItemHidden(int id) const;
    QString itemText(int id) const;
    QList<int> visibleItemIds() const; // in menu order
    int currentItemId() const;         // -1 when nothing is reachable

    void popup();   // show over the menu rectangle and take the keyboard focus
    void dismiss(); // close without activating anything
    bool isOpen() const;
    // What Select does: closes the menu and runs the current item.
    void selectCurrent();

signals:
    void activated(int id);
    void opened();
    void closed();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    struct Item;
    QList<Item *> m_items;
    QRect m_rect;
    int m_current = 0; // index into m_items
    int m_top = 0;     // first visible row shown when the list scrolls
    bool m_open = false;
    QPointer<QWidget> m_returnFocus;
    void activateCurrent();
    void moveCurrent(int step);
    bool isReachable(int index) const;
    int indexOf(int id) const;
    int rowHeight() const;
    QRect boxGeometry() const;
    int visibleRowCount() const;
    void ensureCurrentShown();
    void relayoutIfOpen();
};
