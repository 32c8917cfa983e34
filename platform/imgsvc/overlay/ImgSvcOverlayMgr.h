#pragma once
#include <QDate>
#include "ImgSvcScreen.h"
#include <QMap>
#include <QRect>
#include <vector>

class ImgSvcOverlayCtl;
class ImgSvcOverlayView;
class QLabel;

// The add-elements screen: built-in elements (stamps, frames, a date stamp)
// drawn into temporary image files; the user picks one, moves it with the
// five-way key, places it with Select, and may place more. The left soft key
// confirms (result 0), the right one leaves (result 1). The element files of
// a confirmed session are the caller's to remove (getOverlayTmpFiles); those
// of any other session are removed with the screen.
//
// Two states. Choosing: Left/Right cycle the elements, Select starts moving
// the current one (the frame, which covers the picture, is placed at once),
// soft keys "Done" / "Back". Moving: the five-way key moves the element
// (small steps, growing while a key repeats), Select or the left soft key
// ("Place") places it, the right soft key ("Cancel") goes back to choosing.
// The screen stays up after it has reported; whoever showed it closes it.
class ImgSvcOverlayMgr : public ImgSvcScreen
{
    Q_OBJECT
public:
    ImgSvcOverlayMgr(QWidget *parent = nullptr, const char *name = nullptr, unsigned int flags = 0);
    ~ImgSvcOverlayMgr() override;

    ImgSvcOverlayCtl *getOverlayCtl() const { return m_ctl; }
    void setOriginalFile(const QString &file);
    QString originalFile() const { return m_originalFile; }
    std::vector<QString> getOverlayTmpFiles() const { return m_tmpFiles; }

    // ImgSvcElementFactory::Element under the cursor.
    int currentElement() const { return m_element; }
    bool isMoving() const { return m_moving; }
    // Where the current element would go, in input-image pixels.
    QRect currentRect() const;

protected:
    bool keypadKey(QKeyEvent *event) override;

private:
    void leftSoftKey() override;
    void rightSoftKey() override;
    void inputChanged();
    void cycle(int delta);
    void move(const QPoint &dir, const QKeyEvent *event);
    void place();
    void setMoving(bool moving);
    void updateView();

    ImgSvcOverlayCtl *m_ctl;
    ImgSvcOverlayView *m_view;
    QLabel *m_status;
    QString m_originalFile;
    QDate m_stampDate; // invalid: today's
    std::vector<QString> m_tmpFiles;
    QMap<int, QString> m_elementFiles; // one file per element, shared by its placements
    QSize m_imageSize;
    QPoint m_centre; // of the current element, in input pixels
    int m_element = 0;
    bool m_moving = false;
    bool m_confirmed = false;
};
