#pragma once
#include <QPoint>
#include <QRect>
#include <QString>

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
    // Copies the real-size copy over the edited file when there is room.
    int saveToOriginalFile();
    static bool hasEnoughSpace(const QString &source, const QString &destination);
    static int copyFile(const QString &source, const QString &destination);

    QString realFilePath() const { return realFile; }
    QString previewFilePath() const { return previewFile; }
    QString tmpFilePath() const { return tmpFile; }
    float getPreviewScale() const { return previewScale; }
    // True when the working directory could not be used, so nothing was copied.
    bool isEmpty() const { return realSource == nullptr; }

    static QString workingDir();
    // Tests point the store at a directory of their own.
    static void setWorkingDirForTest(const QString &dir);

    // Large-image threshold and overlay limits, in pixels.
    static constexpr qint64 LargeImagePixels = 307200;
    static constexpr int EditableMinSide = 20;

private:
    void createRealCopy();
    void createPreview();
    void makePreviewImage();
    void releaseWorkingFiles();
    static bool prepareWorkingDir();
    static QString reserveName(const QString &stem, const QString &suffix);

    QString originalFile;
    QString realFile;
    QString previewFile;
    QString tmpFile;
    MMImageSource *realSource = nullptr;
    MMImageSource *previewSource = nullptr;
    MMImageSource *tmpSource = nullptr;

public:
    // Read directly by the main frame and the crop step.
    bool hasPreview = false;

private:
    float previewScale = 1.0f;
};
