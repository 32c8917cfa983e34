#pragma once
#include "MMOrientation.h"
#include <QRect>
#include <QSize>
#include <list>
#include <vector>

class MMCommand;

// Works out, before any pixel is decoded, the least a JPEG save has to do.
// The turns and flips at the head of a command list fold into one
// orientation together with the file's own; crops among them move before
// it (mapped back into stored pixels), so that only kept pixels are decoded
// and turned; a following shrink is done while decoding: a scaled decode
// (libjpeg's 1/2, 1/4, 1/8) down to no less than twice the target, then an
// Lanczos shrink of what is left.
// Whatever follows is applied as it is.
class MMEditPlanner
{
public:
    struct Plan
    {
        bool valid = false;
        // 1, 2, 4 or 8: the decoder's DCT scaling.
        int scaleDenom = 1;
        // Stored pixels to decode, in units of the scaled decode.
        QRect decodeRect;
        // Turns the decoded pixels into the picture being edited.
        MMOrientation orientation;
        // When valid: the decoded pixels are shrunk to this (turned size),
        // then keep is taken from them (a scaled decode starts on whole
        // scaled pixels).
        QSize resizeTo;
        QRect keep;
        // Applied afterwards, in order.
        std::vector<const MMCommand *> rest;

        // Only a part of the stored pixels kept, turned or not: what a
        // lossless cut of the coefficients may do, where the part allows.
        bool isCut(const QSize &storedSize) const
        {
            return valid && scaleDenom == 1 && !resizeTo.isValid() && rest.empty()
                && decodeRect != QRect(QPoint(0, 0), storedSize);
        }
    };

    // storedSize and fileOrientation as the JPEG header gives them. An
    // invalid plan means the list is to be replayed as it is (it may fail).
    static Plan plan(const QSize &storedSize, const MMOrientation &fileOrientation,
                     const std::list<MMCommand *> &commands);
};
