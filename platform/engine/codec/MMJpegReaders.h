#pragma once
#include <condition_variable>
#include <functional>
#include <mutex>

// The decoders still reading a progressive stream's bytes. libjpeg reads a
// progressive stream whole in jpeg_start_decompress, before any pixel comes
// out. Each decoder says when it has read it (or has failed), and, when
// asked to, waits there for the others: once all have read, done is called
// (on the last one's thread) and may free the bytes, so that they are not
// held beside the pixels that come out next. After a failure the bytes are
// left alone, as another decoder may still be reading them.
class MMJpegReaders
{
public:
    MMJpegReaders(int count, std::function<void()> done, bool wait = true)
        : m_left(count), m_wait(wait), m_done(std::move(done))
    {
    }

    // Once per decoder: read is false when it failed before it had read
    // all. Returns at once, or with wait when every decoder has said so.
    void arrive(bool read)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_failed = m_failed || !read;
        if (--m_left == 0) {
            if (!m_failed && m_done)
                m_done();
            m_allHere.notify_all();
            return;
        }
        if (m_wait)
            m_allHere.wait(lock, [this] { return m_left == 0; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_allHere;
    int m_left;
    const bool m_wait;
    bool m_failed = false;
    std::function<void()> m_done;
};
