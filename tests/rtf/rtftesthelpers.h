#pragma once

// Helpers shared by the RTF tests.

#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"

#include <QByteArray>
#include <QImage>
#include <QPainter>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

namespace kvrtb::test {

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
