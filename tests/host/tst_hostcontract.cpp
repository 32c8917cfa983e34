// The host's side of the contract, through the installed library file and
// its unmangled entry points only, as a third-party host uses them.
#include "ZMainWidget.h"
#include "testimages.h"

#include <QDir>
#include <QKeyEvent>
#include <QPointer>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <dlfcn.h>
#include <unistd.h>

using namespace testimages;

namespace {
using LaunchFn = QWidget *(*)(const QString &, QWidget *, void *);
using ReleaseFn = void (*)();

const char *const kLibrary = VO_BINARY_DIR "/lib/libvoimageeditor.so.1";
const char *const kWorkDir = "/tmp/.vo_imgeditor";

void press(QWidget *target, int key)
{
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(target, &down);
    QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
    QApplication::sendEvent(target, &up);
}

QStringList workingCopiesOf(const QString &base)
{
    return QDir(kWorkDir).entryList({"*" + base + "*"}, QDir::Files);
}
} // namespace

class TestHostContract : public QObject
{
    Q_OBJECT
    void *m_lib = nullptr;
    LaunchFn m_launch = nullptr;
    ReleaseFn m_release = nullptr;
    QTemporaryDir m_dir;

private slots:
    void initTestCase()
    {
        m_lib = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
        QVERIFY2(m_lib, dlerror());
        m_launch = reinterpret_cast<LaunchFn>(dlsym(m_lib, "launchImageEditor"));
        m_release = reinterpret_cast<ReleaseFn>(dlsym(m_lib, "releaseImageEditor"));
        QVERIFY(m_launch && m_release);
    }

    void exportsOnlyTheEntryPoints()
    {
        QProcess nm;
        nm.start("nm", {"-D", "-C", "--defined-only", kLibrary});
        QVERIFY(nm.waitForFinished());
        QSet<QString> exported;
        for (const QByteArray &line : nm.readAllStandardOutput().split('\n')) {
            const QString name = QString::fromUtf8(line).section(' ', 2);
            if (!name.isEmpty() && !name.startsWith("__bss_start") && name != "_edata" && name != "_end")
                exported << name;
        }
        const QSet<QString> expected{
            "launchImageEditor",
            "releaseImageEditor",
            "ImgImplInterface::launchImageEditor(QString const&, QWidget*, void*)",
            "ImgImplInterface::releaseImageEditor()",
            "ImgImplInterface::ImgImplInterface()",
            "ImgImplInterface::~ImgImplInterface()",
            "ImgImplMainFrame::ImgImplMainFrame(QString const&, QWidget*, char const*, unsigned int)",
            "ImgImplMainFrame::~ImgImplMainFrame()",
            "non-virtual thunk to ImgImplMainFrame::~ImgImplMainFrame()",
        };
        QCOMPARE(exported, expected);
    }

    void launchBackReleaseLeavesFileAndNoCopies()
    {
        const QString base = QString("contract%1").arg(getpid());
        const QString file = m_dir.filePath(base + ".jpg");
        QVERIFY(write(file, 1024, 768, "JPEG"));
        const QByteArray before = bytes(file);

        QWidget *editor = m_launch(file, nullptr, nullptr);
        QVERIFY(editor);
        QPointer<QWidget> guard(editor);
        QVERIFY(editor->isVisible());
        QVERIFY(qobject_cast<ZMainWidget *>(editor));
        // Real-size copy and preview exist while the editor is open.
        const QStringList copies = workingCopiesOf(base);
        QCOMPARE(copies.size(), 2);
        QVERIFY(copies.filter(QRegularExpression("^tempreal_" + base + "_\\d+\\.jpg$")).size() == 1);
        QVERIFY(copies.filter(QRegularExpression("^smallimg_tempreal_" + base + "_\\d+_\\d+\\.jpg$")).size() == 1);

        QSignalSpy closed(editor, SIGNAL(sigMeClosed()));
        press(editor, Qt::Key_Context2);
        QCOMPARE(closed.count(), 1);
        QVERIFY(!editor->isVisible());
        QTest::qWait(50);
        QCOMPARE(closed.count(), 1);

        m_release();
        QVERIFY(guard.isNull());
        QVERIFY(workingCopiesOf(base).isEmpty());
        QCOMPARE(bytes(file), before);
        m_release(); // nothing open: harmless
    }

    void releaseWithoutUserActionClosesTheEditor()
    {
        const QString file = m_dir.filePath("quiet.png");
        QVERIFY(write(file, 200, 150, "PNG"));
        QPointer<QWidget> editor = m_launch(file, nullptr, reinterpret_cast<void *>(0xdead));
        QVERIFY(editor);
        m_release();
        QVERIFY(editor.isNull());
        // The lock went with it: a second editor gets the file.
        QPointer<QWidget> again = m_launch(file, nullptr, nullptr);
        QTest::qWait(50);
        QVERIFY(again && again->isVisible());
        m_release();
    }
};

QTEST_MAIN(TestHostContract)
#include "tst_hostcontract.moc"
