#pragma once
#include "ZSkinService.h"
#include <QPixmap>
#include <QWidget>

// A small bar with the five-way key's buttons, each showing a pressed and an
// unpressed icon given by skin resource name.
class ZMediaController : public QWidget
{
    Q_OBJECT
public:
    enum FiveWayButtons { BTN_CENTER = 0, BTN_UP = 1, BTN_RIGHT = 2, BTN_DOWN = 3, BTN_LEFT = 4 };
    enum ColumnA { COLUMN_A_NONE = 0, COLUMN_A_5WAY = 1 };
    enum ColumnB { COLUMN_B_NONE = 0, COLUMN_B_TIME = 1 };
    enum ProgressWidget { PROGRESS_NONE = 0, PROGRESS_BAR = 1 };
    enum MeterStyle { METER_NONE = 0, METER_SMALL = 1 };

    ZMediaController(QWidget *parent, unsigned int flags, ZSkinService::WidgetClsID cls, ColumnA columnA,
                     ColumnB columnB, ProgressWidget progress, MeterStyle meter);
    ~ZMediaController() override;

    // The five-way button's rectangle in the bar's coordinates.
    QRect getCurr5WayButton() const;
    void set5WayButtonPixmap(FiveWayButtons button, const QString &pressed, const QString &unpressed);
    QString buttonPixmapName(FiveWayButtons button, bool pressed) const;
    void setButtonPressed(FiveWayButtons button, bool pressed);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    struct Icons { QString pressed, unpressed; };
    QRect iconRect(FiveWayButtons button) const;
    Icons m_icons[5];
    ColumnA m_columnA;
    int m_pressed = -1;
};
