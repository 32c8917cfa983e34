#pragma once
#include "ZOptMenuParser.h"

// Describes the editor's Options menu to the toolkit.
class ImgImplMenuData final : public ZOptMenuParser
{
public:
    void parseMenu(QList<MenuItem> &items, const QString &menuName) override;
};
