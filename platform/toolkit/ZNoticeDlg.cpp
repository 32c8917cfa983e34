#include "ZNoticeDlg.h"
#include <QApplication>

ZNoticeDlg::ZNoticeDlg(int type, int timeMs, const QString &title, const QString &text, QWidget *parent,
                       const char *name, bool modal, unsigned int flags)
    : ZPopup(parent, name, modal, flags)
    , m_type(type)
{
    QString heading = title;
    if (heading.isEmpty()) {
        switch (type) {
        case Error:
            heading = tr("TXT_RID_NOTICE_ERROR", "Error");
            break;
        case Warning:
            heading = tr("TXT_RID_NOTICE_WARNING", "Warning");
            break;
        default:
            heading = tr("TXT_RID_NOTICE_INFORMATION", "Information");
            break;
        }
    }
    setTitle(heading);
    setText(text);
    if (type == Error)
        setTitleIcon(QStringLiteral("error_pop"));
    setTimeout(timeMs);
}

ZNoticeDlg::~ZNoticeDlg() = default;

ZNoticeDlg *ZNoticeDlg::information(const QString &text, const QString &title, const QString &extra1,
                                    const QString &extra2, const QObject *receiver, const char *member)
{
    QString heading = title;
    for (const QString &alternative : {extra1, extra2}) {
        if (heading.isEmpty())
            heading = alternative;
    }
    // Not the child of a popup: one being dismissed may still be the active
    // window, and would take this notice down with it.
    QWidget *owner = QApplication::activeWindow();
    while (qobject_cast<ZPopup *>(owner))
        owner = owner->parentWidget() ? owner->parentWidget()->window() : nullptr;
    auto *notice = new ZNoticeDlg(Information, 0, heading, text, owner);
    // dismissed() fires once per showing and the notice is gone afterwards,
    // so the member runs exactly once.
    if (receiver && member)
        connect(notice, SIGNAL(dismissed()), receiver, member);
    connect(notice, &ZPopup::dismissed, notice, &QObject::deleteLater);
    notice->open();
    return notice;
}
