#include "ImgSvcEffectDlg.h"
#include "ImgSvcEffectCtl.h"
#include "ImgSvcKeys.h"
#include "ImgSvcLayoutWidget.h"
#include "ImgSvcPictureView.h"
#include "MMEffectCommand.h"
#include "MMImageDecoder.h"
#include "MMImageSource.h"
#include "ZGlobal.h"
#include "ZSoftKey.h"
#include <QCoreApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <QVBoxLayout>

static constexpr int FirstEffect = MMEffectCommand::EFFECT_GRAYSCALE;

ImgSvcEffectDlg::ImgSvcEffectDlg(ImgSvcEffectCtl *ctl, QWidget *parent) : ZKbMainWidget(parent), m_ctl(ctl)
{
    setMainWidgetTitle(tr("Style"));

    // Built inside the screen so that the screen's font applies from the start.
    auto *content = new ImgSvcLayoutWidget(this);
    auto *page = new QWidget(content);
    m_preview = new ImgSvcPictureView(page);
    m_list = new QListWidget(page);
    m_list->setFocusPolicy(Qt::NoFocus); // the dialog moves the selection itself
    m_list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (int id = FirstEffect; id < MMEffectCommand::EFFECT_COUNT; ++id)
        m_list->addItem(QCoreApplication::translate("MMEffectCommand", MMEffectCommand::effectName(id)));
    // Every style in view at once, the preview takes the rest.
    m_list->setFixedHeight(m_list->sizeHintForRow(0) * m_list->count() + 2 * m_list->frameWidth());
    auto *box = new QVBoxLayout(page);
    box->setContentsMargins(0, 0, 0, 0);
    box->addWidget(m_preview, 1);
    box->addWidget(m_list);

    content->setService(page);
    setContentWidget(content);

    ZSoftKey *keys = getSoftKey();
    keys->setText(ZSoftKey::LEFT, tr("Select"));
    keys->setClickedSlot(ZSoftKey::LEFT, this, SLOT(slotSelect()));
    keys->setText(ZSoftKey::RIGHT, tr("Back"));
    keys->setClickedSlot(ZSoftKey::RIGHT, this, SLOT(slotBack()));

    if (const MMImageSource *in = m_ctl->getInput()) {
        const QSize screen = ZGlobal::screenSize();
        m_original = MMImageDecoder::decodeFitting(QString::fromStdString(in->getFileName()),
                                                   QSize(screen.width(), screen.height() / 2));
    }
    const int chosen = m_ctl->getEffect();
    const bool known = chosen >= FirstEffect && chosen < MMEffectCommand::EFFECT_COUNT;
    m_list->setCurrentRow(known ? chosen - FirstEffect : 0);
    showPreview();
}

ImgSvcEffectDlg::~ImgSvcEffectDlg() = default;

int ImgSvcEffectDlg::currentEffect() const
{
    return FirstEffect + m_list->currentRow();
}

QImage ImgSvcEffectDlg::previewImage() const
{
    return m_preview->picture();
}

void ImgSvcEffectDlg::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (ImgSvcKeys::isSoftKey(key)) {
        ZKbMainWidget::keyPressEvent(event);
    } else if (ImgSvcKeys::isSelect(key)) {
        if (!event->isAutoRepeat())
            slotSelect();
    } else if (key == Qt::Key_Up || key == Qt::Key_Down) {
        const int row = qBound(0, m_list->currentRow() + (key == Qt::Key_Up ? -1 : 1), m_list->count() - 1);
        if (row != m_list->currentRow()) {
            m_list->setCurrentRow(row);
            showPreview();
        }
    } else {
        event->ignore();
    }
}

void ImgSvcEffectDlg::showEvent(QShowEvent *event)
{
    ZKbMainWidget::showEvent(event);
    setFocus();
}

void ImgSvcEffectDlg::slotSelect()
{
    if (m_reported)
        return;
    m_ctl->setEffect(currentEffect());
    finish(0);
}

void ImgSvcEffectDlg::slotBack()
{
    finish(1);
}

void ImgSvcEffectDlg::showPreview()
{
    const int id = currentEffect();
    auto it = m_styled.find(id);
    if (it == m_styled.end()) {
        QImage styled = m_original;
        MMEffectCommand effect;
        effect.setEffect(id);
        if (!styled.isNull())
            effect.apply(styled);
        it = m_styled.insert(id, styled);
    }
    m_preview->setPicture(*it);
}

void ImgSvcEffectDlg::finish(int result)
{
    if (m_reported)
        return;
    m_reported = true;
    m_ctl->postResult(result);
    close(true);
}
