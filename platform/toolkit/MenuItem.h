#pragma once
#include <QString>
#include <QtGlobal>

// One record of an options menu description, as a ZOptMenuParser fills it.
struct MenuItem
{
    QString label;          // English label
    int id = 0;             // item id
    quint32 attributes = 0; // reserved
    int state = 0;          // -1: the record is not an item
};
