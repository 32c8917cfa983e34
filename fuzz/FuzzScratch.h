#pragma once
// Scratch files for the fuzz targets: the engine reads and writes pictures
// by path, so each input goes through a file in a folder private to this
// process (several fuzzers run at once).
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <unistd.h>

namespace fuzz {

inline QString scratchDir()
{
    static const QString dir = [] {
        const QString d = QDir::tempPath() + QStringLiteral("/vo-fuzz-%1").arg(getpid());
        QDir().mkpath(d);
        return d;
    }();
    return dir;
}

inline QString scratchPath(const QString &name) { return scratchDir() + QLatin1Char('/') + name; }

inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

// A broken promise of the engine: a crash the fuzzer reports like any other.
inline void require(bool ok)
{
    if (!ok)
        __builtin_trap();
}

// Reads the fuzz input front to back; past its end every read is 0.
class Reader
{
public:
    Reader(const uint8_t *data, size_t size) : m_data(data), m_size(size) {}
    bool atEnd() const { return m_pos >= m_size; }
    uint8_t byte() { return m_pos < m_size ? m_data[m_pos++] : 0; }
    int16_t int16() { return int16_t(uint16_t(byte()) << 8 | byte()); }
    int32_t int32() { return int32_t(uint32_t(uint16_t(int16())) << 16 | uint16_t(int16())); }
    // Small values most of the time, the whole int range sometimes: both
    // the edges and the plausible middle get exercised.
    int number()
    {
        switch (byte() & 3) {
        case 0: return int8_t(byte());
        case 1:
        case 2: return int16();
        default: return int32();
        }
    }
    QByteArray rest() const
    {
        return m_pos < m_size ? QByteArray(reinterpret_cast<const char *>(m_data + m_pos), int(m_size - m_pos))
                              : QByteArray();
    }

private:
    const uint8_t *m_data;
    size_t m_size;
    size_t m_pos = 0;
};

} // namespace fuzz
