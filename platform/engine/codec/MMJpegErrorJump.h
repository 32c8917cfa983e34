#pragma once
#include <csetjmp>
#include <cstdio>
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on

// A libjpeg error manager that jumps back to the caller's setjmp instead of
// exiting: the caller then destroys the codec object and fails. No object
// with a destructor may live in the frames it jumps over.
struct MMJpegErrorJump
{
    jpeg_error_mgr pub;
    std::jmp_buf jump;

    // Installs this as cinfo's error manager; messages go to onMessage.
    void install(j_common_ptr cinfo, void (*onMessage)(j_common_ptr, int))
    {
        cinfo->err = jpeg_std_error(&pub);
        pub.error_exit = onError;
        pub.emit_message = onMessage;
    }

    [[noreturn]] static void onError(j_common_ptr cinfo)
    {
        std::longjmp(reinterpret_cast<MMJpegErrorJump *>(cinfo->err)->jump, 1);
    }

    // libjpeg only warns about damaged data and goes on with grey or garbled
    // blocks, so every warning fails, but for stray bytes between segments:
    // common in camera files, and harmless.
    static void onDamage(j_common_ptr cinfo, int level)
    {
        if (level < 0 && cinfo->err->msg_code != JWRN_EXTRANEOUS_DATA)
            onError(cinfo);
    }

    // Every warning fails, stray bytes too: what a lossless transform
    // copies must be exactly what the file holds.
    static void onWarning(j_common_ptr cinfo, int level)
    {
        if (level < 0)
            onError(cinfo);
    }

    // Runs body on cinfo, a fresh decompressor failing on damage (onDamage);
    // false when body does or libjpeg gives up. body must not own anything a
    // longjmp out of it would leak.
    template <class Body> bool decompress(jpeg_decompress_struct &cinfo, Body body)
    {
        install(reinterpret_cast<j_common_ptr>(&cinfo), onDamage);
        jpeg_create_decompress(&cinfo);
        if (setjmp(jump)) {
            jpeg_destroy_decompress(&cinfo);
            return false;
        }
        const bool ok = body();
        jpeg_destroy_decompress(&cinfo);
        return ok;
    }
};
