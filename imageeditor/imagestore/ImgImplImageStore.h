#pragma once
#include "ImgImplBackupJournal.h"

#include <QPoint>
#include <QRect>
#include <QString>

class ImgImplLiveMarker;
class MMImageSource;

// The working copies of one edited file, kept in the private working
// directory so that the file itself is written only by a save: the real-size
// copy, a screen-sized preview for large images, and a tmp copy that the
// sub-editors process in place.
class ImgImplImageStore
{
public:
    explicit ImgImplImageStore(const QString &originalFile);
    ~ImgImplImageStore();
    ImgImplImageStore(const ImgImplImageStore &) = delete;
    ImgImplImageStore &operator=(const ImgImplImageStore &) = delete;

    void setImageFile(const QString &file);
    MMImageSource *getRealSource() const { return realSource; }
    MMImageSource *getPreviewSource() const { return previewSource; }
    MMImageSource *getTmpSource(int realSize);
    void deleteTmpSource();

    static bool isLargeImage(const QString &file);
    static bool isEditableImage(const QString &file);
    static void removeBlanks(QString &text);

    // Preview pixels to real-size pixels, in place; unchanged without a preview.
    void mapToRealPoint(QPoint &point) const;
    void mapToRealRect(QRect &rect) const;
    // Writes the real-size copy over the edited file, crash-safe (see
    // ImgImplSafeSave); lockFd, when given, is the edit lock's descriptor,
    // which moves to the new file.
    int saveToOriginalFile(int *lockFd = nullptr);
    // Whether source fits where destination is to be written: a new file is
    // written beside the old one, so the old one's bytes do not count.
    static bool hasEnoughSpace(const QString &source, const QString &destination);
    static int copyFile(const QString &source, const QString &destination, int *lockFd = nullptr);

    // A new file of ours in the working folder, stem + time stamp + suffix
    // (or "_2", ... before the suffix), listed with this editor's working
    // files so that a crash leaves it to the next launch's sweep. Empty
    // (errno set) when none could be made.
    QString reserveWorkingFile(const QString &stem, const QString &suffix);
    // Makes file (a working file holding the saved picture) the real-size
    // copy, so that the copy matches the file on disk even when a reload
    // fails.
    void adoptSavedCopy(const QString &file);

    QString realFilePath() const { return realFile; }
    QString previewFilePath() const { return previewFile; }
    QString tmpFilePath() const { return tmpFile; }
    float getPreviewScale() const { return previewScale; }
    // True when the working directory could not be used, so nothing was copied.
    bool isEmpty() const { return realSource == nullptr; }

    // The launch's first step: puts back every photo a killed in-place save
    // left torn (see ImgImplBackupJournal), file's inode under any name
    // included, and reports on standard error the backups it left alone.
    static ImgImplBackupJournal::Report recover(const QString &file);

    static QString workingDir();
    // Tests point the store at a directory of their own.
    static void setWorkingDirForTest(const QString &dir);

    // Large-image threshold and overlay limits, in pixels.
    static constexpr qint64 LargeImagePixels = 307200;
    static constexpr int EditableMinSide = 20;

private:
    bool makeRealCopy(const QString &file, QString &name);
    void adoptRealCopy(const QString &name);
    void createPreview();
    void makePreviewImage();
    void releaseWorkingFiles();
    static bool prepareWorkingDir();
    QString reserveName(const QString &stem, const QString &suffix);

    QString originalFile;
    QString realFile;
    QString previewFile;
    QString tmpFile;
    MMImageSource *realSource = nullptr;
    MMImageSource *previewSource = nullptr;
    MMImageSource *tmpSource = nullptr;
    ImgImplLiveMarker *marker = nullptr;

public:
    // Read directly by the main frame and the crop step.
    bool hasPreview = false;

private:
    float previewScale = 1.0f;
};
