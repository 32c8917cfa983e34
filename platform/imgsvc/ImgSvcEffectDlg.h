#pragma once
#include "ZKbMainWidget.h"
#include <QImage>
#include <QMap>

class ImgSvcEffectCtl;
class ImgSvcPictureView;
class QListWidget;

// The full-screen style list with a live preview: the control's input decoded
// small once, the selected style applied to that copy. Up/Down move, Select
// or the left soft key takes the style into the control (result 0), the right
// soft key leaves (result 1); either way the dialog then closes and deletes
// itself.
class ImgSvcEffectDlg : public ZKbMainWidget
{
    Q_OBJECT
public:
    explicit ImgSvcEffectDlg(ImgSvcEffectCtl *ctl, QWidget *parent = nullptr);
    ~ImgSvcEffectDlg() override;

    // The MMEffectCommand id under the cursor.
    int currentEffect() const;
    QImage previewImage() const;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private slots:
    void slotSelect();
    void slotBack();

private:
    void showPreview();
    void finish(int result);

    ImgSvcEffectCtl *m_ctl; // the manager's; the manager deletes this dialog first
    ImgSvcPictureView *m_preview;
    QListWidget *m_list;
    QImage m_original;
    QMap<int, QImage> m_styled; // per effect id: moving back and forth stays instant
    bool m_reported = false;
};
