#include "ZResourceTranslator.h"
#include <QCoreApplication>
#include <QPointer>

namespace {
QPointer<ZResourceTranslator> g_installed;

// Qt's own lookups ("QT_LAYOUT_DIRECTION" and the like) also look like keys;
// answering them with their comment would change Qt's behaviour.
bool looksLikeResourceKey(const char *text)
{
    if (!text || !*text)
        return false;
    const QByteArray key(text);
    if (key.startsWith("TXT_RID_") || key.startsWith("RESID_"))
        return true;
    if (key.startsWith("QT_") || !(key[0] >= 'A' && key[0] <= 'Z') || !key.contains('_'))
        return false;
    for (char c : key) {
        if (!((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_'))
            return false;
    }
    return true;
}

void installAtStartup()
{
    ZResourceTranslator::ensureInstalled();
}
} // namespace

// Installing from the application's constructor puts the fallback first in
// line, so every translation the host installs afterwards is asked before it.
Q_COREAPP_STARTUP_FUNCTION(installAtStartup)

void ZResourceTranslator::ensureInstalled()
{
    QCoreApplication *app = QCoreApplication::instance();
    if (!app || g_installed)
        return;
    auto *translator = new ZResourceTranslator;
    translator->setParent(app); // goes away with the application
    g_installed = translator;
    QCoreApplication::installTranslator(translator);
}

QString ZResourceTranslator::translate(const char *context, const char *sourceText, const char *disambiguation,
                                       int n) const
{
    Q_UNUSED(context);
    Q_UNUSED(n);
    if (!disambiguation || !*disambiguation || !looksLikeResourceKey(sourceText))
        return QString(); // no translation: Qt falls back to the source text
    return QString::fromUtf8(disambiguation);
}
