#pragma once
#include "ImgSvcCtlInterface.h"

// Resize control: the target size chosen in the resize dialog; it can also run
// a file-to-file resize of its input into its output.
class ImgSvcResizeCtl : public ImgSvcCtlInterface
{
    Q_OBJECT
public:
    explicit ImgSvcResizeCtl(QObject *parent = nullptr);
    ~ImgSvcResizeCtl() override;

    void setTargetSize(const QSize &size);
    QSize getTargetSize() const { return m_target; }

    // Writes the input resized to the target size into the output; returns
    // when the output has been written. 0 on success, -1 on failure.
    int process();

protected:
    void writeResult() override;

private:
    int scale();
    QSize m_target;
};
