#include "BenchPhases.h"
#include "BenchJob.h"
#include "MMAtomicFile.h"
#include "MMCommand.h"
#include "MMEncodeOptions.h"
#include "MMFileFormat.h"
#include "MMImageDecoder.h"
#include "MMImageHeader.h"
#include "MMImageWriter.h"
#include "MMJpegCodec.h"
#include "MMMetadata.h"
#include "MMOrientation.h"
#include "MMRotateCommand.h"

#include <QFile>
#include <QImage>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace {
double cpuMs()
{
    timespec ts{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return ts.tv_sec * 1000.0 + ts.tv_nsec / 1.0e6;
}

double peakMB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024.0;
}

double residentMB()
{
    long pages = 0, resident = 0;
    FILE *statm = std::fopen("/proc/self/statm", "r");
    if (statm) {
        if (std::fscanf(statm, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        std::fclose(statm);
    }
    return double(resident) * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

// Times one step from construction to report().
class Step
{
public:
    Step() : m_wall(std::chrono::steady_clock::now()), m_cpu(cpuMs()) {}
    void report(const std::string &name)
    {
        const double wall =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_wall).count();
        std::printf("  %-22s %9.1f %9.1f %10.1f %10.1f\n", name.c_str(), wall, cpuMs() - m_cpu, residentMB(),
                    peakMB());
        std::fflush(stdout);
    }

private:
    std::chrono::steady_clock::time_point m_wall;
    double m_cpu;
};

const char *commandName(MMCommand::CommandType type)
{
    switch (type) {
    case MMCommand::CMD_ROTATE: return "apply rotate";
    case MMCommand::CMD_MIRROR: return "apply mirror";
    case MMCommand::CMD_CROP: return "apply crop";
    case MMCommand::CMD_RESIZE: return "apply resize";
    case MMCommand::CMD_EFFECT: return "apply effect";
    case MMCommand::CMD_OVERLAY: return "apply overlay";
    }
    return "apply ?";
}

// Rotations alone are what the runner tries losslessly; the benchmark's jobs
// have no mirror-only save.
bool rotationOnly(const BenchJob &job, MMOrientation &edits)
{
    MMOrientation total;
    for (const MMCommand *command : job.commands()) {
        if (command->type() != MMCommand::CMD_ROTATE)
            return false;
        total = total.then(MMOrientation::rotation(static_cast<const MMRotateCommand *>(command)->getDegree()));
    }
    edits = total;
    return true;
}
}

int BenchPhases::run(BenchJob &job)
{
    const QString in = QString::fromStdString(job.input());
    const QString out = QString::fromStdString(job.output());
    std::printf("  %-22s %9s %9s %10s %10s\n", "step", "wall ms", "cpu ms", "RSS MB", "peak MB");
    std::printf("  %-22s %9s %9.1f %10.1f %10.1f\n", "start-up", "", cpuMs(), residentMB(), peakMB());

    Step headerStep;
    const MMImageHeader header = MMImageHeader::read(in);
    headerStep.report("header");
    if (!header.isValid())
        return 1;
    const QSize upright = header.uprightSize();
    if (!job.buildCommands(upright.width(), upright.height()))
        return 1;
    const QByteArray format = MMFileFormat::forOutput(out, header.qtFormat());

    MMOrientation edits;
    if (rotationOnly(job, edits) && format == header.qtFormat() && header.format() == MM_FORMAT_JPEG) {
        Step readStep;
        QFile file(in);
        const QByteArray source = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        readStep.report("lossless: read file");
        Step turnStep;
        const QByteArray turned = MMJpegCodec::transform(source, header.orientation().then(edits), true,
                                                         header.jpeg().isProgressive());
        turnStep.report(turned.isEmpty() ? "lossless: refused" : "lossless: transform");
        if (!turned.isEmpty()) {
            Step metaStep;
            const QByteArray result = MMMetadata::normalize(turned, edits.map(upright),
                                                            [&turned] { return MMMetadata::thumbnailSource(turned); });
            metaStep.report("lossless: metadata");
            Step writeStep;
            const int written = MMAtomicFile::write(out, result.isEmpty() ? turned : result);
            writeStep.report("write (fsync, rename)");
            return written == 0 ? 0 : 1;
        }
    }

    Step decodeStep;
    QImage image = MMImageDecoder::decode(in);
    if (!image.isNull() && image.depth() != 32 && image.format() != QImage::Format_Grayscale8)
        image = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    decodeStep.report("decode");
    if (image.isNull())
        return 1;
    for (const MMCommand *command : job.commands()) {
        Step applyStep;
        const int applied = command->apply(image);
        applyStep.report(commandName(command->type()));
        if (applied != 0)
            return 1;
    }

    MMEncodeOptions options;
    options.format = format;
    if (header.format() == MM_FORMAT_JPEG) {
        const int quality = header.jpeg().estimatedQuality();
        if (quality > 0)
            options.jpegQuality = quality;
        options.jpegSubsampling = header.jpeg().subsampling();
        options.jpegProgressive = header.jpeg().isProgressive();
    }
    Step encodeStep;
    const QByteArray encoded = MMImageWriter::encode(image, out, options);
    encodeStep.report("encode");
    if (encoded.isEmpty())
        return 1;
    QByteArray data = encoded;
    if (format == "jpeg") {
        const int components = header.jpeg().components();
        Step metaStep;
        const QByteArray withMetadata = MMMetadata::transplant(in, encoded, image.size(), [&image] { return image; },
                                                               components == 3 || components == 1);
        metaStep.report("metadata");
        if (!withMetadata.isEmpty())
            data = withMetadata;
    }
    Step writeStep;
    const int written = MMAtomicFile::write(out, data);
    writeStep.report("write (fsync, rename)");
    return written == 0 ? 0 : 1;
}
