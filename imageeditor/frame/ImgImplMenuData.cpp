#include "ImgImplMenuData.h"

void ImgImplMenuData::parseMenu(QList<MenuItem> &items, const QString &menuName)
{
    if (menuName != QLatin1String("editMenuOpt"))
        return;
    static const char *const labels[9] = {
        "Rotate 90 left", "Rotate 90 right", "Mirror Horizontal", "Mirror Vertical", "Crop",
        "Resize",         "Add Elements",    "Style",             "Cancel",
    };
    for (int i = 0; i < 9; ++i) {
        MenuItem item;
        item.label = QString::fromLatin1(labels[i]);
        item.id = i + 1;
        item.attributes = 0;
        item.state = 0;
        items.append(item);
    }
}
