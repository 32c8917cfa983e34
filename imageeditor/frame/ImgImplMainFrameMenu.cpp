#include "ImgImplMainFrame.h"

#include "ImgImplImageStore.h"
#include "ImgImplMenuData.h"
#include "ZGlobal.h"
#include "ZOptionsMenu.h"

namespace {
struct ImgImplMenuItemDef
{
    int id;
    const char *key;
    const char *slot;
};

constexpr int OPT_ITEM_ADD_ELEMENTS = 7;
constexpr int OPT_ITEM_CANCEL = 9;
} // namespace

void ImgImplMainFrame::initOptionsMenu()
{
    const QRect home = ZGlobal::getHomeR(false);
    const QRect cst = ZGlobal::getCstR();
    QRect menuRect = home;
    menuRect.setHeight(home.height() - cst.height());

    // Row id - 1 holds item id; the last row closes the table.
    static const ImgImplMenuItemDef items[10] = {
        {1, "TXT_RID_OPTION_ROTATE_90_LEFT", "1slotRotate90Left()"},
        {2, "TXT_RID_OPTION_ROTATE_90_RIGHT", "1slotRotate90Right()"},
        {3, "TXT_RID_OPTION_MIRROR_HORIZONTAL", "1slotMirrorHor()"},
        {4, "TXT_RID_OPTION_MIRROR_VERTICAL", "1slotMirrorVer()"},
        {5, "TXT_RID_OPTION_CROP", "1slotCrop()"},
        {6, "TXT_RID_OPTION_RESIZE", "1slotResize()"},
        {7, "TXT_RID_OPTION_ADD_ELEMENTS", "1slotAddElement()"},
        {8, "TXT_RID_OPTION_STYLE", "1slotStyle()"},
        {9, "TXT_RID_OPTION_CANCEL", "1slotCancel()"},
        {-1, "", nullptr},
    };

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
        const ImgImplMenuItemDef &def = items[item.id - 1];
        const QByteArray label = item.label.toUtf8();
        optionsMenu->changeItem(item.id, QObject::tr(def.key, label.constData()), nullptr);
        if (def.slot)
            optionsMenu->connectItem(item.id, this, def.slot);
        optionsMenu->setItemHide(item.id, false);
    }
    optionsMenu->setItemHide(OPT_ITEM_CANCEL, true);

    if (!ImgImplImageStore::isEditableImage(originalFile))
        optionsMenu->setItemHide(OPT_ITEM_ADD_ELEMENTS, true);
}
