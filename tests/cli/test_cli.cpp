// The kvrtb tool as a terminal user meets it: help, usage errors and their exit statuses,
// standard input and output, and conversions that keep every character.

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

struct Run {
    int status = -1;
    QByteArray out;
    QByteArray err;
};

Run kvrtb(const QStringList &args, const QByteArray &input = QByteArray())
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // As on a terminal: no platform chosen, no runtime folder set.
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.remove(QStringLiteral("XDG_RUNTIME_DIR"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KVRTB_CLI), args);
    process.write(input);
    process.closeWriteChannel();
    Run run;
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
        return run;
    run.status = process.exitCode();
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

} // namespace

class CliTest : public QObject {
    Q_OBJECT

private slots:
    void helpAndUsageErrors()
    {
        Run run = kvrtb({QStringLiteral("--help")});
        QCOMPARE(run.status, 0);
        QVERIFY(run.out.contains("kvrtb help COMMAND"));
        QVERIFY(run.out.contains("3  the input could not be read or understood"));
        QVERIFY2(run.err.isEmpty(), run.err.constData()); // no start-up chatter

        run = kvrtb({QStringLiteral("help"), QStringLiteral("convert")});
        QCOMPARE(run.status, 0);
        QVERIFY(run.out.startsWith("Usage: kvrtb convert [--clean-up]"));
        QVERIFY(run.out.contains("--clean-up"));
        QCOMPARE(kvrtb({QStringLiteral("convert"), QStringLiteral("--help")}).out, run.out);

        run = kvrtb({});
        QCOMPARE(run.status, 2);
        QVERIFY(run.err.startsWith("Usage: kvrtb COMMAND"));
        run = kvrtb({QStringLiteral("frobnicate")});
        QCOMPARE(run.status, 2);
        QVERIFY(run.err.startsWith("kvrtb: unknown command \"frobnicate\""));
        run = kvrtb({QStringLiteral("help"), QStringLiteral("frobnicate")});
        QCOMPARE(run.status, 2);
        run = kvrtb({QStringLiteral("convert"), QStringLiteral("only-one.rtf")});
        QCOMPARE(run.status, 2);
        QVERIFY(run.err.startsWith("Usage: kvrtb convert"));
        run = kvrtb({QStringLiteral("convert"), QStringLiteral("--sideways"), QStringLiteral("a.rtf"), QStringLiteral("b.txt")});
        QCOMPARE(run.status, 2);
        QVERIFY(run.err.contains("unknown option \"--sideways\""));
        run = kvrtb({QStringLiteral("convert"), QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("--to"), QStringLiteral("pdf")});
        QCOMPARE(run.status, 2);
    }

    void inputAndOutputFailures()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        Run run = kvrtb({QStringLiteral("convert"), dir.filePath(QStringLiteral("missing.rtf")), dir.filePath(QStringLiteral("out.txt"))});
        QCOMPARE(run.status, 3);
        QVERIFY(run.err.contains("cannot load"));
        run = kvrtb({QStringLiteral("links"), dir.filePath(QStringLiteral("missing.txt"))});
        QCOMPARE(run.status, 3);

        QFile in(dir.filePath(QStringLiteral("in.txt")));
        QVERIFY(in.open(QIODevice::WriteOnly));
        in.write("words\n");
        in.close();
        run = kvrtb({QStringLiteral("convert"), in.fileName(), dir.filePath(QStringLiteral("no/such/folder/out.html"))});
        QCOMPARE(run.status, 4);
        QVERIFY(run.err.contains("cannot write"));
    }

    void standardStreamsKeepEveryCharacter()
    {
        // Text between "<" and ">" survives a conversion unless the clean-up is asked for.
        const QByteArray rtf("{\\rtf1\\ansi if a <b and c> d then \\u8364?\\par next}");
        Run run = kvrtb({QStringLiteral("convert"), QStringLiteral("-"), QStringLiteral("-")}, rtf);
        QCOMPARE(run.status, 0);
        QCOMPARE(QString::fromUtf8(run.out), QStringLiteral("if a <b and c> d then \u20AC\r\nnext"));

        QTemporaryDir dir;
        const QString source = dir.filePath(QStringLiteral("tags.rtf"));
        QFile file(source);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(rtf);
        file.close();
        run = kvrtb({QStringLiteral("convert"), QStringLiteral("--clean-up"), source, QStringLiteral("-")});
        QCOMPARE(run.status, 0);
        QVERIFY(!run.out.contains("<b and"));

        // Plain text in, RTF out; the format of standard input by --from.
        run = kvrtb({QStringLiteral("convert"), QStringLiteral("--from"), QStringLiteral("txt"), QStringLiteral("--to"),
                     QStringLiteral("rtf"), QStringLiteral("-"), QStringLiteral("-")},
                    QByteArray("{\\rtf is not here\n"));
        QCOMPARE(run.status, 0);
        QVERIFY(run.out.startsWith("{\\rtf1"));
        QVERIFY(run.out.contains("\\{\\'5crtf is not here")); // "{" and "\\" escaped
    }
};

QTEST_GUILESS_MAIN(CliTest)
#include "test_cli.moc"
