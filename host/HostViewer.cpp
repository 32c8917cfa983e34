#include "HostViewer.h"

#include "HostEditorLibrary.h"
#include "MMImageDecoder.h"
#include "ZSoftKey.h"

#include <QApplication>
#include <QFileInfo>
#include <QLabel>
#include <QTimer>

HostViewer::HostViewer(const QString &file, HostEditorLibrary *library)
    : ZKbMainWidget(nullptr, "HostViewer", 0), m_file(file), m_library(library)
{
    setMainWidgetTitle(QFileInfo(file).fileName());
    m_picture = new QLabel(this);
    m_picture->setAlignment(Qt::AlignCenter);
    m_picture->setStyleSheet(QStringLiteral("background: black; color: white;"));
    m_picture->setWordWrap(true);
    setContentWidget(m_picture);

    ZSoftKey *keys = getSoftKey(true);
    keys->setText(ZSoftKey::LEFT, tr("Edit"));
    keys->setText(ZSoftKey::RIGHT, tr("Exit"));
    keys->setClickedSlot(ZSoftKey::LEFT, this, SLOT(openEditor()));
    keys->setClickedSlot(ZSoftKey::RIGHT, this, SLOT(slotExit()));
    reloadPicture();
}

HostViewer::~HostViewer() = default;

void HostViewer::reloadPicture()
{
    const QSize bound = m_picture->size().isValid() && !m_picture->size().isEmpty() ? m_picture->size()
                                                                                     : QSize(240, 240);
    const QImage image = MMImageDecoder::decodeFitting(m_file, bound);
    if (image.isNull()) {
        m_picture->setPixmap(QPixmap());
        m_picture->setText(tr("This picture can not be shown."));
    } else {
        m_picture->setPixmap(QPixmap::fromImage(image));
    }
}

void HostViewer::openEditor()
{
    if (m_editor)
        return;
    m_editor = m_library->launch(m_file, nullptr);
    if (m_editor)
        connect(m_editor, SIGNAL(sigMeClosed()), this, SLOT(slotEditorClosed()));
}

void HostViewer::slotEditorClosed()
{
    // Released from our own event loop: the editor is still inside its
    // soft-key handler while it emits.
    QTimer::singleShot(0, this, [this] {
        m_editor = nullptr;
        m_library->release();
        show();
        activateWindow();
        setFocus();
        reloadPicture();
        emit editorReleased();
    });
}

void HostViewer::slotExit()
{
    if (!m_editor)
        QApplication::quit();
}
