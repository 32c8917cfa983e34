#include "ImgEditor5wayBtn.h"

#include <QRegion>

ImgEditor5wayBtn::ImgEditor5wayBtn(QWidget *parent)
    : ZMediaController(parent, 0, ZSkinService::WidgetClsID(78), ZMediaController::ColumnA(1),
                       ZMediaController::ColumnB(0), ZMediaController::ProgressWidget(0),
                       ZMediaController::MeterStyle(1))
{
    const QRect button = getCurr5WayButton();
    setMask(QRegion(button.x(), 6, button.width(), button.height(), QRegion::Ellipse));
    set5WayButtonPixmap(ZMediaController::FiveWayButtons(1), QStringLiteral("mp_vid_rot_90_rt_p_nav"),
                        QStringLiteral("mp_vid_rot_90_rt_unp_nav"));
    set5WayButtonPixmap(ZMediaController::FiveWayButtons(3), QStringLiteral("mp_vid_rot_90_lft_p_nav"),
                        QStringLiteral("mp_vid_rot_90_lft_unp_nav"));
}

ImgEditor5wayBtn::~ImgEditor5wayBtn() = default;
