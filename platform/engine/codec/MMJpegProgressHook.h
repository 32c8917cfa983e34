#pragma once
#include "MMRunProgress.h"
// clang-format off
#include <cstdio>
#include <jpeglib.h>
// clang-format on

// libjpeg's progress monitor for one decompressor of a save: while
// jpeg_start_decompress reads a progressive (or multi-scan) stream whole,
// it adds to the save's progress the share of budget units read so far
// (libjpeg's own estimate of rows and scans), and it stops the decode as
// soon as the save is cancelled (through cinfo's error_exit). Rows that
// come out after are counted by the decoder itself. It must outlive the
// decompression.
struct MMJpegProgressHook
{
    jpeg_progress_mgr pub;
    MMRunProgress *run = nullptr;
    qint64 budget = 0;
    qint64 reported = 0;
    bool reading = true;

    void attach(j_decompress_ptr cinfo, MMRunProgress *progress, qint64 readBudget)
    {
        if (!progress)
            return;
        run = progress;
        budget = readBudget;
        pub.progress_monitor = monitor;
        cinfo->progress = &pub;
    }
    // After jpeg_start_decompress: whatever was not counted of the reading.
    void doneReading()
    {
        if (run && reading && budget > reported)
            run->advance(budget - reported);
        reading = false;
    }
    static void monitor(j_common_ptr cinfo)
    {
        auto *h = reinterpret_cast<MMJpegProgressHook *>(cinfo->progress);
        if (h->run->isCancelled())
            (*cinfo->err->error_exit)(cinfo);
        if (!h->reading || h->pub.pass_limit <= 0)
            return;
        const qint64 now = h->budget * qMin<qint64>(h->pub.pass_counter, h->pub.pass_limit) / h->pub.pass_limit;
        if (now > h->reported) {
            h->run->advance(now - h->reported);
            h->reported = now;
        }
    }
};
