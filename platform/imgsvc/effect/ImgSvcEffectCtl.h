#pragma once
#include "ImgSvcCtlInterface.h"
#include "MMEffectCommand.h"

// Effect control: the style chosen in the dialog (an MMEffectCommand id),
// with the levels auto-fix uses and the adjustments of the adjust screen.
class ImgSvcEffectCtl : public ImgSvcCtlInterface
{
    Q_OBJECT
public:
    explicit ImgSvcEffectCtl(QObject *parent = nullptr);
    ~ImgSvcEffectCtl() override;

    void setEffect(int effect) { m_command.setEffect(effect); }
    int getEffect() const { return m_command.getEffect(); }
    void setAdjustment(const MMPixelFilters::Adjustment &adjustment) { m_command.setAdjustment(adjustment); }
    MMPixelFilters::Adjustment getAdjustment() const { return m_command.getAdjustment(); }
    void setLevels(const MMPixelFilters::Levels &levels) { m_command.setLevels(levels); }
    // The chosen style as the command that applies it.
    const MMEffectCommand &effectCommand() const { return m_command; }

protected:
    void writeResult() override;

private:
    MMEffectCommand m_command;
};
