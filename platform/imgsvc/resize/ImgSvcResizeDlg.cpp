#include "ImgSvcResizeDlg.h"
#include "ImgSvcResizeCtl.h"
#include "VOUtility.h"
#include "ZGlobal.h"
#include "ZSoftKey.h"
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

ImgSvcResizeDlg::ImgSvcResizeDlg(ImgSvcResizeCtl *ctl, const QSize &inputSize, QWidget *parent)
    : ImgSvcListDlg(ctl, tr("Resize"), parent), m_ctl(ctl), m_choices(sizeChoices(inputSize))
{
    column()->addWidget(new QLabel(tr("Size now: %1 x %2").arg(inputSize.width()).arg(inputSize.height()), page()));
    column()->addWidget(list(), 1);
    for (const QSize &s : m_choices)
        list()->addItem(tr("%1 x %2").arg(s.width()).arg(s.height()));
    if (m_choices.isEmpty()) {
        auto *note = new QLabel(tr("The picture is too small to be made smaller."), page());
        note->setWordWrap(true);
        column()->addWidget(note);
    } else {
        list()->setCurrentRow(0);
    }
    getSoftKey()->setButtonEnable(ZSoftKey::LEFT, !m_choices.isEmpty());
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
    return list()->currentRow();
}

bool ImgSvcResizeDlg::take(int row)
{
    if (row < 0 || row >= m_choices.size())
        return false;
    m_ctl->setTargetSize(m_choices.at(row));
    return true;
}
