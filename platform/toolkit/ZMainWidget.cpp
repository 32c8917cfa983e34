#include "ZMainWidget.h"

#include <QHideEvent>
#include <QPointer>
#include <QShowEvent>
#include "ZGlobal.h"
#include "ZResourceTranslator.h"
#include "ZSoftKey.h"
#include "ZTheme.h"
#include <QLabel>

// Always a window of its own, even with a parent: a handset screen replaces
// what is shown rather than sitting inside it. The parent only ties lifetimes.
ZMainWidget::ZMainWidget(QWidget *parent, const char *name, unsigned int flags)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint)
{
    Q_UNUSED(flags); // the handset's window flags have no Qt counterpart
    ZResourceTranslator::ensureInstalled();
    if (name)
        setObjectName(QString::fromLatin1(name));
    setFixedSize(ZGlobal::screenSize());

    QPalette pal = palette();
    pal.setColor(QPalette::Window, ZTheme::window());
    pal.setColor(QPalette::WindowText, ZTheme::barText());
    setPalette(pal);
    setAutoFillBackground(true);
    setFont(ZTheme::bodyFont());

    m_title = new QLabel(this);
    m_title->setFont(ZTheme::titleFont());
    m_title->setStyleSheet(QStringLiteral("QLabel { color: %1; padding-left: %2px; padding-right: %2px;"
                                          " border-bottom: 1px solid %3;"
                                          " background: qlineargradient(x1:0, y1:0, x2:0, y2:1,"
                                          " stop:0 %4, stop:1 %5); }")
                               .arg(ZTheme::barText().name())
                               .arg(ZTheme::scaled(6))
                               .arg(ZTheme::frame().name(), ZTheme::barTop().name(), ZTheme::barBottom().name()));
    relayout();
}

ZMainWidget::~ZMainWidget()
{
    // Hand the keypad on now: once this part is gone, hiding no longer
    // reaches our hideEvent.
    if (isVisible())
        hide();
}

void ZMainWidget::setMainWidgetTitle(const QString &title)
{
    m_titleText = title;
    setWindowTitle(title);
    relayout();
}

QString ZMainWidget::mainWidgetTitle() const
{
    return m_titleText;
}

void ZMainWidget::setContentWidget(QWidget *content)
{
    if (content == m_content)
        return;
    // The previous content stays a child (and is deleted with us); it is only
    // taken off the screen.
    if (m_content)
        m_content->hide();
    m_content = content;
    if (m_content) {
        if (m_content->parentWidget() != this)
            m_content->setParent(this);
        m_content->show();
    }
    relayout();
}

QWidget *ZMainWidget::getContentWidget() const
{
    return m_content;
}

ZSoftKey *ZMainWidget::getSoftKey(bool create)
{
    if (!m_softKey && create) {
        m_softKey = new ZSoftKey(this);
        m_softKey->show();
        relayout();
    }
    return m_softKey;
}

bool ZMainWidget::close(bool alsoDelete)
{
    const bool closed = QWidget::close();
    if (closed && alsoDelete)
        deleteLater();
    return closed;
}

namespace {
// Full-screen windows in the order they were shown, newest last. Like the
// handset's window manager, the toolkit gives the keypad back to the window
// below when the top one goes away; without it nothing would have the keys.
QList<QPointer<ZMainWidget>> &windowStack()
{
    static QList<QPointer<ZMainWidget>> stack;
    return stack;
}
} // namespace

ZMainWidget *ZMainWidget::topWindow()
{
    const QList<QPointer<ZMainWidget>> &stack = windowStack();
    for (int i = stack.size() - 1; i >= 0; --i) {
        if (stack.at(i) && stack.at(i)->isVisible())
            return stack.at(i);
    }
    return nullptr;
}

void ZMainWidget::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    QList<QPointer<ZMainWidget>> &stack = windowStack();
    stack.removeAll(QPointer<ZMainWidget>(this));
    stack.append(this);
}

void ZMainWidget::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (event->spontaneous())
        return;
    QList<QPointer<ZMainWidget>> &stack = windowStack();
    const bool wasTop = !stack.isEmpty() && stack.constLast() == this;
    stack.removeAll(QPointer<ZMainWidget>(this));
    stack.removeAll(QPointer<ZMainWidget>());
    if (!wasTop)
        return;
    for (int i = stack.size() - 1; i >= 0; --i) {
        ZMainWidget *below = stack.at(i);
        if (below->isVisible()) {
            below->activateWindow();
            below->setFocus();
            break;
        }
    }
}

void ZMainWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    relayout();
}

void ZMainWidget::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange)
        relayout();
}

void ZMainWidget::relayout()
{
    const QRect title = ZGlobal::getTitleR();
    const QRect keys = ZGlobal::getCstR();
    m_title->setGeometry(title);
    // At the start of the bar in the screen's direction, whatever the
    // title's own script: a Latin file name in Arabic screens sits right.
    m_title->setAlignment((isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute | Qt::AlignVCenter);
    const int room = title.width() - 2 * ZTheme::scaled(6);
    m_title->setText(m_title->fontMetrics().elidedText(m_titleText, Qt::ElideRight, room));
    m_title->raise();

    QRect content = ZGlobal::getHomeR(false);
    if (m_softKey) {
        m_softKey->setGeometry(keys);
        m_softKey->raise();
        content.setBottom(keys.top() - 1);
    }
    if (m_content)
        m_content->setGeometry(content);
}
