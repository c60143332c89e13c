#pragma once

// Helpers shared by the RTF tests.

#include "control/kvrtb.h"
#include "core/recordingplatformservices.h"
#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"

#include <QApplication>
#include <QByteArray>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <QTextEdit>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

namespace kvrtb::test {

/// A control on screen with a document loaded, as a user meets it; its changes are dropped at
/// the end (no question on closing).
struct ShownControl {
    RecordingPlatformServices services;
    KvRTB control{services};
    QTextEdit *edit = nullptr;

    /// Shows the control at \a size, loads \a rtf and lets it paint; false when the window
    /// never showed or the control has no editor.
    bool load(const QString &rtf, QSize size = QSize(700, 400))
    {
        control.resize(size);
        control.show();
        if (!QTest::qWaitForWindowExposed(&control))
            return false;
        control.setTextRTF(rtf);
        edit = control.findChild<QTextEdit *>();
        QApplication::processEvents();
        return edit != nullptr;
    }
    QTextDocument &doc() const { return *edit->document(); }
    ~ShownControl() { control.SetRTBChanged(false); }
};

/// The first table of the document's top level, or nullptr.
inline QTextTable *firstTable(const QTextDocument &doc)
{
    for (QTextFrame *frame : doc.rootFrame()->childFrames()) {
        if (auto *table = qobject_cast<QTextTable *>(frame))
            return table;
    }
    return nullptr;
}

/// Reads \a rtf into \a doc, checks that what it writes reads back to the same text and the
/// same bytes, and returns them ("not read" or "unstable: " and the bytes otherwise).
inline QByteArray writtenStably(QTextDocument &doc, const QByteArray &rtf)
{
    if (!rtf::readRtf(doc, rtf).ok)
        return "not read";
    const QByteArray written = rtf::writeRtf(doc);
    QTextDocument back;
    if (!rtf::readRtf(back, written).ok || rtf::writeRtf(back) != written || back.toPlainText() != doc.toPlainText())
        return "unstable: " + written;
    return written;
}

/// How many of the rendered document's pixels are not white.
inline int inkedPixels(QTextDocument &doc)
{
    QImage image(doc.size().toSize().expandedTo(QSize(1, 1)), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    doc.drawContents(&painter);
    painter.end();
    int inked = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            inked += image.pixel(x, y) != qRgb(255, 255, 255);
    }
    return inked;
}

} // namespace kvrtb::test
