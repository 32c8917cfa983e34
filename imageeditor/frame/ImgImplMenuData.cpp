#include "ImgImplMenuData.h"
#include "ImgImplMenuItems.h"

void ImgImplMenuData::parseMenu(QList<MenuItem> &items, const QString &menuName)
{
    if (menuName != QLatin1String("editMenuOpt"))
        return;
    for (int i = 0; i < IMG_IMPL_MENU_ITEM_COUNT; ++i) {
        const ImgImplMenuItemDef &def = IMG_IMPL_MENU_ITEMS[i];
        MenuItem item;
        item.label = QString::fromLatin1(def.text.english);
        item.id = def.id;
        item.attributes = 0;
        item.state = 0;
        items.append(item);
    }
}
