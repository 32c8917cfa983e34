#pragma once
#include <QTranslator>

// Texts are looked up with a resource key as source text and the English
// wording as comment. With no translation loaded, Qt would show the key;
// this fallback shows the English wording instead. Installed once, before
// any real translation, so that a loaded translation still takes precedence.
class ZResourceTranslator : public QTranslator
{
    Q_OBJECT
public:
    static void ensureInstalled();

    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *sourceText, const char *disambiguation = nullptr,
                      int n = -1) const override;
};
