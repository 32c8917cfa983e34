#include "ImgImplMenuItems.h"

#include <QtGlobal>

const ImgImplMenuItemDef IMG_IMPL_MENU_ITEMS[IMG_IMPL_MENU_ITEM_COUNT + 1] = {
    {OPT_ITEM_ROTATE_90_LEFT, QT_TRANSLATE_NOOP3("QObject", "TXT_RID_OPTION_ROTATE_90_LEFT", "Rotate 90 left"),
     "1slotRotate90Left()"},
    {OPT_ITEM_ROTATE_90_RIGHT, QT_TRANSLATE_NOOP3("QObject", "TXT_RID_OPTION_ROTATE_90_RIGHT", "Rotate 90 right"),
     "1slotRotate90Right()"},
    {OPT_ITEM_MIRROR_HORIZONTAL,
     QT_TRANSLATE_NOOP3("QObject", "TXT_RID_OPTION_MIRROR_HORIZONTAL", "Mirror Horizontal"), "1slotMirrorHor()"},
    {OPT_ITEM_MIRROR_VERTICAL, QT_TRANSLATE_NOOP3("QObject", "TXT_RID_OPTION_MIRROR_VERTICAL", "Mirror Vertical"),
     "1slotMirrorVer()"},
    {OPT_ITEM_CROP, QT_TRANSLATE_NOOP3("QObject", "TXT_RID_OPTION_CROP", "Crop"), "1slotCrop()"},
    {OPT_ITEM_RESIZE, QT_TRANSLATE_NOOP3("QObject", "TXT_RID_OPTION_RESIZE", "Resize"), "1slotResize()"},
    {OPT_ITEM_ADD_ELEMENTS, QT_TRANSLATE_NOOP3("QObject", "TXT_RID_OPTION_ADD_ELEMENTS", "Add Elements"),
     "1slotAddElement()"},
    {OPT_ITEM_STYLE, QT_TRANSLATE_NOOP3("QObject", "TXT_RID_OPTION_STYLE", "Style"), "1slotStyle()"},
    {OPT_ITEM_UNDO, QT_TRANSLATE_NOOP3("QObject", "TXT_RID_OPTION_UNDO", "Undo"), "1slotUndo()"},
    {OPT_ITEM_CANCEL, QT_TRANSLATE_NOOP3("QObject", "TXT_RID_OPTION_CANCEL", "Cancel"), "1slotCancel()"},
    {-1, {"", nullptr}, nullptr},
};

const ImgImplMenuItemDef &imgImplMenuItem(int id)
{
    int row = 0;
    while (IMG_IMPL_MENU_ITEMS[row].id != -1 && IMG_IMPL_MENU_ITEMS[row].id != id)
        ++row;
    return IMG_IMPL_MENU_ITEMS[row];
}
