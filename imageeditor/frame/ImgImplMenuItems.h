#pragma once

// The Options menu's items, in menu order: id, resource key with its English
// label, and the frame's slot. The parser, the menu build and every change
// of an item's visibility take them from here. Undo came later than the
// others: its id is the last, its row is just before Cancel.
enum ImgImplMenuItemId {
    OPT_ITEM_ROTATE_90_LEFT = 1,
    OPT_ITEM_ROTATE_90_RIGHT = 2,
    OPT_ITEM_MIRROR_HORIZONTAL = 3,
    OPT_ITEM_MIRROR_VERTICAL = 4,
    OPT_ITEM_CROP = 5,
    OPT_ITEM_RESIZE = 6,
    OPT_ITEM_ADD_ELEMENTS = 7,
    OPT_ITEM_STYLE = 8,
    OPT_ITEM_CANCEL = 9,
    OPT_ITEM_UNDO = 10,
};

struct ImgImplMenuText
{
    const char *key;     // translated in the context "QObject"
    const char *english; // the translation's comment
};

struct ImgImplMenuItemDef
{
    int id;
    ImgImplMenuText text;
    const char *slot;
};

constexpr int IMG_IMPL_MENU_ITEM_COUNT = 10;
// In menu order; the last row (id -1, no slot) closes the table.
extern const ImgImplMenuItemDef IMG_IMPL_MENU_ITEMS[IMG_IMPL_MENU_ITEM_COUNT + 1];
// The row of item id; the closing row for an id the menu does not have.
const ImgImplMenuItemDef &imgImplMenuItem(int id);
