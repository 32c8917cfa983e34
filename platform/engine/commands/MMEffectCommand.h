#pragma once
#include "MMCommand.h"
#include "MMPixelFilters.h"

// A style applied to every pixel. Auto-fix and adjust carry what they need:
// the levels (measured where the style was chosen, so that the preview and
// the full-size picture get the same stretch) and the three adjustments.
class MMEffectCommand : public MMCommand
{
public:
    enum Effect {
        EFFECT_NONE = 0,
        EFFECT_GRAYSCALE = 1,
        EFFECT_SEPIA = 2,
        EFFECT_NEGATIVE = 3,
        EFFECT_SOFT_FOCUS = 4,
        EFFECT_SHARPEN = 5,
        EFFECT_EMBOSS = 6,
        EFFECT_AUTO_FIX = 7,
        EFFECT_ADJUST = 8,
        EFFECT_COUNT
    };

    void setEffect(int effect) { m_effect = effect; }
    int getEffect() const { return m_effect; }
    void setAdjustment(const MMPixelFilters::Adjustment &adjustment) { m_adjustment = adjustment; }
    const MMPixelFilters::Adjustment &getAdjustment() const { return m_adjustment; }
    // Without levels, auto-fix measures them on the picture it changes.
    void setLevels(const MMPixelFilters::Levels &levels);
    bool hasLevels() const { return m_hasLevels; }
    const MMPixelFilters::Levels &getLevels() const { return m_levels; }
    CommandType type() const override { return CMD_EFFECT; }
    int apply(QImage &image) const override;

    // English name of an effect ("Grayscale", ...); empty for unknown ids.
    static const char *effectName(int effect);

private:
    int m_effect = EFFECT_NONE;
    MMPixelFilters::Adjustment m_adjustment;
    MMPixelFilters::Levels m_levels;
    bool m_hasLevels = false;
};
