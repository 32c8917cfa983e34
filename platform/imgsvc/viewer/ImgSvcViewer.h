#pragma once
#include "ImgSvcPictureView.h"
#include <vector>

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
    enum class Edit { RotateLeft, RotateRight, MirrorH, MirrorV };
    void decode(const QSize &bound);
    void applyEdit(Edit edit);
    static QImage transformed(const QImage &image, Edit edit);

    MMImageSource *m_input = nullptr;
    QSize m_bound;            // what the current picture was decoded to fit
    std::vector<Edit> m_edits; // replayed when a resize decodes afresh
};
