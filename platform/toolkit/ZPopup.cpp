#include "ZPopup.h"
#include "ZGlobal.h"
#include "ZMainWidget.h"
#include "ZResourceTranslator.h"
#include "ZSkinService.h"
#include "ZSoftKey.h"
#include "ZTheme.h"
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

ZPopup::ZPopup(QWidget *parent, const char *name, bool modal, unsigned int flags)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
{
    Q_UNUSED(flags);
    ZResourceTranslator::ensureInstalled();
    if (name)
        setObjectName(QString::fromLatin1(name));
    setModal(modal);
    setFocusPolicy(Qt::StrongFocus);
    setFont(ZTheme::bodyFont());

    m_timer = new QTimer(this);
    m_timer->setSingleShot(true);
    connect(m_timer, &QTimer::timeout, this, &QDialog::reject);

    // The box is a frame filling the dialog, so that a style sheet can draw
    // its border without a paint handler.
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    auto *box = new QFrame(this);
    box->setObjectName(QStringLiteral("zPopupBox"));
    box->setStyleSheet(QStringLiteral("QFrame#zPopupBox { background: %1; border: %2px solid %3; }")
                           .arg(ZTheme::menuBackground().name())
                           .arg(qMax(1, ZTheme::scaled(1)))
                           .arg(ZTheme::frame().name()));
    outer->addWidget(box);
    auto *column = new QVBoxLayout(box);
    const int border = qMax(1, ZTheme::scaled(1));
    column->setContentsMargins(border, border, border, border);
    column->setSpacing(0);

    auto *header = new QFrame(box);
    header->setObjectName(QStringLiteral("zPopupHeader"));
    header->setStyleSheet(QStringLiteral("QFrame#zPopupHeader { background: qlineargradient(x1:0, y1:0, x2:0, y2:1,"
                                         " stop:0 %1, stop:1 %2); }")
                              .arg(ZTheme::barTop().name(), ZTheme::barBottom().name()));
    auto *headerRow = new QHBoxLayout(header);
    const int gap = ZTheme::scaled(6);
    headerRow->setContentsMargins(gap, ZTheme::scaled(3), gap, ZTheme::scaled(3));
    headerRow->setSpacing(gap);
    m_icon = new QLabel(header);
    m_icon->hide();
    m_title = new QLabel(header);
    m_title->setFont(ZTheme::titleFont());
    m_title->setStyleSheet(QStringLiteral("color: %1;").arg(ZTheme::barText().name()));
    headerRow->addWidget(m_icon);
    headerRow->addWidget(m_title, 1);
    m_header = header;
    column->addWidget(header);

    m_text = new QLabel(box);
    m_text->setWordWrap(true);
    // Set here, not inherited: a style sheet on the way down would leave the
    // text at the application's desktop size whatever the screen.
    m_text->setFont(ZTheme::bodyFont());
    m_text->setAlignment(Qt::AlignCenter);
    // The padding goes in the style sheet too: with one, contents margins
    // set on the label are not kept.
    m_text->setStyleSheet(QStringLiteral("QLabel { color: %1; padding: %2px %3px; }")
                              .arg(ZTheme::menuText().name())
                              .arg(ZTheme::scaled(10))
                              .arg(ZTheme::scaled(10)));
    column->addWidget(m_text, 1);

    m_keys = new ZSoftKey(box);
    m_keys->setText(ZSoftKey::LEFT, tr("TXT_RID_SOFTKEY_OK", "OK"));
    m_keys->setFixedHeight(QFontMetrics(ZTheme::softKeyFont()).height() + ZTheme::scaled(8));
    connect(m_keys, &ZSoftKey::leftClicked, this, &QDialog::accept);
    connect(m_keys, &ZSoftKey::rightClicked, this, &QDialog::reject);
    column->addWidget(m_keys);

    updateHeader();
}

ZPopup::~ZPopup() = default;

void ZPopup::setTitle(const QString &title)
{
    m_title->setText(title);
    updateHeader();
}

void ZPopup::setText(const QString &text)
{
    m_text->setText(text);
    if (isVisible())
        placeOnScreen();
}

QString ZPopup::text() const
{
    return m_text->text();
}

