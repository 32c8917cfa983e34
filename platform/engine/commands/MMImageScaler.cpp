#include "MMImageScaler.h"
#include "MMFileFormat.h"
#include "MMImageDecoder.h"
#include "MMImageHeader.h"
#include "MMImageWriter.h"

int MMImageScaler::scaleFile(const QString &source, const QString &destination, const QSize &size)
{
    if (size.isEmpty() || destination.isEmpty())
        return -1;
    const MMImageHeader header = MMImageHeader::read(source);
    if (!header.isValid())
        return -1;
    const QImage image = MMImageDecoder::decodeScaled(source, size);
    if (image.isNull())
        return -1;
    // The copy is upright and for the screen only: no metadata, so that no
    // stale orientation can turn it a second time.
    MMEncodeOptions options;
    options.format = MMFileFormat::forOutput(destination, header.qtFormat());
    return MMImageWriter::write(image, destination, options);
}
