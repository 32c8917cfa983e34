#pragma once
#include <QLocale>
#include <QString>

// The language pack. Every text of the screens, resource keys included, is
// looked up through Qt's translators in catalogues built from
// translations/*.ts and carried in this library. English is always
// installed, so a text that a language lacks shows its English wording; the
// catalogue of the locale's language, when there is one, is asked first.
class ZResourceTranslator
{
public:
    // Installs the catalogues for the system locale, once per application.
    static void ensureInstalled();
    // Replaces the installed catalogues with those for locale. Returns the
    // language shown: the locale's, or "en" when it has no catalogue.
    // Also sets the application's layout direction to the language's:
    // right to left for Arabic, mirroring every layout as Qt does.
    static QString install(const QLocale &locale);

private:
    static void setDirection(const QLocale &shown);
};
