#include "ImgSvcSaveNamePage.h"
#include "MMFileFormat.h"
#include "ZGlobal.h"
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

ImgSvcSaveNamePage::ImgSvcSaveNamePage(QWidget *parent) : QWidget(parent)
{
    auto *label = new QLabel(tr("TXT_RID_SAVE_FILE_NAME", "File name:"), this);
    m_edit = new QLineEdit(this);
    m_note = new QLabel(this);
    m_note->setWordWrap(true);
    m_note->hide();
    m_folder = new QLabel(this);
    // A path has few places to wrap: it is elided in the middle instead.
    m_folder->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    label->setBuddy(m_edit);
    auto *box = new QVBoxLayout(this);
    box->addWidget(label);
    box->addWidget(m_edit);
    box->addWidget(m_note);
    box->addWidget(m_folder);
    box->addStretch(1);
    // The note is about the name it was given for.
    connect(m_edit, &QLineEdit::textEdited, this, [this] {
        setNote(QString());
        showFolder();
    });
}

ImgSvcSaveNamePage::~ImgSvcSaveNamePage() = default;

void ImgSvcSaveNamePage::offerNameFor(const QString &original)
{
    m_original = original;
    const QString name = suggestedName(original);
    setNote(QString());
    m_edit->setText(name);
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    m_edit->setSelection(0, dot > 0 ? dot : int(name.size()));
    showFolder();
}

QString ImgSvcSaveNamePage::folderShown() const
{
    return m_folder->toolTip();
}

void ImgSvcSaveNamePage::showFolder()
{
    // The folder the typed name really lands in, which a path typed with
    // the name changes.
    const QString name = enteredName();
    const QString folder = QFileInfo(resolve(name.isEmpty() ? QStringLiteral("x") : name, m_original)).absolutePath();
    const QString text = tr("TXT_RID_SAVE_SAVED_IN", "Saved in %1").arg(QDir::toNativeSeparators(folder));
    const int width = qMax(20, ZGlobal::screenSize().width() * 9 / 10);
    m_folder->setText(m_folder->fontMetrics().elidedText(text, Qt::ElideMiddle, width));
    m_folder->setToolTip(folder);
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
        setNote(tr("TXT_RID_SAVE_FOLDER_NOTE", "That is a folder. Enter a file name."));
        return QString();
    }
    // A picture under another format's name would be mislabelled: the
    // picture's own extension is added, and the user sees it before saving.
    if (!isPictureName(path)) {
        const QString suffix = defaultSuffix(original);
        m_edit->setText(name + QLatin1Char('.') + suffix);
        setNote(tr("TXT_RID_SAVE_EXTENSION_NOTE", "Pictures are not saved as .%1: .%2 was added. OK saves.")
                    .arg(QFileInfo(path).suffix(), suffix));
        showFolder();
        return QString();
    }
    setNote(QString());
    return path;
}

bool ImgSvcSaveNamePage::isPictureName(const QString &path)
{
    return MMFileFormat::isWritable(MMFileFormat::fromExtension(path));
}

QString ImgSvcSaveNamePage::defaultSuffix(const QString &original)
{
    // The picture's own format, judged by its content, when it can be
    // written; else one that can.
    return MMFileFormat::saveSuffixFor(original);
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
    return fi.completeBaseName() + QStringLiteral("_edited.") + defaultSuffix(original);
}

QString ImgSvcSaveNamePage::resolve(const QString &name, const QString &original)
{
    if (name.isEmpty())
        return QString();
    QString path = beside(name, original);
    // Without an extension the engine would not know what format to write.
    if (QFileInfo(path).suffix().isEmpty())
        path += QLatin1Char('.') + defaultSuffix(original);
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
