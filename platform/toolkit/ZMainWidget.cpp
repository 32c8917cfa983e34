#include "ZMainWidget.h"
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
    m_title->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_title->setStyleSheet(QStringLiteral("QLabel { color: %1; padding-left: %2px; padding-right: %2px;"
                                          " border-bottom: 1px solid %3;"
                                          " background: qlineargradient(x1:0, y1:0, x2:0, y2:1,"
                                          " stop:0 %4, stop:1 %5); }")
                               .arg(ZTheme::barText().name())
                               .arg(ZTheme::scaled(6))
                               .arg(ZTheme::frame().name(), ZTheme::barTop().name(), ZTheme::barBottom().name()));
    relayout();
}

ZMainWidget::~ZMainWidget() = default;

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

void ZMainWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    relayout();
}

void ZMainWidget::relayout()
{
    const QRect title = ZGlobal::getTitleR();
    const QRect keys = ZGlobal::getCstR();
    m_title->setGeometry(title);
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
