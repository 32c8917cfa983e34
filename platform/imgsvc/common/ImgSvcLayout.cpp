#include "ImgSvcLayout.h"

// clang-format off
const qint16 ImgSvcLayout::layout[80] = {
    4, 4, 2, 2, 0, 0, 0, 0, 0, 0,   //  0- 9: bar margins left, right, top; gap above the soft keys
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0,   // 10-19
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0,   // 20-29
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0,   // 30-39
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0,   // 40-49
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0,   // 50-59
    0, 0, 0, 0, 0, 0, 0, 0, 0, 2,   // 60-69: 69 content padding left
    2, 2, 2, 0, 0, 0, 0, 0, 0, 0,   // 70-79: 70-72 content padding right, top, bottom
};
// clang-format on
