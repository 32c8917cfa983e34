#pragma once
#include "MMCommand.h"

// A style applied to every pixel.
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
        EFFECT_COUNT
    };

    void setEffect(int effect) { m_effect = effect; }
    int getEffect() const { return m_effect; }
    CommandType type() const override { return CMD_EFFECT; }
    int apply(QImage &image) const override;

    // English name of an effect ("Grayscale", ...); empty for unknown ids.
    static const char *effectName(int effect);

private:
    int m_effect = EFFECT_NONE;
};
