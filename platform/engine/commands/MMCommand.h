#pragma once

class QImage;

// An edit command. Commands are owned by whoever holds the list they are in
// and are deleted through this base.
class MMCommand
{
public:
    enum CommandType { CMD_ROTATE = 1, CMD_MIRROR, CMD_CROP, CMD_RESIZE, CMD_EFFECT, CMD_OVERLAY };

    virtual ~MMCommand();
    virtual CommandType type() const = 0;
    // Applies the command to a decoded image in place. 0 on success, -1 when
    // the command cannot apply (an empty crop, say); the image is then unchanged.
    virtual int apply(QImage &image) const = 0;
};
