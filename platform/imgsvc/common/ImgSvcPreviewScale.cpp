#include "ImgSvcPreviewScale.h"
#include <QFileInfo>
#include <QHash>
#include <QMutex>

namespace {
struct Preview
{
    QSize size, source;
};

QHash<QString, Preview> &previews()
{
    static QHash<QString, Preview> map;
    return map;
}

QMutex &lock()
{
    static QMutex mutex;
    return mutex;
}
} // namespace

void ImgSvcPreviewScale::record(const QString &preview, const QSize &previewSize, const QSize &sourceSize)
{
    if (previewSize.isEmpty() || sourceSize.isEmpty())
        return;
    QMutexLocker locked(&lock());
    previews().insert(QFileInfo(preview).fileName(), {previewSize, sourceSize});
}

static float scaleOfLongerSide(const QSize &preview, const QSize &source)
{
    // The longer side decides, as it did when the preview was fitted.
    return preview.width() > preview.height() ? float(double(preview.width()) / source.width())
                                              : float(double(preview.height()) / source.height());
}

float ImgSvcPreviewScale::scaleFor(const QString &input, const QSize &inputSize)
{
    const QString name = QFileInfo(input).fileName();
    QMutexLocker locked(&lock());
    for (auto it = previews().cbegin(); it != previews().cend(); ++it) {
        if (!name.endsWith(it.key()))
            continue;
        const Preview &p = it.value();
        if (inputSize == p.size)
            return scaleOfLongerSide(p.size, p.source);
        if (inputSize == p.size.transposed())
            return scaleOfLongerSide(p.size.transposed(), p.source.transposed());
    }
    return 1.0f;
}
