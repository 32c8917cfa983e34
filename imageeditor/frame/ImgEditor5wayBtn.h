#pragma once
#include "ZMediaController.h"

// The bar that shows which five-way directions rotate the picture. Display
// only: the main frame's key handler does the rotating.
class ImgEditor5wayBtn : public ZMediaController
{
    Q_OBJECT
public:
    explicit ImgEditor5wayBtn(QWidget *parent);
    ~ImgEditor5wayBtn() override;
};
