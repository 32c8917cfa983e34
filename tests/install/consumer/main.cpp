// A host built outside this project against the installed package: opens
// the editor on a photo, leaves it with the right soft key and releases it
// from its own event loop. Exit code 0 when all of that happened.
#include <ImgImplInterface.h>

#include <QApplication>
#include <QColor>
#include <QFile>
#include <QImage>
#include <QKeyEvent>
#include <QTimer>
#include <QWidget>

#include <cstdio>

namespace {
QByteArray contents(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool writePhoto(const QString &path)
{
    QImage image(800, 600, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x % 256, y % 256, (x + y) % 256));
    return image.save(path, "JPEG", 90);
}

int fail(const char *what)
{
    std::fprintf(stderr, "consumer: %s\n", what);
    return 1;
}
} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    if (argc != 2)
        return fail("usage: consumer PHOTO");
    const QString photo = QString::fromLocal8Bit(argv[1]);
    if (!QFile::exists(photo) && !writePhoto(photo))
        return fail("cannot write the photo");
    const QByteArray before = contents(photo);

    QWidget *editor = launchImageEditor(photo, nullptr, nullptr);
    if (!editor || !editor->isVisible())
        return fail("launch did not show an editor");
    if (!QObject::connect(editor, SIGNAL(sigMeClosed()), &app, SLOT(quit())))
        return fail("the editor has no sigMeClosed()");

    bool timedOut = false;
    QTimer::singleShot(0, editor, [editor] {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Context2, Qt::NoModifier);
        QApplication::sendEvent(editor, &press);
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_Context2, Qt::NoModifier);
        QApplication::sendEvent(editor, &release);
    });
    QTimer::singleShot(60000, &app, [&] {
        timedOut = true;
        app.quit();
    });
    app.exec();
    releaseImageEditor();

    if (timedOut)
        return fail("the editor did not close on Back");
    if (contents(photo) != before)
        return fail("the photo changed without a save");
    std::printf("consumer: launched, closed and released\n");
    return 0;
}
