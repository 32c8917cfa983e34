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
    auto *hint = new QLabel(tr("Saved in the folder of the original."), this);
    hint->setWordWrap(true);
    label->setBuddy(m_edit);
    auto *box = new QVBoxLayout(this);
    box->addWidget(label);
    box->addWidget(m_edit);
    box->addWidget(hint);
    box->addStretch(1);
}

ImgSvcSaveNamePage::~ImgSvcSaveNamePage() = default;

void ImgSvcSaveNamePage::offerNameFor(const QString &original)
{
    const QString name = suggestedName(original);
    m_edit->setText(name);
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    m_edit->setSelection(0, dot > 0 ? dot : int(name.size()));
}

QString ImgSvcSaveNamePage::enteredName() const
{
    return m_edit->text().trimmed();
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
    const QFileInfo orig(original);
    QString path = QDir(orig.absolutePath()).absoluteFilePath(name);
    // Without an extension the engine would not know what format to write.
    if (QFileInfo(path).suffix().isEmpty() && !orig.suffix().isEmpty())
        path += QLatin1Char('.') + orig.suffix();
    return QDir::cleanPath(path);
}
