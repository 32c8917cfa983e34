#pragma once
#include <QtGlobal>
#include <atomic>
#include <functional>

// How far a save (MMCommandRunner::run) has got, and a way to stop it. The
// runner and its decoders report from whichever thread does the work (a
// large picture is decoded on two); another thread may read permille() or
// cancel() at any time. Reporting is cheap: an atomic add and compare a
// strip of rows, and the listener is called only when the whole grows by at
// least one permille, on the working thread that made it grow (so it must
// be thread-safe; queue to the UI from there).
//
// Cancelling stops the decode at its next strip (or libjpeg's next row of
// blocks), and the save between its steps; the run then fails and leaves
// the destination untouched. Writing, once begun, is not stopped.
class MMRunProgress
{
public:
    using Listener = std::function<void(int permille)>;
    explicit MMRunProgress(Listener listener = nullptr) : m_listener(std::move(listener)) {}
    MMRunProgress(const MMRunProgress &) = delete;
    MMRunProgress &operator=(const MMRunProgress &) = delete;

    void cancel() { m_cancelled.store(true, std::memory_order_relaxed); }
    bool isCancelled() const { return m_cancelled.load(std::memory_order_relaxed); }
    // 0 to 1000; never goes back.
    int permille() const { return m_permille.load(std::memory_order_relaxed); }

    // Engine side. A step covers [from, to] permille of the whole; whoever
    // does its work sets how many units (rows, say) it has, before its
    // workers start, and they add what they finish.
    void beginStep(int from, int to)
    {
        m_from = from;
        m_to = to;
        m_total.store(1, std::memory_order_relaxed);
        m_done.store(0, std::memory_order_relaxed);
        reach(from);
    }
    void setUnits(qint64 total) { m_total.store(qMax<qint64>(total, 1), std::memory_order_relaxed); }
    void advance(qint64 units)
    {
        const qint64 done = m_done.fetch_add(units, std::memory_order_relaxed) + units;
        const qint64 total = m_total.load(std::memory_order_relaxed);
        reach(m_from + int((m_to - m_from) * qMin(done, total) / total));
    }
    // Jumps to at least value (the end of a step that has no units).
    void reach(int value)
    {
        int now = m_permille.load(std::memory_order_relaxed);
        while (value > now) {
            if (m_permille.compare_exchange_weak(now, value, std::memory_order_relaxed)) {
                if (m_listener)
                    m_listener(value);
                return;
            }
        }
    }

private:
    Listener m_listener;
    std::atomic<bool> m_cancelled{ false };
    std::atomic<int> m_permille{ 0 };
    std::atomic<qint64> m_done{ 0 }, m_total{ 1 };
    // Set by the thread that runs the save, before its workers start.
    int m_from = 0, m_to = 0;
};
