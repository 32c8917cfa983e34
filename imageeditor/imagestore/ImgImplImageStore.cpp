#include "ImgImplImageStore.h"

#include "ImgImplBackupJournal.h"
#include "ImgImplFileOps.h"
#include "ImgImplLiveMarker.h"
#include "ImgSvcResizeCtl.h"
#include "MMAtomicFile.h"
#include "MMImageSource.h"
#include "VOUtility.h"
#include "ZGlobal.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString g_workingDir = QStringLiteral("/tmp/.vo_imgeditor/");

QString timeStamp()
{
    return QString::number(qint64(time(nullptr)), 10);
}

// Base name up to the first dot, and everything after it.
QString baseName(const QString &path) { return QFileInfo(path).fileName().section(QLatin1Char('.'), 0, 0); }
QString extension(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    const int dot = name.indexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : name.mid(dot + 1);
}

MMImageSource *makeSource(const QString &path)
{
    auto *source = new MMImageSource(MMImageSource::SOURCE_FILE);
    source->setFile(path.toUtf8().toStdString());
    return source;
}

bool readSize(const QString &file, qint64 &width, qint64 &height)
{
    MMImageSource source(MMImageSource::SOURCE_FILE);
    source.setFile(file.toUtf8().toStdString());
    MMImageInfo info;
    source.getImageInfo(info);
    // An unreadable image reads as zero-sized.
    width = info.width;
    height = info.height;
    return width > 0 && height > 0;
}

// Copies a file into a working copy this store has just created. No shell
// and no cp: a failure is seen, and a link planted at the name is not
// followed.
bool copyInto(const QString &source, const QString &copy)
{
    const int in = ::open(QFile::encodeName(source).constData(), O_RDONLY | O_CLOEXEC);
    const int out = ::open(QFile::encodeName(copy).constData(), O_WRONLY | O_TRUNC | O_NOFOLLOW | O_CLOEXEC);
    struct stat st;
    const bool ok = in >= 0 && out >= 0 && fstat(in, &st) == 0 && S_ISREG(st.st_mode)
        && ImgImplFileOps::copyBytes(in, 0, out, 0, st.st_size, false);
    if (in >= 0)
        ::close(in);
    if (out >= 0)
        ::close(out);
    return ok;
}
} // namespace

QString ImgImplImageStore::workingDir() { return g_workingDir; }

void ImgImplImageStore::setWorkingDirForTest(const QString &dir)
{
    g_workingDir = dir.endsWith(QLatin1Char('/')) ? dir : dir + QLatin1Char('/');
}

ImgImplImageStore::ImgImplImageStore(const QString &file)
    : originalFile(file)
{
    if (!prepareWorkingDir())
        return;
    // Before anything reads the file: the launch has replayed the journal
    // already, but a store made on its own must not read a torn file either.
    const QByteArray dir = QFile::encodeName(g_workingDir);
    recover(originalFile);
    marker = new ImgImplLiveMarker(dir);
    if (!marker->isValid())
        return;
    // The engine's temporaries and the overlay pictures are ours too:
    // listed, a crash leaves none. The newest store lists them.
    MMAtomicFile::Hooks hooks = MMAtomicFile::hooks();
    hooks.created = [](const QByteArray &path, void *store) {
        static_cast<ImgImplImageStore *>(store)->marker->record(path);
    };
    hooks.createdContext = this;
    // Its writes are steps of ours: checked alike, and reachable by tests.
    hooks.writeAndSync = [](int fd, const QByteArray &data) {
        return ImgImplFileOps::writeAllAt(fd, data.constData(), data.size(), 0, true) && ImgImplFileOps::sync(fd);
    };
    MMAtomicFile::setHooks(hooks);
    VOUtility::setTempFileHook([](const std::string &path, void *store) {
        static_cast<ImgImplImageStore *>(store)->marker->record(QByteArray::fromStdString(path));
    }, this);
    // So are a save's temporaries beside its target, a new name's included.
    ImgImplFileOps::setTemporaryHook([](const QByteArray &path, void *store) {
        static_cast<ImgImplImageStore *>(store)->marker->record(path);
    }, this);
    // A failed copy shows itself when the engine reads it.
    QString name;
    makeRealCopy(originalFile, name);
    adoptRealCopy(name);
}

