#include "ImgSvcViewer.h"
#include "MMImageDecoder.h"
#include "MMImageSource.h"
#include "ZGlobal.h"
#include <QResizeEvent>
#include <QTransform>

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
    m_edits.clear();
    const QSize bound = testAttribute(Qt::WA_Resized) && !size().isEmpty() ? size() : ZGlobal::getHomeR(false).size();
    decode(bound);
}

void ImgSvcViewer::updateViewer()
{
    update();
}

void ImgSvcViewer::rotate90L()
{
    applyEdit(Edit::RotateLeft);
}

void ImgSvcViewer::rotate90R()
{
    applyEdit(Edit::RotateRight);
}

void ImgSvcViewer::mirrorH()
{
    applyEdit(Edit::MirrorH);
}

void ImgSvcViewer::mirrorV()
{
    applyEdit(Edit::MirrorV);
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
    if (m_input) {
        shown = MMImageDecoder::decodeFitting(QString::fromStdString(m_input->getFileName()), bound);
        for (Edit e : m_edits)
            shown = transformed(shown, e);
    }
    setPicture(shown);
}

void ImgSvcViewer::applyEdit(Edit edit)
{
    m_edits.push_back(edit);
    setPicture(transformed(picture(), edit));
}

QImage ImgSvcViewer::transformed(const QImage &image, Edit edit)
{
    if (image.isNull())
        return image;
    // Quarter turns and mirrors move whole pixels; Qt does them exactly.
    switch (edit) {
    case Edit::RotateLeft:
        return image.transformed(QTransform().rotate(-90));
    case Edit::RotateRight:
        return image.transformed(QTransform().rotate(90));
    case Edit::MirrorH:
        return image.mirrored(true, false);
    case Edit::MirrorV:
        return image.mirrored(false, true);
    }
    return image;
}