void ZPopup::setTitleIcon(const QString &resourceName)
{
    m_iconName = resourceName;
    QPixmap pm = ZSkinService::getPixmap(resourceName);
    const int side = QFontMetrics(m_title->font()).height();
    if (!pm.isNull() && pm.height() != side)
        pm = pm.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    m_icon->setPixmap(pm);
    m_icon->setVisible(!pm.isNull());
    updateHeader();
}

QString ZPopup::titleIcon() const
{
    return m_iconName;
}

void ZPopup::setTimeout(int ms)
{
    m_timeout = qMax(0, ms);
    m_timer->stop();
    if (m_timeout > 0 && isVisible())
        m_timer->start(m_timeout);
}

int ZPopup::exec()
{
    placeOnScreen();
    return QDialog::exec();
}

void ZPopup::open()
{
    placeOnScreen();
    QDialog::open();
}

void ZPopup::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Select:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Context1:
    case Qt::Key_F1:
        event->accept();
        // A key still held from the screen underneath must not dismiss it.
        if (!event->isAutoRepeat())
            accept();
        return;
    case Qt::Key_Context2:
    case Qt::Key_F2:
    case Qt::Key_Escape:
    case Qt::Key_Back:
        event->accept();
        if (!event->isAutoRepeat())
            reject();
        return;
    default:
        QDialog::keyPressEvent(event);
    }
}

// Every way out (keys, clicks, time-out, close()) ends here.
void ZPopup::done(int result)
{
    m_timer->stop();
    QDialog::done(result);
    if (!m_dismissed) {
        m_dismissed = true;
        emit dismissed();
    }
}

void ZPopup::showEvent(QShowEvent *event)
{
    m_dismissed = false;
    placeOnScreen();
    if (m_timeout > 0)
        m_timer->start(m_timeout);
    QDialog::showEvent(event);
    // Without a window manager nobody else hands the keypad to the popup.
    activateWindow();
}

// The handset screen a popup belongs over: the full-screen window of its
// owner, looking through other popups (a notice raised while a wait dialog
// is up must not be placed relative to that dialog), else the window shown
// last, else the application's own active window (a host's, before any
// handset window is up).
static QWidget *screenWindow(const QWidget *popup)
{
    QWidget *w = popup->parentWidget() ? popup->parentWidget()->window() : nullptr;
    while (w && !qobject_cast<ZMainWidget *>(w))
        w = w->parentWidget() ? w->parentWidget()->window() : nullptr;
    if (!w)
        w = ZMainWidget::topWindow();
    if (!w && QApplication::activeWindow() && !qobject_cast<ZPopup *>(QApplication::activeWindow()))
        w = QApplication::activeWindow();
    return w;
}

// Centred on the home area of the screen it belongs to, as wide as most of
// the screen and as tall as its text needs (never taller than the area).
void ZPopup::placeOnScreen()
{
    QPoint origin(0, 0);
    if (QWidget *anchor = screenWindow(this)) {
        origin = anchor->mapToGlobal(QPoint(0, 0));
    } else if (QScreen *screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->geometry();
        const QSize handset = ZGlobal::screenSize();
        origin = area.topLeft() + QPoint(qMax(0, (area.width() - handset.width()) / 2),
                                         qMax(0, (area.height() - handset.height()) / 2));
    }
    const QRect home = ZGlobal::getHomeR(false);
    const int width = qRound(home.width() * 0.88);
    const int wanted = layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : sizeHint().height();
    const int height = qBound(1, wanted, home.height() - 2 * ZTheme::scaled(4));
    const QRect box(home.left() + (home.width() - width) / 2, home.top() + (home.height() - height) / 2, width,
                    height);
    setFixedSize(box.size());
    move(origin + box.topLeft());
}

void ZPopup::setSoftKeyTexts(const QString &left, const QString &right)
{
    m_keys->setText(ZSoftKey::LEFT, left);
    m_keys->setText(ZSoftKey::RIGHT, right);
    m_keys->setVisible(!left.isEmpty() || !right.isEmpty());
    if (isVisible())
        placeOnScreen();
}

void ZPopup::updateHeader()
{
    m_header->setVisible(!m_title->text().isEmpty() || m_icon->isVisibleTo(m_header));
    if (isVisible())
        placeOnScreen();
}
