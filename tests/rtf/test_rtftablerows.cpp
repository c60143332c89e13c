// Table rows as read from RTF: heights, a left edge left of the margin, and long tables whose
// rows have different numbers of cells, each cell's text in its own cell.

#include "control/kvrtb.h"
#include "core/recordingplatformservices.h"
#include "rtftesthelpers.h"
#include "testregistry.h"
#include "surface/formatmapping.h"
#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtftables.h"
#include "surface/rtf/rtfwriter.h"

#include <QTest>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

using namespace kvrtb;

namespace {

QString textOf(const QTextTableCell &cell)
{
    QTextCursor cursor = cell.firstCursorPosition();
    cursor.setPosition(cell.lastPosition(), QTextCursor::KeepAnchor);
    return cursor.selectedText();
}

// The height kept for the cell's row, or a note that there is none.
QVariant heightOf(const QTextTable *table, int row, int column)
{
    const QTextCharFormat format = table->cellAt(row, column).format();
    return format.hasProperty(rtf::TableRowHeight) ? QVariant(format.intProperty(rtf::TableRowHeight)) : QVariant(QStringLiteral("none"));
}

} // namespace

class TestRtfTableRows : public QObject {
    Q_OBJECT

private slots:
    void rowHeightsAndLeftEdgeAreKept()
    {
        // At least 400 twips, exactly 600, automatic; the rows start 108 twips left of the margin.
        const QByteArray source = "{\\rtf1\\ansi\n"
                                  "\\trowd\\trleft-108\\trrh400\\cellx2000\\cellx4000\\pard\\intbl a\\cell b\\cell\\row\n"
                                  "\\trowd\\trleft-108\\trrh-600\\cellx2000\\cellx4000\\pard\\intbl c\\cell d\\cell\\row\n"
                                  "\\trowd\\trleft-108\\cellx2000\\cellx4000\\pard\\intbl e\\cell f\\cell\\row\n"
                                  "\\pard after\\par}";
        QTextDocument doc;
        const QByteArray out = test::writtenStably(doc, source);
        QTextTable *table = test::firstTable(doc);
        QVERIFY(table);
        QCOMPARE(doc.toPlainText(), QStringLiteral("\na\nb\nc\nd\ne\nf\nafter"));
        QCOMPARE(heightOf(table, 0, 0), QVariant(400));
        QCOMPARE(heightOf(table, 0, 1), QVariant(400));
        QCOMPARE(heightOf(table, 1, 1), QVariant(-600));
        QCOMPARE(heightOf(table, 2, 0), QVariant(QStringLiteral("none")));
        // The edge is kept; the table is drawn into the document's margin, as far as there is room.
        QCOMPARE(table->format().intProperty(rtf::TableLeftEdge), -108);
        QCOMPARE(table->format().leftMargin(), -doc.documentMargin());
        QVERIFY2(out.contains("\\trowd\\trleft-108\\trrh400\\cellx2000\\cellx4000\n"), out.constData());
        QVERIFY(out.contains("\\trowd\\trleft-108\\trrh-600\\cellx2000\\cellx4000\n"));
        QVERIFY(out.contains("\\trowd\\trleft-108\\cellx2000\\cellx4000\n"));

        // Cells that all share one border get it from the table; the heights stay on the cells.
        const QByteArray box = "\\clbrdrt\\brdrs\\clbrdrl\\brdrs\\clbrdrb\\brdrs\\clbrdrr\\brdrs";
        QTextDocument boxed;
        const QByteArray boxedOut = test::writtenStably(boxed, "{\\rtf1\\trowd\\trrh300" + box + "\\cellx2000" + box
                                                             + "\\cellx4000\\intbl x\\cell y\\cell\\row}");
        QCOMPARE(heightOf(test::firstTable(boxed), 0, 1), QVariant(300));
        QVERIFY2(boxedOut.contains("\\trowd\\trrh300\\clbrdrt"), boxedOut.constData());

        // A nested table's rows have their heights in their own definitions.
        QTextDocument nested;
        const QByteArray nestedOut = test::writtenStably(
            nested, "{\\rtf1\\trowd\\cellx5000\\pard\\intbl\\itap2 in\\nestcell{\\*\\nesttableprops\\trowd\\trrh-250"
                    "\\cellx3000\\nestrow}{\\nonesttables\\par}\\pard\\intbl\\itap1\\cell\\row\\pard after\\par}");
        QVERIFY2(nestedOut.contains("{\\*\\nesttableprops\\trowd\\trrh-250\\cellx3000"), nestedOut.constData());

        // Out-of-range values are held to 22 inches either way; the text is all there (the
        // second row starts at the margin, right of the first: a filler cell covers the gap).
        QTextDocument wild;
        const QByteArray wildOut = test::writtenStably(
            wild, "{\\rtf1\\trowd\\trleft-99999\\trrh99999999\\cellx-5\\cellx100\\intbl p\\cell q\\cell\\row\\trowd"
                  "\\trrh-2147483647\\cellx100\\intbl r\\cell\\row}");
        QCOMPARE(wild.toPlainText(), QStringLiteral("\np\nq\n\nr\n"));
        QVERIFY2(wildOut.contains("\\trowd\\trleft-31680\\trrh31680\\"), wildOut.constData());
        QVERIFY(wildOut.contains("\\trrh-31680\\"));
    }

