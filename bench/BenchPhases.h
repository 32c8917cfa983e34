#pragma once

class BenchJob;

// Replays a save step by step with the engine's own parts (header, lossless
// turn, decode, each command, encode, metadata, atomic write), in the order
// MMCommandRunner::run takes them, and prints what each step costs in wall
// time, CPU time and memory. A profiling aid only: the timed jobs go through
// MMCommandRunner::run itself, and this replay can lag behind it when the
// runner changes.
class BenchPhases
{
public:
    // 0 when the replay wrote the output, 1 otherwise.
    static int run(BenchJob &job);
};
