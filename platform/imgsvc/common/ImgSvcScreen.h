#pragma once
#include "ZKbMainWidget.h"
#include <initializer_list>

class ImgSvcCtlInterface;
class ImgSvcLayoutWidget;
class QLabel;

// What the image screens share: one page inside the padded content area, the
// keypad focus when shown, the soft keys wired to leftSoftKey() and
// rightSoftKey(), a step that grows while a five-way key is held, and the
// rule that a screen reports to its control once and then takes no more keys,
// soft keys included.
class ImgSvcScreen : public ZKbMainWidget
{
    Q_OBJECT
public:
    explicit ImgSvcScreen(QWidget *parent = nullptr, const char *name = nullptr, unsigned int flags = 0);
    ~ImgSvcScreen() override;

    // Whether the screen has reported to its control (and takes no more keys).
    bool hasReported() const { return m_reported; }

protected:
    // Pages are built inside the screen so that its font applies from the start.
    QWidget *pageParent() const;
    void setPage(QWidget *page);
    // The picture over lines of text, which keep to the bar margins of the layout table.
    static void layOutPicture(QWidget *page, QWidget *picture, std::initializer_list<QLabel *> lines);

    // Posts result to ctl and settles; from then on no key reaches the subclass.
    void report(ImgSvcCtlInterface *ctl, int result);
    // After the report the screen waits to be closed: no soft keys.
    virtual void settle();

    // Until the report: a key other than the soft keys (false leaves it to
    // the parent), and the soft keys.
    virtual bool keypadKey(QKeyEvent *event) = 0;
    virtual void leftSoftKey() = 0;
    virtual void rightSoftKey() = 0;
    // Step of a five-way press: smallStep when fresh, growing towards largeStep
    // while the key repeats. A held key starts with a press that is no repeat.
    int heldStep(const QKeyEvent *event, int smallStep, int largeStep);

    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private slots:
    void leftPressed();
    void rightPressed();

private:
    ImgSvcLayoutWidget *m_content;
    int m_repeats = 0;
    bool m_reported = false;
};
