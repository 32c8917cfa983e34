// Every text the code shows must be in every catalogue, translated, with the
// same placeholders. The catalogues are refreshed from the code into a
// scratch folder exactly as scripts/update-translations.sh does it; a text
// missing from a .ts file then shows up there as unfinished.
#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

namespace {
struct Message
{
    QString context, source, comment, translation;
    bool finished = false;
};

QList<Message> readCatalogue(const QString &path, QString *error)
{
    QList<Message> messages;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = "cannot read " + path;
        return messages;
    }
    QXmlStreamReader xml(&file);
    QString context;
    Message current;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        const auto name = xml.name();
        if (name == u"name") {
            context = xml.readElementText();
        } else if (name == u"message") {
            current = Message();
            current.context = context;
        } else if (name == u"source") {
            current.source = xml.readElementText();
        } else if (name == u"comment") {
            current.comment = xml.readElementText();
        } else if (name == u"translation") {
            const QString type = xml.attributes().value("type").toString();
            current.translation = xml.readElementText();
            current.finished = type.isEmpty() && !current.translation.isEmpty();
            if (type != "vanished" && type != "obsolete")
                messages << current;
        }
    }
    if (xml.hasError())
        *error = path + ": " + xml.errorString();
    return messages;
}

QSet<QString> placeholders(const QString &text)
{
    QSet<QString> found;
    static const QRegularExpression marker("%(\\d+)");
    for (auto it = marker.globalMatch(text); it.hasNext();)
        found << it.next().captured(0);
    return found;
}
} // namespace

class TestTranslationsComplete : public QObject
{
    Q_OBJECT
    QTemporaryDir m_scratch;

private slots:
    void initTestCase()
    {
        QVERIFY(m_scratch.isValid());
        QProcess update;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("LUPDATE", VO_LUPDATE);
        update.setProcessEnvironment(env);
        update.setProcessChannelMode(QProcess::MergedChannels);
        update.start("bash", {VO_SOURCE_DIR "/scripts/update-translations.sh", "--into", m_scratch.path()});
        QVERIFY(update.waitForFinished(120000));
        QVERIFY2(update.exitStatus() == QProcess::NormalExit && update.exitCode() == 0,
                 update.readAll().constData());
    }

    void everyTextIsTranslated_data()
    {
        QTest::addColumn<QString>("file");
        const QStringList files = QDir(VO_SOURCE_DIR "/translations").entryList({"*.ts"}, QDir::Files);
        QVERIFY(files.contains("voimageeditor_en.ts"));
        QVERIFY(files.size() >= 2); // English and at least one other language
        for (const QString &f : files)
            QTest::newRow(qPrintable(f)) << f;
    }

    void everyTextIsTranslated()
    {
        QFETCH(QString, file);
        QString error;
        const QList<Message> refreshed = readCatalogue(m_scratch.filePath(file), &error);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QVERIFY(!refreshed.isEmpty());
        QStringList problems;
        for (const Message &m : refreshed) {
            const QString where = m.context + " \"" + m.source + "\"";
            if (!m.finished)
                problems << "no translation: " + where;
            else if (placeholders(m.translation) != (placeholders(m.source) | placeholders(m.comment)))
                problems << "placeholders differ: " + where; // a key's English wording is its comment
        }
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join('\n')));

        // The refresh changed nothing the repository holds: no text was dropped.
        const QList<Message> stored = readCatalogue(VO_SOURCE_DIR "/translations/" + file, &error);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QCOMPARE(stored.size(), refreshed.size());
    }
};

QTEST_GUILESS_MAIN(TestTranslationsComplete)
#include "tst_translations_complete.moc"
