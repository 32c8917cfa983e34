// vo-bench-save: how much the flushes of a durable save add to its latency.
//
//   vo-bench-save DIR [MB ...] [--runs N]
//
// For each size (16 and 4 MB by default) a file of that size is saved over
// an existing photo in DIR, the way the editor saves: once through a rename
// (the usual case) and once in place behind a backup (a photo with a second
// hard link), each with its fsyncs and with them skipped. Runs alternate
// between the two so that drift in machine load hits both; the medians are
// printed in milliseconds.

#include "ImgImplFileOps.h"
#include "ImgImplSafeSave.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>
#include <vector>

namespace {
double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

bool writeFile(const QString &path, const QByteArray &data)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(data) == data.size();
}

double timedSave(const QString &source, const QString &target, bool sync)
{
    ImgImplFileOps::setSyncForBench(sync);
    const auto start = std::chrono::steady_clock::now();
    const int result = ImgImplSafeSave::write(source, target);
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    ImgImplFileOps::setSyncForBench(true);
    return result == 0 ? ms : -1;
}
} // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        fprintf(stderr, "usage: vo-bench-save DIR [MB ...] [--runs N]\n");
        return 2;
    }
    const QString dir = QString::fromLocal8Bit(argv[1]);
    std::vector<int> sizes;
    int runs = 9;
    for (int i = 2; i < argc; ++i) {
        if (strcmp(argv[i], "--runs") == 0 && i + 1 < argc)
            runs = atoi(argv[++i]);
        else
            sizes.push_back(atoi(argv[i]));
    }
    if (sizes.empty())
        sizes = {16, 4};
    QDir().mkpath(dir);
    const QString source = dir + "/bench-source.jpg";
    const QString target = dir + "/bench-target.jpg";
    const QString second = dir + "/bench-second-link.jpg";
    printf("%-6s %-8s %12s %12s %12s\n", "MB", "path", "fsync ms", "no fsync ms", "added ms");
    for (int mb : sizes) {
        QByteArray data(mb << 20, Qt::Uninitialized);
        QRandomGenerator gen(mb);
        for (char &c : data)
            c = char(gen.bounded(256));
        for (const char *path : {"rename", "inplace"}) {
            std::vector<double> with, without;
            for (int r = 0; r < runs; ++r) {
                for (bool sync : {r % 2 == 0, r % 2 != 0}) {
                    QFile::remove(second);
                    if (!writeFile(source, data) || !writeFile(target, data.left(data.size() - 1000)))
                        return 1;
                    if (strcmp(path, "inplace") == 0 && link(QFile::encodeName(target).constData(),
                                                             QFile::encodeName(second).constData()) != 0)
                        return 1;
                    // Start each run from clean caches of the target's folder.
                    ::sync();
                    const double ms = timedSave(source, target, sync);
                    if (ms < 0)
                        return 1;
                    (sync ? with : without).push_back(ms);
                }
            }
            printf("%-6d %-8s %12.1f %12.1f %12.1f\n", mb, path, median(with), median(without),
                   median(with) - median(without));
        }
    }
    QFile::remove(source);
    QFile::remove(target);
    QFile::remove(second);
    return 0;
}