ImgImplImageStore::~ImgImplImageStore()
{
    if (MMAtomicFile::hooks().createdContext == this)
        MMAtomicFile::setHooks({});
    if (VOUtility::tempFileHookContext() == this)
        VOUtility::setTempFileHook(nullptr, nullptr);
    if (ImgImplFileOps::temporaryHookContext() == this)
        ImgImplFileOps::setTemporaryHook(nullptr, nullptr);
    releaseWorkingFiles();
    delete marker;
    marker = nullptr;
}

ImgImplBackupJournal::Report ImgImplImageStore::recover(const QString &file)
{
    if (!prepareWorkingDir())
        return {};
    const QByteArray dir = QFile::encodeName(g_workingDir);
    // The opened file first: reached under another name than the journal
    // recorded, its backup is still found by its inode.
    ImgImplBackupJournal::Report report = ImgImplBackupJournal::recoverFile(dir, QFile::encodeName(file));
    const ImgImplBackupJournal::Report all = ImgImplBackupJournal::recoverAll(dir);
    report.restored += all.restored;
    for (const QByteArray &line : all.leftAlone)
        report.note(line);
    // A backup we will not write from is someone's to look at; say where.
    for (const QByteArray &line : report.leftAlone)
        fprintf(stderr, "voimageeditor: backup left alone: %s\n", line.constData());
    ImgImplLiveMarker::sweep(dir);
    return report;
}

// The directory is shared by every editor and never removed. It must be a
// real directory of ours, private to us: a symlink or someone else's
// directory could redirect or expose the copies, so then nothing is copied.
bool ImgImplImageStore::prepareWorkingDir()
{
    QByteArray path = QFile::encodeName(g_workingDir);
    while (path.size() > 1 && path.endsWith('/'))
        path.chop(1);
    struct stat st;
    if (lstat(path.constData(), &st) != 0) {
        if (errno != ENOENT)
            return false;
        if (mkdir(path.constData(), 0700) != 0 && errno != EEXIST)
            return false;
        if (lstat(path.constData(), &st) != 0)
            return false;
    }
    if (!S_ISDIR(st.st_mode) || st.st_uid != geteuid())
        return false;
    if ((st.st_mode & 077) != 0 && chmod(path.constData(), 0700) != 0)
        return false;
    return true;
}

// Claims stem + suffix by creating it exclusively; when another store took
// that name in the same second, "_2", "_3", ... go before the suffix.
// Each name is listed in the live marker once it is ours: listing it before
// could sweep another store's file that won the name.
QString ImgImplImageStore::reserveName(const QString &stem, const QString &suffix)
{
    for (int n = 1; n < 10000 && marker; ++n) {
        const QString candidate = n == 1 ? stem + suffix : stem + QLatin1Char('_') + QString::number(n) + suffix;
        const QByteArray path = QFile::encodeName(candidate);
        ImgImplFileOps::aboutToCreate(path);
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        if (fd >= 0) {
            marker->record(path);
            ::close(fd);
            return candidate;
        }
        if (errno != EEXIST)
            break;
    }
    return QString();
}

void ImgImplImageStore::setImageFile(const QString &file)
{
    // A copy that cannot be made must not cost the working copies we have:
    // they stay until a good new one exists.
    QString fresh;
    const bool copied = makeRealCopy(file, fresh);
    if (!copied && realSource) {
        if (!fresh.isEmpty())
            QFile::remove(fresh);
        deleteTmpSource();
        return;
    }
    releaseWorkingFiles();
    originalFile = file;
    adoptRealCopy(fresh);
}

// Reserves a fresh name for the real-size copy of file and copies it there.
// name stays set when the copy failed, so the caller decides what to keep.
bool ImgImplImageStore::makeRealCopy(const QString &file, QString &name)
{
    const QString stamp = timeStamp();
    QString base = baseName(file);
    removeBlanks(base);
    name = reserveName(g_workingDir + QStringLiteral("tempreal_") + base + QLatin1Char('_') + stamp,
                       QLatin1Char('.') + extension(file));
    return !name.isEmpty() && copyInto(file, name);
}

