#pragma once
#include "ImgSvcPictureView.h"
#include "MMOrientation.h"

// Shows its input image fitted to the widget, centred, aspect kept. The
// rotations and mirrors change only what is displayed, never the file.
class ImgSvcViewer : public ImgSvcPictureView
{
    Q_OBJECT
public:
    ImgSvcViewer(QWidget *canvas, QWidget *parent, const char *name = nullptr, unsigned int flags = 0);
    ~ImgSvcViewer() override;

    void setInput(MMImageSource *source);
    MMImageSource *getInput() const { return m_input; }
    // Decodes the input at a size that fits the window (the home area while
    // the window has no size yet). Shows the file as it is: the display-only
    // edits made so far are dropped.
    void createFitWindowImage();
    // Repaints with the current display image.
    void updateViewer();

    void rotate90L();
    void rotate90R();
    void mirrorH();
    void mirrorV();

    // What is being displayed (after the display-only edits), unscaled.
    QImage displayImage() const { return picture(); }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void decode(const QSize &bound);
    void applyTurn(const MMOrientation &turn);

    MMImageSource *m_input = nullptr;
    QSize m_bound;            // what the current picture was decoded to fit
    MMOrientation m_turn; // the display-only edits, applied again when a resize decodes afresh
};
