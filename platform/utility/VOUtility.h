#pragma once
#include <string>

class VOUtility
{
public:
    // Reduces (never enlarges) width x height to fit screenWidth x
    // screenHeight, aspect kept, each side at least 1.
    static void fitScreen(int &width, int &height, int screenWidth, int screenHeight);

    // A fresh, unique path in dir (which should end in '/'). The file is
    // created exclusively (as mkstemp does) so that no one else can take the
    // name; callers that write under the name plus an extension remove the
    // placeholder too. Empty on failure.
    static std::string genTempFileName(const std::string &dir);
    // The same with suffix (say ".jpg") as part of the name created, so that
    // the name actually written is the one reserved.
    static std::string genTempFileName(const std::string &dir, const std::string &suffix);

    // Called with each path genTempFileName has just created, so that the
    // program using this library can list it with its own working files
    // (and sweep it after a crash). Process-wide; null unsets it.
    using CreatedHook = void (*)(const std::string &path, void *context);
    static void setTempFileHook(CreatedHook hook, void *context);
    static void *tempFileHookContext();
};
