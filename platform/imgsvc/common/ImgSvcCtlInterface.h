#pragma once
#include <QObject>
#include <QPointer>
#include <QSize>

class MMImageSource;

// The control of a sub-editor: the image it works on (input) and the image it
// writes (output), both borrowed, and the object its ImgSvcCtlEvent goes to.
class ImgSvcCtlInterface : public QObject
{
    Q_OBJECT
public:
    ImgSvcCtlInterface(int eventType, QObject *parent = nullptr);
    ~ImgSvcCtlInterface() override;

    void setInput(MMImageSource *source);
    void setOutput(MMImageSource *source);
    MMImageSource *getInput() const { return m_input; }
    MMImageSource *getOutput() const { return m_output; }

    void setEventReceiver(QObject *receiver);
    QObject *getEventReceiver() const { return m_receiver; }

    // Size of the input image (upright), read from its header; 0 x 0 when
    // there is no readable input.
    QSize getInputSize() const;

    // Reloads whatever the control shows from its input.
    virtual void refresh(bool reload);

    int eventType() const { return m_eventType; }
    // Posts ImgSvcCtlEvent(eventType(), result) to the receiver, if any. A
    // confirmed control (result 0) first writes what it made into its output,
    // so that the next screen working on that image shows the result.
    void postResult(int result);

signals:
    void inputChanged();

protected:
    // The control's own edit, from input into output; nothing by default.
    virtual void writeResult() {}

private:
    int m_eventType;
    MMImageSource *m_input = nullptr;
    MMImageSource *m_output = nullptr;
    QPointer<QObject> m_receiver;
};
