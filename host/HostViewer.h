#pragma once
#include "ZKbMainWidget.h"

class HostEditorLibrary;
class QLabel;

// A small picture viewer: shows one picture; "Edit" opens the editor on it,
// and when the editor has closed the picture is shown again from disk.
class HostViewer : public ZKbMainWidget
{
    Q_OBJECT
public:
    HostViewer(const QString &file, HostEditorLibrary *library);
    ~HostViewer() override;

    bool isEditorOpen() const { return m_editor != nullptr; }

public slots:
    void openEditor();
    void reloadPicture();

signals:
    void editorReleased();

private slots:
    void slotEditorClosed();
    void slotExit();

private:
    QString m_file;
    HostEditorLibrary *m_library;
    QLabel *m_picture;
    QWidget *m_editor = nullptr;
};
