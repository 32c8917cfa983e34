#pragma once

// Whether an 8 × 8 block of quantized coefficients is one 8-bit JPEG coding
// can carry: an AC term within 10 bits, and a DC term whose difference from
// a neighbour cannot pass 11. libjpeg reads larger values from a damaged or
// crafted stream without a warning, and its fast entropy coders write them
// as garbage, so no lossless transform may pass such a block on.
struct MMJpegCoefficientRange
{
    // Branch-free over a fixed length, so that the compiler vectorizes it.
    static bool fits(const short *block)
    {
        int outside = (block[0] < -1024) | (block[0] > 1023);
        for (int k = 1; k < 64; ++k)
            outside |= (block[k] < -1023) | (block[k] > 1023);
        return !outside;
    }
};
