#include "ZGlobal.h"
#include <QByteArray>
#include <QList>
#include <QtGlobal>

namespace {
constexpr int kDefaultWidth = 240;
constexpr int kDefaultHeight = 320;
constexpr int kMaxSide = 8192;
constexpr double kTitleShare = 0.10;
constexpr double kSoftKeyShare = 0.09;

int barHeight(int screenHeight, double share)
{
    return qMax(1, qRound(screenHeight * share));
}
} // namespace

// Read on every call so that tests and the desktop host can switch sizes
// without a restart; the environment lookup is cheap next to any layout.
QSize ZGlobal::screenSize()
{
    const QByteArray value = qgetenv("VO_SCREEN_SIZE").trimmed().toLower();
    const QList<QByteArray> parts = value.split('x');
    if (parts.size() == 2) {
        bool okW = false;
        bool okH = false;
        const int w = parts[0].trimmed().toInt(&okW);
        const int h = parts[1].trimmed().toInt(&okH);
        if (okW && okH && w > 0 && h > 0 && w <= kMaxSide && h <= kMaxSide)
            return QSize(w, h);
    }
    return QSize(kDefaultWidth, kDefaultHeight);
}

QRect ZGlobal::getScreenR()
{
    return QRect(QPoint(0, 0), screenSize());
}

QRect ZGlobal::getTitleR()
{
    const QSize s = screenSize();
    return QRect(0, 0, s.width(), barHeight(s.height(), kTitleShare));
}

QRect ZGlobal::getCstR()
{
    const QSize s = screenSize();
    const int h = barHeight(s.height(), kSoftKeyShare);
    return QRect(0, s.height() - h, s.width(), h);
}

QRect ZGlobal::getHomeR(bool includeTitle)
{
    if (includeTitle)
        return getScreenR();
    const QSize s = screenSize();
    const int top = getTitleR().height();
    return QRect(0, top, s.width(), s.height() - top);
}
