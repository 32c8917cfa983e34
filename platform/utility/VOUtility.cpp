#include "VOUtility.h"
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <unistd.h>
#include <vector>

void VOUtility::fitScreen(int &width, int &height, int screenWidth, int screenHeight)
{
    // A size without area has no aspect to keep: it stays empty.
    if (width <= 0 || height <= 0) {
        width = 0;
        height = 0;
        return;
    }
    // A screen without area still shows a pixel.
    const int64_t sw = screenWidth > 0 ? screenWidth : 1;
    const int64_t sh = screenHeight > 0 ? screenHeight : 1;
    const int64_t w = width, h = height;
    if (w <= sw && h <= sh)
        return;
    int64_t fw, fh;
    if (w * sh <= h * sw) {
        // Height is the tighter bound.
        fh = sh;
        fw = (w * sh + h / 2) / h;
    } else {
        fw = sw;
        fh = (h * sw + w / 2) / w;
    }
    width = int(fw < 1 ? 1 : fw);
    height = int(fh < 1 ? 1 : fh);
}

namespace {
VOUtility::CreatedHook g_created = nullptr;
void *g_createdContext = nullptr;
} // namespace

void VOUtility::setTempFileHook(CreatedHook hook, void *context)
{
    g_created = hook;
    g_createdContext = context;
}

void *VOUtility::tempFileHookContext() { return g_createdContext; }

std::string VOUtility::genTempFileName(const std::string &dir)
{
    return genTempFileName(dir, std::string());
}

std::string VOUtility::genTempFileName(const std::string &dir, const std::string &suffix)
{
    if (dir.empty())
        return std::string();
    std::string path = dir;
    if (path.back() != '/')
        path += '/';
    path += "vo_XXXXXX" + suffix;
    std::vector<char> name(path.begin(), path.end());
    name.push_back('\0');
    int fd;
    do {
        // O_EXCL and mode 0600: a link planted at the name is never followed.
        fd = ::mkstemps(name.data(), int(suffix.size()));
    } while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return std::string();
    ::close(fd);
    if (g_created)
        g_created(name.data(), g_createdContext);
    return std::string(name.data());
}
