#include "ImgSvcEffectDlg.h"
#include "ImgSvcAdjustDlg.h"
#include "ImgSvcEffectCtl.h"
#include "ImgSvcPictureView.h"
#include "MMEffectCommand.h"
#include "MMImageDecoder.h"
#include "MMImageSource.h"
#include "ZGlobal.h"
#include <QCoreApplication>
#include <QListWidget>
#include <QVBoxLayout>

static constexpr int FirstEffect = MMEffectCommand::EFFECT_GRAYSCALE;

ImgSvcEffectDlg::ImgSvcEffectDlg(ImgSvcEffectCtl *ctl, QWidget *parent) : ImgSvcListDlg(ctl, tr("Style"), parent), m_ctl(ctl)
{
    m_preview = new ImgSvcPictureView(page());
    QListWidget *styles = list();
    styles->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (int id = FirstEffect; id < MMEffectCommand::EFFECT_COUNT; ++id)
        styles->addItem(QCoreApplication::translate("MMEffectCommand", MMEffectCommand::effectName(id)));
    // Every style in view at once, the preview takes the rest.
    styles->setFixedHeight(styles->sizeHintForRow(0) * styles->count() + 2 * styles->frameWidth());
    column()->addWidget(m_preview, 1);
    column()->addWidget(styles);

    if (const MMImageSource *in = m_ctl->getInput()) {
        const QSize screen = ZGlobal::screenSize();
        m_original = MMImageDecoder::decodeFitting(QString::fromStdString(in->getFileName()),
                                                   QSize(screen.width(), screen.height() / 2));
    }
    const int chosen = m_ctl->getEffect();
    const bool known = chosen >= FirstEffect && chosen < MMEffectCommand::EFFECT_COUNT;
    styles->setCurrentRow(known ? chosen - FirstEffect : 0);
    showPreview();
    connect(styles, &QListWidget::currentRowChanged, this, &ImgSvcEffectDlg::showPreview);
}

ImgSvcEffectDlg::~ImgSvcEffectDlg()
{
    // It points at the same control.
    delete m_adjust.data();
}

int ImgSvcEffectDlg::currentEffect() const
{
    return FirstEffect + list()->currentRow();
}

QImage ImgSvcEffectDlg::previewImage() const
{
    return m_preview->picture();
}

bool ImgSvcEffectDlg::take(int row)
{
    const int id = FirstEffect + row;
    if (id == MMEffectCommand::EFFECT_ADJUST) {
        openAdjust();
        return false;
    }
    if (id == MMEffectCommand::EFFECT_AUTO_FIX)
        m_ctl->setLevels(autoFixLevels());
    m_ctl->setEffect(id);
    return true;
}

ImgSvcAdjustDlg *ImgSvcEffectDlg::adjustScreen() const
{
    return m_adjust.data();
}

void ImgSvcEffectDlg::openAdjust()
{
    delete m_adjust.data();
    m_adjust = new ImgSvcAdjustDlg(m_ctl, m_original);
    connect(m_adjust, &ImgSvcAdjustDlg::applied, this, &ImgSvcEffectDlg::settle);
    connect(m_adjust, &ImgSvcAdjustDlg::leftUnchanged, this, [this] {
        activateWindow();
        setFocus();
    });
    m_adjust->show();
    m_adjust->activateWindow();
}

const MMPixelFilters::Levels &ImgSvcEffectDlg::autoFixLevels()
{
    if (!m_levels) {
        const MMImageSource *in = m_ctl->getInput();
        const QImage analysed = in ? MMImageDecoder::decodeFitting(QString::fromStdString(in->getFileName()),
                                                                   QSize(256, 256))
                                   : QImage();
        m_levels = analysed.isNull() ? MMPixelFilters::Levels() : MMPixelFilters::measureLevels(analysed);
    }
    return *m_levels;
}

void ImgSvcEffectDlg::showPreview()
{
    const int id = currentEffect();
    auto it = m_styled.find(id);
    if (it == m_styled.end()) {
        QImage styled = m_original;
        MMEffectCommand effect;
        effect.setEffect(id);
        if (id == MMEffectCommand::EFFECT_AUTO_FIX)
            effect.setLevels(autoFixLevels());
        if (!styled.isNull())
            effect.apply(styled);
        it = m_styled.insert(id, styled);
    }
    m_preview->setPicture(*it);
}
