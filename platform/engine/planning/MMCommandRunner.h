#pragma once
#include <list>

class MMCommand;
class MMImageSource;
class MMRunProgress;

// Replays a command list from one image file into another: decode once, apply
// every command in order, write once in the destination's format (by its
// extension; the source's format when it has none we know). Source and
// destination may be the same file. The destination is replaced atomically
// (written beside it, then renamed), so a failure never leaves it half-written.
// JPEG: rotations and mirrors alone are applied losslessly when the size
// allows; otherwise the list is planned first (MMEditPlanner) so that only
// the pixels the result needs are decoded, at reduced scale when a resize
// allows it, and turned once. Metadata is kept; a re-encode keeps the
// source's quality and chroma subsampling.
class MMCommandRunner
{
public:
    // 0 on success, -1 on any failure (the destination is then untouched).
    static int run(const MMImageSource &source, const MMImageSource &destination,
                   const std::list<MMCommand *> &commands);
    // The same, reporting how far it has got to progress (from the threads
    // that do the work), which may be cancelled from any thread: the run
    // then fails (-1) and the destination is untouched, unless it was
    // already being written.
    static int run(const MMImageSource &source, const MMImageSource &destination,
                   const std::list<MMCommand *> &commands, MMRunProgress *progress);
};
