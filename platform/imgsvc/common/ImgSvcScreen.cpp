#include "ImgSvcScreen.h"
#include "ImgSvcCtlInterface.h"
#include "ImgSvcKeys.h"
#include "ImgSvcLayout.h"
#include "ImgSvcLayoutWidget.h"
#include "ZSoftKey.h"
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

ImgSvcScreen::ImgSvcScreen(QWidget *parent, const char *name, unsigned int flags)
    : ZKbMainWidget(parent, name, flags), m_content(new ImgSvcLayoutWidget(this))
{
    setContentWidget(m_content);
    ZSoftKey *keys = getSoftKey();
    keys->setClickedSlot(ZSoftKey::LEFT, this, SLOT(leftPressed()));
    keys->setClickedSlot(ZSoftKey::RIGHT, this, SLOT(rightPressed()));
}

ImgSvcScreen::~ImgSvcScreen() = default;

QWidget *ImgSvcScreen::pageParent() const
{
    return m_content;
}

void ImgSvcScreen::setPage(QWidget *page)
{
    m_content->setService(page);
}

void ImgSvcScreen::layOutPicture(QWidget *page, QWidget *picture, std::initializer_list<QLabel *> lines)
{
    const qint16 *l = ImgSvcLayout::layout;
    auto *box = new QVBoxLayout(page);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    box->addWidget(picture, 1);
    // The gaps to the title and to the soft keys go above the first line and below the last.
    for (size_t i = 0; i < lines.size(); ++i) {
        QLabel *line = lines.begin()[i];
        line->setAlignment(Qt::AlignCenter);
        // A hint longer than the screen is wide takes a second line, not cut.
        line->setWordWrap(true);
        line->setContentsMargins(l[0], i == 0 ? l[2] : 0, l[1], i + 1 == lines.size() ? l[3] : 0);
        box->addWidget(line);
    }
}

void ImgSvcScreen::report(ImgSvcCtlInterface *ctl, int result)
{
    m_reported = true;
    ctl->postResult(result);
    settle();
}

void ImgSvcScreen::settle()
{
    getSoftKey()->setButtonEnable(ZSoftKey::LEFT, false);
    getSoftKey()->setButtonEnable(ZSoftKey::RIGHT, false);
}

int ImgSvcScreen::heldStep(const QKeyEvent *event, int smallStep, int largeStep)
{
    m_repeats = event->isAutoRepeat() ? m_repeats + 1 : 0;
    return ImgSvcKeys::repeatStep(smallStep, largeStep, m_repeats);
}

void ImgSvcScreen::keyPressEvent(QKeyEvent *event)
{
    if (ImgSvcKeys::isSoftKey(event->key()))
        ZKbMainWidget::keyPressEvent(event);
    else if (m_reported || !keypadKey(event))
        event->ignore();
}

void ImgSvcScreen::leftPressed()
{
    if (!m_reported)
        leftSoftKey();
}

void ImgSvcScreen::rightPressed()
{
    if (!m_reported)
        rightSoftKey();
}

void ImgSvcScreen::showEvent(QShowEvent *event)
{
    ZKbMainWidget::showEvent(event);
    setFocus();
}
