#include "ImgSvcListDlg.h"
#include "ImgSvcCtlInterface.h"
#include "ImgSvcKeys.h"
#include "ZSoftKey.h"
#include <QKeyEvent>
#include <QListWidget>
#include <QVBoxLayout>

ImgSvcListDlg::ImgSvcListDlg(ImgSvcCtlInterface *ctl, const QString &title, QWidget *parent)
    : ImgSvcScreen(parent), m_ctl(ctl), m_page(new QWidget(pageParent()))
{
    setMainWidgetTitle(title);
    m_list = new QListWidget(m_page);
    m_list->setFocusPolicy(Qt::NoFocus); // the dialog moves the selection itself
    m_column = new QVBoxLayout(m_page);
    m_column->setContentsMargins(0, 0, 0, 0);
    setPage(m_page);
    getSoftKey()->setText(ZSoftKey::LEFT, tr("Select"));
    getSoftKey()->setText(ZSoftKey::RIGHT, tr("Back"));
}

ImgSvcListDlg::~ImgSvcListDlg() = default;

bool ImgSvcListDlg::keypadKey(QKeyEvent *event)
{
    if (ImgSvcKeys::isSelect(event->key())) {
        if (!event->isAutoRepeat())
            leftSoftKey();
        return true;
    }
    const int dy = ImgSvcKeys::direction(event->key()).y();
    if (dy == 0 || m_list->count() == 0)
        return false;
    m_list->setCurrentRow(qBound(0, m_list->currentRow() + dy, m_list->count() - 1));
    return true;
}

void ImgSvcListDlg::settle()
{
    close(true);
}

void ImgSvcListDlg::leftSoftKey()
{
    if (take(m_list->currentRow()))
        report(m_ctl, 0);
}

void ImgSvcListDlg::rightSoftKey()
{
    report(m_ctl, 1);
}
