#pragma once
#include "ZPopup.h"

// A notice: a ZPopup with a text, a kind and a time-out.
class ZNoticeDlg : public ZPopup
{
    Q_OBJECT
public:
    enum Type { Information = 0, Error = 1, Warning = 2 };

    ZNoticeDlg(int type, int timeMs, const QString &title, const QString &text, QWidget *parent = nullptr,
               const char *name = nullptr, bool modal = true, unsigned int flags = 0);
    ~ZNoticeDlg() override;

    int type() const { return m_type; }

    // Shows an information notice without blocking the caller; when the user
    // dismisses it, member ("1slot()") of receiver is invoked exactly once and
    // the notice deletes itself. The three extra texts are optional titles.
    static ZNoticeDlg *information(const QString &text, const QString &title = QString(),
                                   const QString &extra1 = QString(), const QString &extra2 = QString(),
                                   const QObject *receiver = nullptr, const char *member = nullptr);

private:
    int m_type;
};
