#pragma once

struct MMSize
{
    int width = 0;
    int height = 0;

    MMSize() = default;
    MMSize(int w, int h) : width(w), height(h) {}
    bool operator==(const MMSize &o) const { return width == o.width && height == o.height; }
};
