#include "ImgImplMainFrame.h"

#include "ImgImplImageStore.h"
#include "ImgImplMenuData.h"
#include "ImgImplMenuItems.h"
#include "ZGlobal.h"
#include "ZOptionsMenu.h"

void ImgImplMainFrame::initOptionsMenu()
{
    const QRect home = ZGlobal::getHomeR(false);
    const QRect cst = ZGlobal::getCstR();
    QRect menuRect = home;
    menuRect.setHeight(home.height() - cst.height());

    delete optionsMenu;
    optionsMenu = nullptr;

    auto *parser = new ImgImplMenuData();
    optionsMenu = new ZOptionsMenu(menuRect, this, nullptr, 0, ZSkinService::WidgetClsID(54), parser,
                                   QStringLiteral("editMenuOpt"));
    // The menu took its items while it was being built.
    delete parser;

    const QList<MenuItem> menuItems = optionsMenu->getAllItemIds();
    for (const MenuItem &item : menuItems) {
        if (item.state == -1)
            continue;
        const ImgImplMenuItemDef &def = imgImplMenuItem(item.id);
        const QByteArray label = item.label.toUtf8();
        optionsMenu->changeItem(item.id, QObject::tr(def.text.key, label.constData()), nullptr);
        if (def.slot)
            optionsMenu->connectItem(item.id, this, def.slot);
        optionsMenu->setItemHide(item.id, false);
    }
    optionsMenu->setItemHide(OPT_ITEM_UNDO, true);
    optionsMenu->setItemHide(OPT_ITEM_CANCEL, true);

    if (!ImgImplImageStore::isEditableImage(originalFile))
        optionsMenu->setItemHide(OPT_ITEM_ADD_ELEMENTS, true);
}
