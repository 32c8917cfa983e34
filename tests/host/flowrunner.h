#pragma once
// Runs the demo host on a picture with a key script, several runs at a time,
// and compares the pictures it writes with references made by ImageMagick.
#include <QImage>
#include <QtTest>

#include "builtprogram.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

namespace flows {

const char *const kViewer = VO_BINARY_DIR "/bin/vo-viewer";
const char *const kWorkDir = "/tmp/.vo_imgeditor";

struct Run
{
    QString id, file, keys;
    QProcess process;
    bool started = false, done = false;
};

// Each run is its own vo-viewer process; at most `parallel` run at once and
// the others wait in order. The processes spend most of their time in the
// key script's timers, so a few at once cost little CPU.
class FlowRunner
{
public:
    explicit FlowRunner(int parallel) : m_parallel(parallel) {}
    ~FlowRunner() { stopAll(); }

    void add(const QString &id, const QString &file, const QString &keys)
    {
        m_runs.push_back(std::make_unique<Run>());
        m_runs.back()->id = id;
        m_runs.back()->file = file;
        m_runs.back()->keys = keys;
        startQueued();
    }

    // Starts nothing more and ends whatever still runs (when only some
    // tests were chosen, the others' runs are not waited for).
    void stopAll()
    {
        m_stopped = true;
        for (auto &run : m_runs) {
            run->process.kill();
            run->process.waitForFinished(5000);
        }
    }

    // The run's working directory: beside the picture's folder, empty.
    static QString workingDirOf(const QString &file) { return QFileInfo(file).absolutePath() + "-cwd"; }
    // Where the run's screenshots go: one before the first key, one after each.
    static QString shotsDirOf(const QString &file) { return QFileInfo(file).absolutePath() + "-shots"; }

    // The finished run, or nullptr when it did not finish in time.
    Run *wait(const QString &id, int timeoutMs = 90000)
    {
        const auto it = std::find_if(m_runs.begin(), m_runs.end(), [&](const auto &run) { return run->id == id; });
        if (builtprogram::emulated())
            timeoutMs *= 4;
        QElapsedTimer waited;
        waited.start();
        while (it != m_runs.end() && !(*it)->done && waited.elapsed() < timeoutMs)
            QTest::qWait(20);
        return it != m_runs.end() && (*it)->done ? it->get() : nullptr;
    }

private:
    void startQueued()
    {
        int running = 0;
        for (const auto &run : m_runs)
            running += run->started && !run->done;
        for (auto &run : m_runs) {
            if (m_stopped || running >= m_parallel)
                return;
            if (!run->started) {
                start(*run);
                ++running;
            }
        }
    }

    void start(Run &run)
    {
        run.started = true;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("QT_QPA_PLATFORM", "offscreen");
        // The handset's own screen, 240x320: no size is given.
        env.remove("VO_SCREEN_SIZE");
        // Nothing may land in the home folder: a file there would go unseen.
        env.insert("HOME", workingDirOf(run.file));
        run.process.setProcessEnvironment(env);
        run.process.setProcessChannelMode(QProcess::MergedChannels);
        // An empty folder of its own as the working directory, so that a
        // file written relative to it (or by a stray shell command) shows.
        QDir().mkpath(workingDirOf(run.file));
        run.process.setWorkingDirectory(workingDirOf(run.file));
        QObject::connect(&run.process, &QProcess::finished, [this, &run] {
            run.done = true;
            startQueued();
        });
        // The pause between keys is what lets the editor finish each step
        // (decoding, preview) before the next key, so it grows with emulation.
        const QString keyDelay = builtprogram::emulated() ? "600" : "150";
        builtprogram::start(run.process, kViewer,
                            {"--edit", "--key-delay", keyDelay, "--keys", run.keys,
                             "--shots", shotsDirOf(run.file),
                             "--quit-when-closed", run.file});
    }

    int m_parallel;
    bool m_stopped = false;
    std::vector<std::unique_ptr<Run>> m_runs;
};

// Why a run did not end as it should, for a failure message.
inline QString describe(Run *run)
{
    if (!run)
        return QStringLiteral("the viewer did not finish in time");
    return QStringLiteral("exit %1 (%2), keys \"%3\", output:\n%4")
        .arg(run->process.exitCode())
        .arg(run->process.exitStatus() == QProcess::NormalExit ? "normal" : "crashed")
        .arg(run->keys, QString::fromLocal8Bit(run->process.peek(1 << 20)));
}

// ---- pictures ---------------------------------------------------------------

// Every pixel differs from its neighbours in some channel, so that any
// misplaced row or column, mirror or turn shows in an exact comparison.
inline QImage detailed(int w, int h)
{
    QImage img(w, h, QImage::Format_RGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.setPixel(x, y, qRgb(x * 255 / (w - 1), y * 255 / (h - 1), ((x ^ y) * 37 + x * y) & 255));
    return img;
}

// A picture that survives JPEG well: smooth gradients under an 8-pixel
// checker aligned to the codec's blocks, with a bright square near the top
// left that tells the orientation. The checker makes a crop or placement
// off by even one pixel differ far beyond the codec's error.
inline QImage photo(int w, int h)
{
    QImage img(w, h, QImage::Format_RGB32);
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const int shade = ((x / 8 + y / 8) % 2) ? 30 : -30;
            const bool mark = x >= w / 16 && x < w / 16 + w / 8 && y >= h / 16 && y < h / 16 + h / 8;
            img.setPixel(x, y, mark ? qRgb(245, 245, 245)
                                    : qRgb(60 + 140 * x / (w - 1) + shade, 60 + 140 * y / (h - 1) + shade, 110 + shade));
        }
    }
    return img;
}

inline QImage load(const QString &path) { return QImage(path).convertToFormat(QImage::Format_RGB32); }

// Of two same-sized pictures: the mean absolute difference over all
// channels, and where they first differ (empty when they are equal).
inline double compare(const QImage &a, const QImage &b, QString *firstDifference)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
            if (p != q && firstDifference->isEmpty())
                *firstDifference = QStringLiteral("pixel (%1,%2) is #%3, expected #%4").arg(x).arg(y)
                                       .arg(p & 0xffffff, 6, 16, QLatin1Char('0')).arg(q & 0xffffff, 6, 16, QLatin1Char('0'));
        }
    }
    return sum / (3.0 * a.width() * a.height());
}

// Runs ImageMagick's convert and returns what it printed, or nothing when
// it failed. A look-alike that only converts to PPM will not do.
inline QString convert(const QStringList &args)
{
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(QStandardPaths::findExecutable("convert"), args);
    const bool ok = p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    return ok ? QString::fromLocal8Bit(p.readAll()) + ' ' : QString();
}

} // namespace flows
