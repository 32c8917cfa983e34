#include "ZTheme.h"
#include "ZGlobal.h"
#include <QGuiApplication>

namespace {
// One family per script the catalogues are written in, asked in this order
// for each character, so a device image knows which font files it needs
// (bench/RESULTS.md lists them). WenQuanYi is the smaller CJK font a tight
// image may carry instead of Noto's; DejaVu is the last resort.
const QStringList &families()
{
    static const QStringList list{QStringLiteral("Noto Sans"), QStringLiteral("Noto Sans Arabic"),
                                  QStringLiteral("Noto Sans Devanagari"), QStringLiteral("Noto Sans CJK SC"),
                                  QStringLiteral("WenQuanYi Micro Hei"), QStringLiteral("DejaVu Sans")};
    return list;
}

QFont fontOfHeight(int pixelSize, bool bold = false)
{
    QFont f = QGuiApplication::font();
    f.setFamilies(families());
    // Pixel sizes, not points: on a handset the panel's pixels are what count.
    f.setPixelSize(qMax(8, pixelSize));
    f.setBold(bold);
    return f;
}
} // namespace

int ZTheme::scaled(int px)
{
    // The shorter side decides: a landscape screen is no smaller a device.
    const QSize s = ZGlobal::screenSize();
    return qMax(1, qRound(px * qMin(s.width(), s.height()) / 240.0));
}

QFont ZTheme::titleFont()
{
    return fontOfHeight(qRound(ZGlobal::getTitleR().height() * 0.5), true);
}

QFont ZTheme::softKeyFont()
{
    return fontOfHeight(qRound(ZGlobal::getCstR().height() * 0.52), true);
}

QFont ZTheme::bodyFont()
{
    return fontOfHeight(scaled(14));
}

QFont ZTheme::menuFont()
{
    return fontOfHeight(scaled(15));
}

QColor ZTheme::barTop() { return QColor(0x4a, 0x50, 0x5a); }
QColor ZTheme::barBottom() { return QColor(0x16, 0x18, 0x1c); }
QColor ZTheme::barText() { return QColor(0xf2, 0xf2, 0xf2); }
QColor ZTheme::disabledText() { return QColor(0x6e, 0x73, 0x7b); }
QColor ZTheme::accent() { return QColor(0x2f, 0x86, 0xe0); }
QColor ZTheme::accentDark() { return QColor(0x1a, 0x5a, 0xa8); }
QColor ZTheme::window() { return QColor(0x22, 0x25, 0x2a); }
QColor ZTheme::menuBackground() { return QColor(0xf7, 0xf7, 0xf5); }
QColor ZTheme::menuText() { return QColor(0x15, 0x15, 0x15); }
QColor ZTheme::frame() { return QColor(0x0c, 0x0d, 0x0f); }
