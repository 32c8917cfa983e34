#pragma once
#include <QWidget>

class QLabel;
class ZSoftKey;

// A full-screen handset window: title bar, content widget, soft-key bar,
// laid out from ZGlobal's rectangles. No window decorations, no mouse needed.
class ZMainWidget : public QWidget
{
    Q_OBJECT
public:
    explicit ZMainWidget(QWidget *parent = nullptr, const char *name = nullptr, unsigned int flags = 0);
    ~ZMainWidget() override;

    void setMainWidgetTitle(const QString &title);
    QString mainWidgetTitle() const;
    void setContentWidget(QWidget *content);
    QWidget *getContentWidget() const;
    // The soft-key bar; made on the first call when create is true.
    ZSoftKey *getSoftKey(bool create = true);

    using QWidget::close;
    // Hides the window; with alsoDelete the object deletes itself later.
    bool close(bool alsoDelete);
    // The full-screen window shown last that is still visible, if any:
    // what a notice without an owner belongs over.
    static ZMainWidget *topWindow();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void relayout();
    QLabel *m_title = nullptr;
    QString m_titleText; // the label shows it elided
    QWidget *m_content = nullptr;
    ZSoftKey *m_softKey = nullptr;
};
