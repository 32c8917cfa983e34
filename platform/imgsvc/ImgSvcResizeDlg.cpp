#include "ImgSvcResizeDlg.h"
#include "ImgSvcKeys.h"
#include "ImgSvcLayoutWidget.h"
#include "ImgSvcResizeCtl.h"
#include "VOUtility.h"
#include "ZGlobal.h"
#include "ZSoftKey.h"
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

ImgSvcResizeDlg::ImgSvcResizeDlg(ImgSvcResizeCtl *ctl, const QSize &inputSize, QWidget *parent)
    : ZKbMainWidget(parent), m_ctl(ctl), m_choices(sizeChoices(inputSize))
{
    setMainWidgetTitle(tr("Resize"));

    // Built inside the screen so that the screen's font applies from the start.
    auto *content = new ImgSvcLayoutWidget(this);
    auto *page = new QWidget(content);
    auto *current = new QLabel(tr("Size now: %1 x %2").arg(inputSize.width()).arg(inputSize.height()), page);
    m_list = new QListWidget(page);
    m_list->setFocusPolicy(Qt::NoFocus); // the dialog moves the selection itself
    for (const QSize &s : m_choices)
        m_list->addItem(tr("%1 x %2").arg(s.width()).arg(s.height()));
    auto *box = new QVBoxLayout(page);
    box->setContentsMargins(0, 0, 0, 0);
    box->addWidget(current);
    box->addWidget(m_list, 1);
    if (m_choices.isEmpty()) {
        auto *note = new QLabel(tr("The picture is too small to be made smaller."), page);
        note->setWordWrap(true);
        box->addWidget(note);
    } else {
        m_list->setCurrentRow(0);
    }

    content->setService(page);
    setContentWidget(content);

    ZSoftKey *keys = getSoftKey();
    keys->setText(ZSoftKey::LEFT, tr("Select"));
    keys->setClickedSlot(ZSoftKey::LEFT, this, SLOT(slotSelect()));
    keys->setButtonEnable(ZSoftKey::LEFT, !m_choices.isEmpty());
    keys->setText(ZSoftKey::RIGHT, tr("Back"));
    keys->setClickedSlot(ZSoftKey::RIGHT, this, SLOT(slotBack()));
}

ImgSvcResizeDlg::~ImgSvcResizeDlg() = default;

QList<QSize> ImgSvcResizeDlg::sizeChoices(const QSize &inputSize)
{
    QList<QSize> out;
    const int w = inputSize.width(), h = inputSize.height();
    if (w <= 0 || h <= 0)
        return out;
    auto offer = [&](QSize s) {
        if (s.width() >= 1 && s.height() >= 1 && s.width() < w && s.height() < h && !out.contains(s))
            out.append(s);
    };
    for (int percent : {75, 50, 25})
        offer(QSize(qMax(1, int(std::lround(w * percent / 100.0))), qMax(1, int(std::lround(h * percent / 100.0)))));

    const QSize screen = ZGlobal::screenSize();
    for (QSize bound : {QSize(1280, 960), QSize(640, 480), QSize(320, 240), screen}) {
        if ((h > w) != (bound.height() > bound.width()))
            bound.transpose();
        int fw = w, fh = h;
        VOUtility::fitScreen(fw, fh, bound.width(), bound.height());
        offer(QSize(fw, fh));
    }
    std::stable_sort(out.begin(), out.end(), [](const QSize &a, const QSize &b) { return a.width() * qint64(a.height()) > b.width() * qint64(b.height()); });
    return out;
}

int ImgSvcResizeDlg::currentIndex() const
{
    return m_list->currentRow();
}

void ImgSvcResizeDlg::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (ImgSvcKeys::isSoftKey(key)) {
        ZKbMainWidget::keyPressEvent(event);
    } else if (ImgSvcKeys::isSelect(key)) {
        if (!event->isAutoRepeat())
            slotSelect();
    } else if ((key == Qt::Key_Up || key == Qt::Key_Down) && !m_choices.isEmpty()) {
        const int row = qBound(0, m_list->currentRow() + (key == Qt::Key_Up ? -1 : 1), int(m_choices.size()) - 1);
        m_list->setCurrentRow(row);
    } else {
        event->ignore();
    }
}

void ImgSvcResizeDlg::showEvent(QShowEvent *event)
{
    ZKbMainWidget::showEvent(event);
    setFocus();
}

void ImgSvcResizeDlg::slotSelect()
{
    const int row = m_list->currentRow();
    if (m_reported || row < 0 || row >= m_choices.size())
        return;
    m_ctl->setTargetSize(m_choices.at(row));
    finish(0);
}

void ImgSvcResizeDlg::slotBack()
{
    finish(1);
}

void ImgSvcResizeDlg::finish(int result)
{
    if (m_reported)
        return;
    m_reported = true;
    m_ctl->postResult(result);
    close(true);
}
