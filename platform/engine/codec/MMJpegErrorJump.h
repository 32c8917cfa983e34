#pragma once
#include <csetjmp>
#include <cstdio>
// clang-format off
#include <jpeglib.h>
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
};
