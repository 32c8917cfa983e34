#pragma once
#include "ImgSvcCtlInterface.h"

// Effect control: the effect chosen in the dialog (an MMEffectCommand id).
class ImgSvcEffectCtl : public ImgSvcCtlInterface
{
    Q_OBJECT
public:
    explicit ImgSvcEffectCtl(QObject *parent = nullptr);
    ~ImgSvcEffectCtl() override;

    void setEffect(int effect) { m_effect = effect; }
    int getEffect() const { return m_effect; }

protected:
    void writeResult() override;

private:
    int m_effect = 0;
};
