#pragma once
#include <QDialog>

class QLabel;
class QTimer;
class ZSoftKey;

// A modal popup over the home area with an optional title icon and an
// optional time-out. Select or either soft key dismisses it.
class ZPopup : public QDialog
{
    Q_OBJECT
public:
    explicit ZPopup(QWidget *parent = nullptr, const char *name = nullptr, bool modal = true, unsigned int flags = 0);
    ~ZPopup() override;

    void setTitle(const QString &title);
    void setText(const QString &text);
    QString text() const;
    void setTitleIcon(const QString &resourceName);
    QString titleIcon() const;
    void setTimeout(int ms); // 0: no time-out
    // What the two soft keys of the popup read (left accepts, right
    // rejects); both empty hides the bar, for a popup that only says "wait".
    void setSoftKeyTexts(const QString &left, const QString &right);


    int exec() override;
    void open() override;

signals:
    void dismissed(); // once, when the popup closes for any reason

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void done(int result) override;
    void showEvent(QShowEvent *event) override;

private:
    void placeOnScreen();
    void updateHeader();

    QWidget *m_header = nullptr;
    ZSoftKey *m_keys = nullptr;
    QTimer *m_timer = nullptr;
    QLabel *m_icon = nullptr;
    QLabel *m_title = nullptr;
    QLabel *m_text = nullptr;
    QString m_iconName;
    int m_timeout = 0;
    bool m_dismissed = false;
};
