// The kvrtb tool as a terminal user meets it: help, usage errors and their exit statuses,
// standard input and output, and conversions that keep every character.

#include "clirun.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

using kvrtb::test::CliRun;

CliRun runTool(const QStringList &args, const QByteArray &input = QByteArray())
{
    return kvrtb::test::runCli(QStringLiteral(KVRTB_CLI), args, input, kvrtb::test::CliEnvironment::Terminal);
}

} // namespace

class CliTest : public QObject {
    Q_OBJECT

private slots:
    void helpAndUsageErrors()
    {
        CliRun run = runTool({QStringLiteral("--help")});
        QCOMPARE(run.code, 0);
        QVERIFY(run.out.contains("kvrtb help COMMAND"));
        QVERIFY(run.out.contains("3  the input could not be read or understood"));
        QVERIFY2(run.err.isEmpty(), qPrintable(run.err)); // no start-up chatter

        run = runTool({QStringLiteral("help"), QStringLiteral("convert")});
        QCOMPARE(run.code, 0);
        QVERIFY(run.out.startsWith("Usage: kvrtb convert [--clean-up]"));
        QVERIFY(run.out.contains("--clean-up"));
        QCOMPARE(runTool({QStringLiteral("convert"), QStringLiteral("--help")}).out, run.out);

        run = runTool({});
        QCOMPARE(run.code, 2);
        QVERIFY(run.err.startsWith("Usage: kvrtb COMMAND"));
        run = runTool({QStringLiteral("frobnicate")});
        QCOMPARE(run.code, 2);
        QVERIFY(run.err.startsWith("kvrtb: unknown command \"frobnicate\""));
        run = runTool({QStringLiteral("help"), QStringLiteral("frobnicate")});
        QCOMPARE(run.code, 2);
        run = runTool({QStringLiteral("convert"), QStringLiteral("only-one.rtf")});
        QCOMPARE(run.code, 2);
        QVERIFY(run.err.startsWith("Usage: kvrtb convert"));
        run = runTool({QStringLiteral("convert"), QStringLiteral("--sideways"), QStringLiteral("a.rtf"), QStringLiteral("b.txt")});
        QCOMPARE(run.code, 2);
        QVERIFY(run.err.contains("unknown option \"--sideways\""));
        run = runTool({QStringLiteral("convert"), QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("--to"), QStringLiteral("pdf")});
        QCOMPARE(run.code, 2);
    }

    void inputAndOutputFailures()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        CliRun run = runTool({QStringLiteral("convert"), dir.filePath(QStringLiteral("missing.rtf")), dir.filePath(QStringLiteral("out.txt"))});
        QCOMPARE(run.code, 3);
        QVERIFY(run.err.contains("cannot load"));
        run = runTool({QStringLiteral("links"), dir.filePath(QStringLiteral("missing.txt"))});
        QCOMPARE(run.code, 3);

        QFile in(dir.filePath(QStringLiteral("in.txt")));
        QVERIFY(in.open(QIODevice::WriteOnly));
        in.write("words\n");
        in.close();
        run = runTool({QStringLiteral("convert"), in.fileName(), dir.filePath(QStringLiteral("no/such/folder/out.html"))});
        QCOMPARE(run.code, 4);
        QVERIFY(run.err.contains("cannot write"));
    }

    void standardStreamsKeepEveryCharacter()
    {
        // Text between "<" and ">" survives a conversion unless the clean-up is asked for.
        const QByteArray rtf("{\\rtf1\\ansi if a <b and c> d then \\u8364?\\par next}");
        CliRun run = runTool({QStringLiteral("convert"), QStringLiteral("-"), QStringLiteral("-")}, rtf);
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out, QStringLiteral("if a <b and c> d then \u20AC\r\nnext"));

        QTemporaryDir dir;
        const QString source = dir.filePath(QStringLiteral("tags.rtf"));
        QFile file(source);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(rtf);
        file.close();
        run = runTool({QStringLiteral("convert"), QStringLiteral("--clean-up"), source, QStringLiteral("-")});
        QCOMPARE(run.code, 0);
        QVERIFY(!run.out.contains("<b and"));

        // The room the editor gives a paragraph's borders is not written to HTML as spacing.
        run = runTool({QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("html"), QStringLiteral("-"),
                       QStringLiteral("-")},
                      QByteArray("{\\rtf1\\ansi plain\\par\\pard\\sb120\\box\\brdrs\\brdrw30\\brsp80 boxed\\par}"));
        QCOMPARE(run.code, 0);
        QVERIFY2(run.out.contains("margin-top:8px;") && !run.out.contains("margin-top:15"), qPrintable(run.out));

        // Plain text in, RTF out; the format of standard input by --from.
        run = runTool({QStringLiteral("convert"), QStringLiteral("--from"), QStringLiteral("txt"), QStringLiteral("--to"),
                     QStringLiteral("rtf"), QStringLiteral("-"), QStringLiteral("-")},
                    QByteArray("{\\rtf is not here\n"));
        QCOMPARE(run.code, 0);
        QVERIFY(run.out.startsWith("{\\rtf1"));
        QVERIFY(run.out.contains("\\{\\'5crtf is not here")); // "{" and "\\" escaped
    }
};

QTEST_GUILESS_MAIN(CliTest)
#include "test_cli.moc"
