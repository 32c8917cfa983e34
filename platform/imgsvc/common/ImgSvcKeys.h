#pragma once
#include <QPoint>

// The keypad as the image screens read it. A desktop keyboard stands in for
// the handset: F1/F2 for the soft keys, Return/Enter for Select.
class ImgSvcKeys
{
public:
    static bool isSelect(int key);
    // Either soft key; ZKbMainWidget routes them to the soft-key bar.
    static bool isSoftKey(int key);
    // The five-way direction of an arrow key, (0, 0) for any other key.
    static QPoint direction(int key);
    // Step of a held key: small on the first press, doubling with each
    // auto-repeat, never above large.
    static int repeatStep(int smallStep, int largeStep, int repeats);
};
