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
    case EFFECT_AUTO_FIX: return QT_TRANSLATE_NOOP("MMEffectCommand", "Auto-fix");
    case EFFECT_ADJUST: return QT_TRANSLATE_NOOP("MMEffectCommand", "Adjust…");
    default: return "";
    }
}

void MMEffectCommand::setLevels(const MMPixelFilters::Levels &levels)
{
    m_levels = levels;
    m_hasLevels = true;
}

int MMEffectCommand::apply(QImage &image) const
{
    if (image.isNull() || m_effect < EFFECT_NONE || m_effect >= EFFECT_COUNT)
        return -1;
    if (m_effect == EFFECT_NONE || (m_effect == EFFECT_ADJUST && m_adjustment.isNone()))
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
    case EFFECT_AUTO_FIX:
        MMPixelFilters::applyLevels(result, m_hasLevels ? m_levels : MMPixelFilters::measureLevels(result));
        break;
    case EFFECT_ADJUST: MMPixelFilters::adjust(result, m_adjustment); break;
    }
    image = result;
    return 0;
}
