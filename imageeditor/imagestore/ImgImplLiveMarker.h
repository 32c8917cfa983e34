#pragma once
#include <QByteArray>

// Tells the working files of a running editor from those of one that died.
// Each store holds an exclusive flock on its own marker file in the working
// folder ("live_<pid>_<random>") and writes into it the path of every file
// it has created. The kernel drops the lock when the process dies,
// however it dies, so at launch any marker that can be locked belongs to a
// dead editor: the files it lists, and the marker, are removed. Files of
// live editors, and files no marker lists, are never touched.
class ImgImplLiveMarker
{
public:
    explicit ImgImplLiveMarker(const QByteArray &workDir);
    ~ImgImplLiveMarker();
    ImgImplLiveMarker(const ImgImplLiveMarker &) = delete;
    ImgImplLiveMarker &operator=(const ImgImplLiveMarker &) = delete;

    bool isValid() const { return fd >= 0; }
    // Notes a file this editor has just created.
    void record(const QByteArray &path);

    // Removes what dead editors left in workDir.
    static void sweep(const QByteArray &workDir);

private:
    int dirFd = -1;
    int fd = -1;
    QByteArray name;
};
