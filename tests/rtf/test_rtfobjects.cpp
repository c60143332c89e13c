// Embedded objects: the control shows what an object shows (its result, a picture or text) and
// writes the object's class, size and data back around it unchanged.

#include "testregistry.h"
#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"

#include <QBuffer>
#include <QImage>
#include <QTest>
#include <QTextCursor>
#include <QTextDocument>

using namespace kvrtb;

namespace {

QByteArray pngHex()
{
    QImage image(2, 2, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return png.toHex();
}

} // namespace

class TestRtfObjects : public QObject {
    Q_OBJECT

private slots:
    void anObjectInAPictureFramesTextBoxKeepsItsData()
    {
        // A picture frame shows its picture; the object that picture shows (class and data) is
        // in the frame's text box, and again in the result for readers that do not know shapes.
        const QByteArray picture = "{\\pict\\pngblip\\picw2\\pich2 " + pngHex() + "}";
        const QByteArray object = "{\\object\\objemb\\objw3150\\objh1575{\\*\\objclass Word.Picture.8}{\\*\\objdata 0a0b0c}";
        const QByteArray textBox = "{\\shptxt \\pard\\plain {\\pard\\plain " + object + "{\\result {" + picture + "}}}\\par}}";
        const auto frame = [&](const QByteArray &box) {
            return "{\\rtf1\\ansi before {\\shp{\\*\\shpinst{\\sp{\\sn shapeType}{\\sv 75}}{\\sp{\\sn pib}{\\sv " + picture
                   + "}}" + box + "}{\\shprslt{\\*\\do\\dptxbx{\\dptxbxtext\\pard " + object + "{\\result " + picture
                   + "}}\\par}}}} after\\par}";
        };
        QTextDocument doc;
        QVERIFY(rtf::readRtf(doc, frame(textBox)).ok);
        QCOMPARE(doc.toPlainText(), QStringLiteral("before \ufffc after"));
        const QByteArray written = rtf::writeRtf(doc);
        QCOMPARE(written.count(object), 1);
        QVERIFY(written.contains(object + "{\\result{\\pict\\pngblip"));
        QTextDocument back;
        QVERIFY(rtf::readRtf(back, written).ok);
        QCOMPARE(back.toPlainText(), doc.toPlainText());
        QCOMPARE(rtf::writeRtf(back), written);

        // A frame whose text box holds no object, or an object cut short, keeps the picture alone.
        for (const QByteArray &box : {QByteArray("{\\shptxt \\pard caption\\par}"), "{\\shptxt " + object + "}",
                                      QByteArray("{\\shptxt {\\object\\bin3 {{{{\\result x}}}")}) {
            QTextDocument plain;
            QVERIFY(rtf::readRtf(plain, frame(box)).ok);
            QCOMPARE(plain.toPlainText(), QStringLiteral("before \ufffc after"));
            QVERIFY(!rtf::writeRtf(plain).contains("\\object"));
        }
    }

    void objectDataIsWrittenBackAroundWhatItShows()
    {
        const QByteArray pictureObject = "{\\object\\objemb\\objw1200\\objh600{\\*\\objclass Paint.Picture}"
                                         "{\\*\\objdata 01050000020000000b000000}";
        const QByteArray textObject = "{\\object\\objlink\\objupdate{\\*\\objclass Excel.Sheet.8}{\\*\\objdata 0a0b}";
        const QByteArray unshown = "{\\object\\objemb{\\*\\objclass Equation.3}{\\*\\objdata 00ff}}";
        const QByteArray source = "{\\rtf1\\ansi before " + pictureObject + "{\\result {\\pict\\pngblip\\picw2\\pich2 "
                                  + pngHex() + "}}} middle {\\b bold " + textObject
                                  + "{\\result cells {\\i shown}}} after} end\\par " + unshown + "last\\par}";
        QTextDocument doc;
        QVERIFY(rtf::readRtf(doc, source).ok);
        // The results are shown as the document's content; the rest of the objects is not.
        QCOMPARE(doc.toPlainText(), QStringLiteral("before \ufffc middle bold cells shown after end\nlast"));

        // Written back: each object's group once, around its result; properties outside the
        // object are those before it.
        const QByteArray written = rtf::writeRtf(doc);
        QCOMPARE(written.count(pictureObject), 1);
        QCOMPARE(written.count(textObject), 1);
        QCOMPARE(written.count(unshown), 1);
        QVERIFY(written.indexOf(pictureObject) < written.indexOf(pngHex().left(32)));
        QVERIFY(written.indexOf(pictureObject + "{\\result") >= 0);
        QVERIFY(written.indexOf(textObject + "{\\result cells") >= 0);
        const int textEnd = int(written.indexOf("shown"));
        QVERIFY(written.indexOf("}} after", textEnd) > textEnd);

        // Read again, the document and its RTF stay the same.
        QTextDocument back;
        QVERIFY(rtf::readRtf(back, written).ok);
        QCOMPARE(back.toPlainText(), doc.toPlainText());
        QCOMPARE(rtf::writeRtf(back), written);

        // Deleting what an object shows deletes the object. Text typed at the end of a result
        // takes the result's format and is written inside it: it is kept.
        QTextCursor cursor(&doc);
        cursor.setPosition(7);
        cursor.deleteChar();
        const QByteArray withoutPicture = rtf::writeRtf(doc);
        QVERIFY(!withoutPicture.contains("Paint.Picture"));
        QVERIFY(withoutPicture.contains(textObject));
        cursor.setPosition(int(doc.toPlainText().indexOf(QStringLiteral("shown"))) + 5);
        cursor.insertText(QStringLiteral(" typed"));
        QTextDocument typed;
        QVERIFY(rtf::readRtf(typed, rtf::writeRtf(doc)).ok);
        QVERIFY(typed.toPlainText().contains(QStringLiteral("cells shown typed after")));

        // A part of the document that holds only part of an object's result still carries the
        // object; a part without it does not.
        const QByteArray part = rtf::writeRtf(back, 20, 26);
        QVERIFY(part.contains(textObject));
        QVERIFY(!rtf::writeRtf(back, 0, 6).contains("\\object"));
    }
};

KVRTB_REGISTER_TEST(TestRtfObjects)

#include "test_rtfobjects.moc"
