#include "ImgSvcAdjustDlg.h"
#include "ImgSvcEffectCtl.h"
#include "ImgSvcKeys.h"
#include "ImgSvcPictureView.h"
#include "MMEffectCommand.h"
#include <QKeyEvent>
#include <QListWidget>
#include <QVBoxLayout>

namespace {
constexpr int kStep = 5;
constexpr int kLargeStep = 20;
constexpr int kLimit = 100;

const char *const kNames[] = {
    QT_TRANSLATE_NOOP("ImgSvcAdjustDlg", "Brightness"),
    QT_TRANSLATE_NOOP("ImgSvcAdjustDlg", "Contrast"),
    QT_TRANSLATE_NOOP("ImgSvcAdjustDlg", "Saturation"),
};

int &valueOf(MMPixelFilters::Adjustment &a, int row)
{
    return row == 0 ? a.brightness : (row == 1 ? a.contrast : a.saturation);
}
} // namespace

ImgSvcAdjustDlg::ImgSvcAdjustDlg(ImgSvcEffectCtl *ctl, const QImage &picture, QWidget *parent)
    : ImgSvcListDlg(ctl, tr("Adjust"), parent), m_ctl(ctl), m_original(picture)
{
    m_preview = new ImgSvcPictureView(page());
    QListWidget *rows = list();
    rows->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (int i = 0; i < 3; ++i)
        rows->addItem(QString());
    rows->setFixedHeight(rows->sizeHintForRow(0) * rows->count() + 2 * rows->frameWidth());
    column()->addWidget(m_preview, 1);
    column()->addWidget(rows);
    rows->setCurrentRow(0);
    showValues();
}

ImgSvcAdjustDlg::~ImgSvcAdjustDlg() = default;

QImage ImgSvcAdjustDlg::previewImage() const
{
    return m_preview->picture();
}

bool ImgSvcAdjustDlg::keypadKey(QKeyEvent *event)
{
    const int dx = ImgSvcKeys::direction(event->key()).x();
    if (dx == 0)
        return ImgSvcListDlg::keypadKey(event);
    int &value = valueOf(m_adjustment, list()->currentRow());
    value = qBound(-kLimit, value + dx * heldStep(event, kStep, kLargeStep), kLimit);
    showValues();
    return true;
}

void ImgSvcAdjustDlg::showValues()
{
    for (int row = 0; row < list()->count(); ++row) {
        const int value = valueOf(m_adjustment, row);
        const QString number = value > 0 ? QStringLiteral("+%1").arg(value) : QString::number(value);
        list()->item(row)->setText(tr(kNames[row]) + QStringLiteral("   ") + number);
    }
    QImage shown = m_original;
    MMEffectCommand effect;
    effect.setEffect(MMEffectCommand::EFFECT_ADJUST);
    effect.setAdjustment(m_adjustment);
    if (!shown.isNull())
        effect.apply(shown);
    m_preview->setPicture(shown);
}

bool ImgSvcAdjustDlg::take(int)
{
    m_ctl->setEffect(MMEffectCommand::EFFECT_ADJUST);
    m_ctl->setAdjustment(m_adjustment);
    return true;
}

void ImgSvcAdjustDlg::settle()
{
    ImgSvcListDlg::settle();
    emit applied();
}

void ImgSvcAdjustDlg::rightSoftKey()
{
    emit leftUnchanged();
    close(true);
}
