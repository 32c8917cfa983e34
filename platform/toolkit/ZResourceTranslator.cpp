#include "ZResourceTranslator.h"
#include <QCoreApplication>
#include <QGuiApplication>
#include <QPointer>
#include <QTranslator>

namespace {
// Where the build puts the compiled catalogues, voimageeditor_<lang>.qm.
const char *const kCatalogueDir = ":/i18n";
const char *const kCatalogue = "voimageeditor";

QPointer<QTranslator> g_english;
QPointer<QTranslator> g_local;

void drop(QPointer<QTranslator> &translator)
{
    if (!translator)
        return;
    QCoreApplication::removeTranslator(translator);
    delete translator.data();
}

void installAtStartup()
{
    ZResourceTranslator::ensureInstalled();
}
} // namespace

// From the application's constructor, so that the first window already
// speaks the user's language.
Q_COREAPP_STARTUP_FUNCTION(installAtStartup)

void ZResourceTranslator::ensureInstalled()
{
    if (QCoreApplication::instance() && !g_english)
        install(QLocale());
}

QString ZResourceTranslator::install(const QLocale &locale)
{
    QCoreApplication *app = QCoreApplication::instance();
    if (!app)
        return QString();
    drop(g_local);
    drop(g_english);

    // Installed first, so asked last: the fallback for every language.
    g_english = new QTranslator(app);
    if (g_english->load(QString::fromLatin1(kCatalogue) + QLatin1String("_en"), QLatin1String(kCatalogueDir)))
        QCoreApplication::installTranslator(g_english);

    auto *local = new QTranslator(app);
    if (!local->load(locale, QLatin1String(kCatalogue), QLatin1String("_"), QLatin1String(kCatalogueDir))
        || local->language().startsWith(QLatin1String("en"))) {
        delete local;
        setDirection(QLocale(QLocale::English));
        return QStringLiteral("en");
    }
    g_local = local;
    QCoreApplication::installTranslator(local);
    setDirection(QLocale(local->language()));
    return local->language();
}

// Screens read in the direction of the language shown, not of the locale: an
// Arabic locale without a catalogue shows English, left to right.
void ZResourceTranslator::setDirection(const QLocale &shown)
{
    if (qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        QGuiApplication::setLayoutDirection(shown.textDirection());
}
