#pragma once
#include "ImgSvcCtlInterface.h"

// Save control: the image shown on the save screen is its output.
class ImgSvcSaveCtl : public ImgSvcCtlInterface
{
    Q_OBJECT
public:
    explicit ImgSvcSaveCtl(QObject *parent = nullptr);
    ~ImgSvcSaveCtl() override;
};
