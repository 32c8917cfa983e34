#include "ImgSvcKeys.h"
#include <Qt>
#include <QtGlobal>

bool ImgSvcKeys::isSelect(int key)
{
    return key == Qt::Key_Select || key == Qt::Key_Return || key == Qt::Key_Enter;
}

bool ImgSvcKeys::isSoftKey(int key)
{
    return key == Qt::Key_Context1 || key == Qt::Key_F1 || key == Qt::Key_Context2 || key == Qt::Key_F2;
}

QPoint ImgSvcKeys::direction(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return QPoint(-1, 0);
    case Qt::Key_Right:
        return QPoint(1, 0);
    case Qt::Key_Up:
        return QPoint(0, -1);
    case Qt::Key_Down:
        return QPoint(0, 1);
    default:
        return QPoint();
    }
}

int ImgSvcKeys::repeatStep(int smallStep, int largeStep, int repeats)
{
    const int small = qMax(1, smallStep);
    const int large = qMax(small, largeStep);
    // Past 30 doublings the shift would overflow; the cap is reached long before.
    const qint64 step = qint64(small) << qBound(0, repeats, 30);
    return int(qMin<qint64>(step, large));
}
