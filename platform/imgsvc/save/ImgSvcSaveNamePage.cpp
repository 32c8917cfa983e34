#include "ImgSvcSaveNamePage.h"
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

ImgSvcSaveNamePage::ImgSvcSaveNamePage(QWidget *parent) : QWidget(parent)
{
    auto *label = new QLabel(tr("File name:"), this);
    m_edit = new QLineEdit(this);
    m_note = new QLabel(this);
    m_note->setWordWrap(true);
    m_note->hide();
    auto *hint = new QLabel(tr("Saved in the folder of the original."), this);
    hint->setWordWrap(true);
    label->setBuddy(m_edit);
    auto *box = new QVBoxLayout(this);
    box->addWidget(label);
    box->addWidget(m_edit);
    box->addWidget(m_note);
    box->addWidget(hint);
    box->addStretch(1);
    // The note is about the name it was given for.
    connect(m_edit, &QLineEdit::textEdited, this, [this] { setNote(QString()); });
}

ImgSvcSaveNamePage::~ImgSvcSaveNamePage() = default;

void ImgSvcSaveNamePage::offerNameFor(const QString &original)
{
    const QString name = suggestedName(original);
    setNote(QString());
    m_edit->setText(name);
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    m_edit->setSelection(0, dot > 0 ? dot : int(name.size()));
}

QString ImgSvcSaveNamePage::enteredName() const
{
    return m_edit->text().trimmed();
}

QString ImgSvcSaveNamePage::chosenPath(const QString &original)
{
    const QString name = enteredName();
    if (name.isEmpty())
        return QString();
    const QString path = resolve(name, original);
    // Checked as typed too: "album" would become "album.jpg" beside a folder
    // the user may have meant to save into.
    if (name.endsWith(QLatin1Char('/')) || QFileInfo(beside(name, original)).isDir() || QFileInfo(path).isDir()) {
        setNote(tr("That is a folder. Enter a file name."));
        return QString();
    }
    return path;
}

QString ImgSvcSaveNamePage::note() const
{
    return m_note->isHidden() ? QString() : m_note->text();
}

QString ImgSvcSaveNamePage::suggestedName(const QString &original)
{
    if (original.isEmpty())
        return QString();
    const QFileInfo fi(original);
    const QString suffix = fi.suffix();
    return fi.completeBaseName() + QStringLiteral("_edited") + (suffix.isEmpty() ? QString() : QLatin1Char('.') + suffix);
}

QString ImgSvcSaveNamePage::resolve(const QString &name, const QString &original)
{
    if (name.isEmpty())
        return QString();
    QString path = beside(name, original);
    // Without an extension the engine would not know what format to write.
    const QString suffix = QFileInfo(original).suffix();
    if (QFileInfo(path).suffix().isEmpty() && !suffix.isEmpty())
        path += QLatin1Char('.') + suffix;
    return QDir::cleanPath(path);
}

QString ImgSvcSaveNamePage::beside(const QString &name, const QString &original)
{
    return QDir(QFileInfo(original).absolutePath()).absoluteFilePath(name);
}

void ImgSvcSaveNamePage::setNote(const QString &text)
{
    m_note->setText(text);
    m_note->setVisible(!text.isEmpty());
}
