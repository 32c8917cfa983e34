#pragma once

enum MMImageFormat { MM_FORMAT_UNKNOWN = 0, MM_FORMAT_JPEG, MM_FORMAT_PNG, MM_FORMAT_BMP, MM_FORMAT_GIF, MM_FORMAT_OTHER,
                     MM_FORMAT_WEBP, MM_FORMAT_HEIF };

// What the header of an image file says. Width and height are those of the
// picture as shown (upright: a JPEG's EXIF orientation is taken into account).
struct MMImageInfo
{
    int width = 0;
    int height = 0;
    MMImageFormat format = MM_FORMAT_UNKNOWN;
    int orientation = 1; // EXIF orientation of the stored pixels, 1 to 8
    int frames = 1;      // more than one for an animation
};
