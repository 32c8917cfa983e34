#pragma once
#include <QWidget>

// The content widget of an image screen: lays out one service's view inside
// its padding.
class ImgSvcLayoutWidget : public QWidget
{
    Q_OBJECT
public:
    ImgSvcLayoutWidget(QWidget *parent = nullptr, const char *name = nullptr, unsigned int flags = 0);
    ~ImgSvcLayoutWidget() override;

    void setPadding(int left, int top, int right, int bottom);
    QMargins padding() const;
    void setService(QWidget *service);
    QWidget *service() const { return m_service; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void relayout();
    QWidget *m_service = nullptr;
    int m_left = 0, m_top = 0, m_right = 0, m_bottom = 0;
};
