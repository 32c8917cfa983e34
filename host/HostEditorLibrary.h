#pragma once
#include <QString>

class QWidget;

// The editor library, loaded at run time through its unmangled entry points
// only, as any third-party host would.
class HostEditorLibrary
{
public:
    ~HostEditorLibrary();

    // Finds and loads libvoimageeditor.so.1: $VO_IMAGEEDITOR_LIB, then beside
    // this program (../lib), then the system's search path.
    bool load();
    QString errorString() const { return m_error; }

    QWidget *launch(const QString &file, QWidget *parent);
    void release();

private:
    using LaunchFn = QWidget *(*)(const QString &, QWidget *, void *);
    using ReleaseFn = void (*)();
    void *m_handle = nullptr;
    LaunchFn m_launch = nullptr;
    ReleaseFn m_release = nullptr;
    QString m_error;
};
