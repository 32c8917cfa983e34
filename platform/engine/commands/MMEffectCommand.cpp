#include "MMEffectCommand.h"
#include "MMPixelFilters.h"
#include <QImage>

const char *MMEffectCommand::effectName(int effect)
{
    switch (effect) {
    case EFFECT_NONE: return QT_TRANSLATE_NOOP("MMEffectCommand", "None");
    case EFFECT_GRAYSCALE: return QT_TRANSLATE_NOOP("MMEffectCommand", "Grayscale");
    case EFFECT_SEPIA: return QT_TRANSLATE_NOOP("MMEffectCommand", "Sepia");
    case EFFECT_NEGATIVE: return QT_TRANSLATE_NOOP("MMEffectCommand", "Negative");
    case EFFECT_SOFT_FOCUS: return QT_TRANSLATE_NOOP("MMEffectCommand", "Soft focus");
    case EFFECT_SHARPEN: return QT_TRANSLATE_NOOP("MMEffectCommand", "Sharpen");
    case EFFECT_EMBOSS: return QT_TRANSLATE_NOOP("MMEffectCommand", "Emboss");
    default: return "";
    }
}

int MMEffectCommand::apply(QImage &image) const
{
    if (image.isNull() || m_effect < EFFECT_NONE || m_effect >= EFFECT_COUNT)
        return -1;
    if (m_effect == EFFECT_NONE)
        return 0;
    // The filters work on 32-bit pixels with straight (not premultiplied)
    // alpha.
    const QImage::Format work = image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32;
    QImage result = image.convertToFormat(work);
    if (result.isNull())
        return -1;
    switch (m_effect) {
    case EFFECT_GRAYSCALE: MMPixelFilters::grayscale(result); break;
    case EFFECT_SEPIA: MMPixelFilters::sepia(result); break;
    case EFFECT_NEGATIVE: MMPixelFilters::negative(result); break;
    case EFFECT_SOFT_FOCUS: MMPixelFilters::softFocus(result); break;
    case EFFECT_SHARPEN: MMPixelFilters::sharpen(result); break;
    case EFFECT_EMBOSS: MMPixelFilters::emboss(result); break;
    }
    image = result;
    return 0;
}
