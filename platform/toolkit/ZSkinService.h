#pragma once
#include <QPixmap>
#include <QString>

// Skin resources: widget classes and named images. Icons are drawn on first
// use, so the toolkit ships no image files.
class ZSkinService
{
public:
    enum WidgetClsID {
        clsZOptionsMenu = 54,
        clsZMediaController = 78,
    };

    // The image behind a skin resource name; a null pixmap for unknown names.
    static QPixmap getPixmap(const QString &resourceName);
};