    void editedInTheControlTheRowsKeepTheirDefinitions()
    {
        // A user opens the document in the control, types before the table and saves: the row
        // heights and the left edge are still there, and so is every character.
        test::ShownControl shown;
        QVERIFY(shown.load(QString::fromLatin1(
            "{\\rtf1\\ansi\\pard Before\\par\\trowd\\trleft-108\\trrh400\\cellx2000\\cellx4000\\pard\\intbl a\\cell b\\cell"
            "\\row\\trowd\\trleft-108\\trrh-600\\cellx2000\\cellx4000\\pard\\intbl c\\cell d\\cell\\row\\pard after\\par}"),
                           QSize(500, 300)));
        KvRTB &control = shown.control;
        QWidget *editor = control.RichTextBox1().widget();
        editor->setFocus();
        QTest::keyClick(editor, Qt::Key_Home, Qt::ControlModifier);
        QTest::keyClicks(editor, QStringLiteral("Typed "));
        const QString saved = control.TextRTF();
        QVERIFY2(saved.contains(QLatin1String("\\trowd\\trleft-108\\trrh400\\cellx2000\\cellx4000")), qPrintable(saved));
        QVERIFY(saved.contains(QLatin1String("\\trowd\\trleft-108\\trrh-600\\cellx2000\\cellx4000")));
        QTextDocument back;
        QVERIFY(rtf::readRtf(back, saved.toLatin1()).ok);
        QCOMPARE(back.toPlainText(), QStringLiteral("Typed Before\na\nb\nc\nd\nafter"));
    }

    void sharedBordersAreDrawnAtAnyWidth()
    {
        // Cells that all have the same border: thin (half a pixel) and thick (two pixels). A
        // picture of the empty table shows the lines, and the borders are written back as read.
        for (const int twips : {10, 30}) {
            const QByteArray side = "\\brdrs\\brdrw" + QByteArray::number(twips);
            const QByteArray box = "\\clbrdrt" + side + "\\clbrdrl" + side + "\\clbrdrb" + side + "\\clbrdrr" + side;
            const QByteArray row = "\\trowd" + box + "\\cellx1500" + box + "\\cellx3000\\intbl\\cell\\cell\\row";
            QTextDocument doc;
            const QByteArray out = test::writtenStably(doc, "{\\rtf1" + row + row + "}");
            QCOMPARE(int(out.count("\\clbrdrl" + side)), 4);
            const int inked = test::inkedPixels(doc);
            QVERIFY2(inked > 200, qPrintable(QStringLiteral("%1 twips: %2 pixels drawn").arg(twips).arg(inked)));
        }
    }

    void longTablesWithUnevenRowsKeepEveryCell()
    {
        // Rows with fewer cells than the table (their other cells stay empty), rows with more
        // (the table grows a column), and a last row without \row: every text in its own cell,
        // in a table far longer than the batches its rows are made in.
        QByteArray source = "{\\rtf1\\ansi\\trowd\\cellx1000\\cellx2000\\cellx3000\n";
        const int rows = 300;
        for (int r = 0; r < rows; ++r) {
            const int cells = r % 7 == 3 ? 1 : r % 11 == 5 ? 4 : 3;
            source += "\\pard\\intbl";
            for (int c = 0; c < cells; ++c)
                source += " r" + QByteArray::number(r) + "c" + QByteArray::number(c) + "\\cell";
            if (r + 1 < rows)
                source += "\\row\n";
        }
        source += "\\pard after\\par}";
        QTextDocument doc;
        QVERIFY(rtf::readRtf(doc, source).ok);
        QTextTable *table = test::firstTable(doc);
        QVERIFY(table);
        QCOMPARE(table->rows(), rows);
        QCOMPARE(table->columns(), 4);
        for (int r = 0; r < rows; ++r) {
            const int cells = r % 7 == 3 ? 1 : r % 11 == 5 ? 4 : 3;
            for (int c = 0; c < 4; ++c) {
                const QTextTableCell cell = table->cellAt(r, c);
                if (cell.row() != r || cell.column() != c)
                    continue; // a filler spanning the rest of a short row
                const QString expected = c < cells ? QStringLiteral("r%1c%2").arg(r).arg(c) : QString();
                QCOMPARE(textOf(cell), expected);
            }
        }
        QCOMPARE(doc.lastBlock().text(), QStringLiteral("after"));
        const QByteArray out = rtf::writeRtf(doc);
        QCOMPARE(int(out.count("\\row")), rows);
        QTextDocument back;
        QVERIFY(rtf::readRtf(back, out).ok);
        QCOMPARE(back.toPlainText(), doc.toPlainText());
    }
};

KVRTB_REGISTER_TEST(TestRtfTableRows)
#include "test_rtftablerows.moc"
