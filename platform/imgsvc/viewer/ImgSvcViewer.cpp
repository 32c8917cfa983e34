#include "ImgSvcViewer.h"
#include "MMImageDecoder.h"
#include "MMImageSource.h"
#include "ZGlobal.h"
#include <QResizeEvent>

ImgSvcViewer::ImgSvcViewer(QWidget *canvas, QWidget *parent, const char *name, unsigned int flags) : ImgSvcPictureView(parent)
{
    Q_UNUSED(canvas) // the picture is drawn by this widget itself
    Q_UNUSED(flags)
    if (name)
        setObjectName(QString::fromLatin1(name));
}

ImgSvcViewer::~ImgSvcViewer() = default;

void ImgSvcViewer::setInput(MMImageSource *source)
{
    m_input = source;
}

void ImgSvcViewer::createFitWindowImage()
{
    m_turn = MMOrientation();
    const QSize bound = testAttribute(Qt::WA_Resized) && !size().isEmpty() ? size() : ZGlobal::getHomeR(false).size();
    decode(bound);
}

void ImgSvcViewer::updateViewer()
{
    update();
}

// Turns and mirrors compose into one orientation, the same arithmetic the
// engine uses to fold the queued commands when it saves, so the preview
// shows exactly what the save will write.
void ImgSvcViewer::rotate90L()
{
    applyTurn(MMOrientation::rotation(-90));
}

void ImgSvcViewer::rotate90R()
{
    applyTurn(MMOrientation::rotation(90));
}

void ImgSvcViewer::mirrorH()
{
    applyTurn(MMOrientation::mirror(true));
}

void ImgSvcViewer::mirrorV()
{
    applyTurn(MMOrientation::mirror(false));
}

void ImgSvcViewer::resizeEvent(QResizeEvent *event)
{
    ImgSvcPictureView::resizeEvent(event);
    // A window that grew past the decoded picture would show it blurred.
    const QSize s = event->size();
    if (m_input && !picture().isNull() && (s.width() > m_bound.width() || s.height() > m_bound.height()))
        decode(s);
}

void ImgSvcViewer::decode(const QSize &bound)
{
    m_bound = bound;
    QImage shown;
    if (m_input)
        shown = m_turn.apply(MMImageDecoder::decodeFitting(QString::fromStdString(m_input->getFileName()), bound));
    setPicture(shown);
}

void ImgSvcViewer::applyTurn(const MMOrientation &turn)
{
    m_turn = m_turn.then(turn);
    setPicture(turn.apply(picture()));
}