void ImgImplImageStore::adoptRealCopy(const QString &name)
{
    if (name.isEmpty())
        return;
    realFile = name;
    delete realSource;
    realSource = makeSource(realFile);
    if (isLargeImage(realFile)) {
        hasPreview = true;
        createPreview();
    }
}

void ImgImplImageStore::createPreview()
{
    const QString stamp = timeStamp();
    previewFile = reserveName(g_workingDir + QStringLiteral("smallimg_") + baseName(realFile) + QLatin1Char('_') + stamp,
                              QLatin1Char('.') + extension(realFile));
    delete previewSource;
    previewSource = makeSource(previewFile);
    makePreviewImage();
}

void ImgImplImageStore::makePreviewImage()
{
    const QRect screen = ZGlobal::getScreenR();
    const int screenWidth = screen.right() - screen.left() + 1;
    const int screenHeight = screen.bottom() - screen.top() + 1;

    MMImageInfo info;
    realSource->getImageInfo(info);
    const int w0 = info.width;
    const int h0 = info.height;
    int w = w0;
    int h = h0;
    VOUtility::fitScreen(w, h, screenWidth, screenHeight);

    auto *control = new ImgSvcResizeCtl();
    control->setInput(realSource);
    control->setOutput(previewSource);
    control->setTargetSize(QSize(w, h));
    control->process();
    previewScale = float(w > h ? double(w) / double(w0) : double(h) / double(h0));
    delete control;
}

MMImageSource *ImgImplImageStore::getTmpSource(int realSize)
{
    if (tmpSource)
        return tmpSource;
    const bool fromPreview = realSize == 0 && hasPreview;
    const QString source = fromPreview ? previewFile : realFile;
    tmpFile = reserveName(g_workingDir + QStringLiteral("tempsmall_") + baseName(source),
                          QLatin1Char('.') + extension(source));
    if (fromPreview) {
        printf("#####the temp small image name of small image = %s\n", tmpFile.toLatin1().constData());
        fflush(stdout);
    }
    if (!tmpFile.isEmpty())
        copyInto(source, tmpFile);
    tmpSource = makeSource(tmpFile);
    return tmpSource;
}

QString ImgImplImageStore::reserveWorkingFile(const QString &stem, const QString &suffix)
{
    return reserveName(g_workingDir + stem + timeStamp(), suffix);
}

void ImgImplImageStore::adoptSavedCopy(const QString &file)
{
    if (realFile.isEmpty() || ::rename(QFile::encodeName(file).constData(), QFile::encodeName(realFile).constData()) != 0)
        QFile::remove(file);
    // The preview and tmp copy still show the picture before the edits;
    // the reload that follows a save makes them anew.
}

void ImgImplImageStore::deleteTmpSource()
{
    if (!tmpSource)
        return;
    QFile::remove(tmpFile);
    delete tmpSource;
    tmpSource = nullptr;
}

void ImgImplImageStore::releaseWorkingFiles()
{
    delete realSource;
    realSource = nullptr;
    if (!realFile.isEmpty())
        QFile::remove(realFile);
    delete previewSource;
    previewSource = nullptr;
    delete tmpSource;
    tmpSource = nullptr;
    hasPreview = false;
    if (!previewFile.isEmpty())
        QFile::remove(previewFile);
    if (!tmpFile.isEmpty())
        QFile::remove(tmpFile);
}

bool ImgImplImageStore::isLargeImage(const QString &file)
{
    qint64 w, h;
    readSize(file, w, h);
    return w * h >= LargeImagePixels;
}

bool ImgImplImageStore::isEditableImage(const QString &file)
{
    qint64 w, h;
    readSize(file, w, h);
    return w > EditableMinSide && h > EditableMinSide && w * h <= LargeImagePixels;
}

void ImgImplImageStore::removeBlanks(QString &text)
{
    int at;
    while ((at = text.indexOf(QLatin1Char(' '), 0, Qt::CaseSensitive)) >= 0)
        text.remove(at, 1);
}
