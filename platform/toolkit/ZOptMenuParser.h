#pragma once
#include "MenuItem.h"
#include <QList>
#include <QString>

// Supplies the items of a named menu while a ZOptionsMenu is being built.
// The menu uses the parser only during its construction.
class ZOptMenuParser
{
public:
    virtual void parseMenu(QList<MenuItem> &items, const QString &menuName) = 0;

protected:
    ~ZOptMenuParser() = default;
};
