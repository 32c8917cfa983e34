// vo-viewer: a small picture viewer that launches the image editor.
//   vo-viewer [--edit] [--screen WxH] [--keys "K1 K2 ..."] [--key-delay MS]
//             [--shots DIR] [--quit-when-closed] [--trace LOG] FILE

#include "HostEditorLibrary.h"
#include "HostKeyScript.h"
#include "HostTrace.h"
#include "HostViewer.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <memory>

// "WxH" in ASCII digits. Checked by hand: a regular expression would load and
// compile PCRE, about 0.4 MB more resident for the whole run.
static bool isScreenSize(QStringView value)
{
    const auto digits = [](QStringView part) {
        return !part.isEmpty() && std::all_of(part.begin(), part.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    };
    const qsizetype x = value.indexOf(u'x');
    return x > 0 && digits(value.left(x)) && digits(value.mid(x + 1));
}

int main(int argc, char *argv[])
{
    // The screen size must be known before the first window is made.
    for (int i = 1; i + 1 < argc; ++i) {
        if (qstrcmp(argv[i], "--screen") == 0)
            qputenv("VO_SCREEN_SIZE", argv[i + 1]);
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vo-viewer"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shows a picture and edits it with the image editor."));
    parser.addHelpOption();
    const QCommandLineOption edit(QStringLiteral("edit"), QStringLiteral("Open the editor at once."));
    const QCommandLineOption screen(QStringLiteral("screen"), QStringLiteral("Screen size."), QStringLiteral("WxH"));
    const QCommandLineOption keys(QStringLiteral("keys"), QStringLiteral("Keys to press."), QStringLiteral("script"));
    const QCommandLineOption delay(QStringLiteral("key-delay"), QStringLiteral("Pause between keys."),
                                   QStringLiteral("ms"), QStringLiteral("300"));
    const QCommandLineOption shots(QStringLiteral("shots"), QStringLiteral("Save a screenshot after each key."),
                                   QStringLiteral("dir"));
    const QCommandLineOption quit(QStringLiteral("quit-when-closed"),
                                  QStringLiteral("Exit once the editor has closed and been released."));
    const QCommandLineOption trace(QStringLiteral("trace"),
                                   QStringLiteral("Log keys, windows shown and painted, and saves of FILE, with times."),
                                   QStringLiteral("log"));
    parser.addOptions({edit, screen, keys, delay, shots, quit, trace});
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The picture."));
    parser.process(app);

    if (parser.positionalArguments().size() != 1) {
        std::fprintf(stderr, "vo-viewer: give exactly one picture file\n");
        return 2;
    }
    if (parser.isSet(screen) && !isScreenSize(parser.value(screen))) {
        std::fprintf(stderr, "vo-viewer: --screen takes WxH, e.g. 240x320\n");
        return 2;
    }
    const QString file = QFileInfo(parser.positionalArguments().constFirst()).absoluteFilePath();

    HostEditorLibrary library;
    if (!library.load()) {
        std::fprintf(stderr, "vo-viewer: cannot load the editor: %s\n", qPrintable(library.errorString()));
        return 1;
    }

    // Before the viewer, so that its first window is seen too.
    std::unique_ptr<HostTrace> tracer;
    if (parser.isSet(trace)) {
        tracer = std::make_unique<HostTrace>(parser.value(trace), file);
        if (!tracer->isOpen()) {
            std::fprintf(stderr, "vo-viewer: cannot write %s\n", qPrintable(parser.value(trace)));
            return 2;
        }
    }

    HostViewer viewer(file, &library);
    viewer.show();
    viewer.activateWindow();
    viewer.setFocus();

    const bool quitWhenClosed = parser.isSet(quit);
    HostKeyScript script(parser.value(keys), parser.value(delay).toInt(), parser.value(shots));
    if (quitWhenClosed) {
        QObject::connect(&viewer, &HostViewer::editorReleased, &app, [&] {
            // Let a screenshot that is still due show the screen first.
            QTimer::singleShot(script.pendingShots() ? script.shotDelay() + 50 : 0, &app, &QApplication::quit);
        });
    }

    if (tracer) {
        QObject::connect(&script, &HostKeyScript::keyPressing, tracer.get(),
                         [&](const QString &name) { tracer->logKey(name); });
        QObject::connect(&script, &HostKeyScript::keyReturned, tracer.get(),
                         [&](const QString &name) { tracer->log("returned " + name); });
    }
    QString error;
    if (!script.parse(&error)) {
        std::fprintf(stderr, "vo-viewer: %s\n", qPrintable(error));
        return 2;
    }
    int status = 0;
    if (parser.isSet(keys)) {
        QObject::connect(&script, &HostKeyScript::finished, &app, [&] {
            // A script that leaves the editor open would keep automation
            // waiting for ever: give the editor a moment, then give up.
            if (quitWhenClosed && viewer.isEditorOpen()) {
                QTimer::singleShot(5000, &app, [&] {
                    if (viewer.isEditorOpen()) {
                        std::fprintf(stderr, "vo-viewer: the editor did not close\n");
                        status = 3;
                        app.quit();
                    }
                });
            }
        });
    }

    if (parser.isSet(edit))
        QTimer::singleShot(0, &viewer, &HostViewer::openEditor);
    if (parser.isSet(keys))
        script.start();

    const int rc = app.exec();
    // Leaving with the editor still open: release it, so that its working
    // copies and overlay files go with it.
    if (viewer.isEditorOpen())
        library.release();
    if (script.failed()) {
        std::fprintf(stderr, "vo-viewer: a screenshot could not be saved\n");
        return 1;
    }
    if (parser.isSet(shots))
        std::printf("vo-viewer: screenshots in %s\n", qPrintable(parser.value(shots)));
    return status ? status : rc;
}
