#pragma once

// A rectangle as (x, y, width, height) in image pixels.
struct MMRect
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    MMRect() = default;
    MMRect(int x_, int y_, int w, int h) : x(x_), y(y_), width(w), height(h) {}
    bool operator==(const MMRect &o) const { return x == o.x && y == o.y && width == o.width && height == o.height; }
};
