#pragma once

// The RTF writer's working state, shared by the files that write one kind of content each
// (characters, paragraphs, tables, notes). Private to surface/rtf.

#include "surface/formatmapping.h"
#include "surface/listmarkers.h"
#include "surface/rtf/codepage.h"
#include "surface/rtf/rtfformats.h"
#include "surface/rtf/rtfkept.h"
#include "surface/rtf/rtflisttable.h"
#include "surface/rtf/rtfnotes.h"
#include "surface/rtf/rtfpicture.h"
#include "surface/rtf/rtftables.h"

#include <QBuffer>
#include <QImage>
#include <QPixmap>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextList>
#include <QTextTable>
#include <QSet>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace kvrtb::rtf::detail {

struct RunProps {
    bool bold = false;
    bool italic = false;
    bool strike = false;
    bool protect = false;
    int underline = QTextCharFormat::NoUnderline;
    int font = -1;
    int halfPoints = 24;
    int color = 0;
    int back = 0;
    int script = 0;
    int offset = 0;
    int lang = 0;
    int caps = 0; // QFont::Capitalization: all capitals or small capitals
    bool outline = false;
    bool shadow = false;
    int expand = 0; // letter spacing, twips
};

// The field and bookmarks a character format carries (rtfformats.h).
struct FormatMarks {
    QString fieldInstruction;
    int fieldId = 0;
    QStringList startsBefore; // bookmarks that start at the run's first character
    QStringList startsAfter;  // bookmarks that start after its last
    QStringList ends;         // bookmarks that end after its last
};

class Writer {
public:
    Writer(const QTextDocument &document, int start, int end)
        : m_doc(document), m_start(start), m_end(end), m_defaults(format::defaultsOf(document))
    {
        fontIndex(m_defaults.fontName);
    }

    QByteArray run();

private:
    void writeFrame(const QTextFrame *frame);
    void writeTable(const QTextTable *table);
    void writeRowDefinition(const QTextTable *table, int row, const std::vector<int> &rights, int left);
    void writeCellBorders(const QTextTableFormat &tableFormat, const QTextTableCellFormat &cell);
    void writeCell(const QTextTableCell &cell);
    // True for the empty paragraph Qt keeps before a table at the start of the document or of a
    // cell: the user did not write it, and other readers would show it.
    static bool isPlaceholderBeforeTable(const QTextBlock &block, bool tableFollows);
    bool writeWithinCell(const QTextTable *table);
    void writeBlock(const QTextBlock &block, const char *ending);
    void writeParagraphProperties(const QTextBlock &block);
    void writeTabsBordersAndShading(const QTextBlockFormat &format, const QList<int> &tabStops);
    void writeCharEffects(const RunProps &next);
    void writeBookmarks(const char *kind, const QStringList &names);
    QByteArray pageSetup() const;
    /// The marks of \a format, worked out once per \a formatIndex (the document's index of it).
    const FormatMarks &marksOf(const QTextCharFormat &format, int formatIndex);
    void writeFragmentText(const QString &text);
    /// Writes the differences from the run before; \a formatIndex (the document's index of
    /// \a format, or -1) lets the properties of a format be worked out once.
    void writeCharProps(const QTextCharFormat &format, int formatIndex = -1);
    RunProps runPropsOf(const QTextCharFormat &format);
    void writePicture(const QTextImageFormat &format);
    void collectNotes();
    bool isAttachedNote(const QTextBlock &block) const;
    void writeNoteMark(int noteId, const QTextCharFormat &format);
    void writeNote(int noteId);
    void word(const char *control);
    void word(const char *control, int value);
    void text(char16_t c);
    void escaped(const QString &text, QByteArray &out);
    int fontIndex(const QString &name);
    int colourIndex(Colour colour);
    bool intersects(int from, int to) const { return from < m_end && to > m_start; }

    const QTextDocument &m_doc;
    const int m_start;
    const int m_end;
    const format::CharDefaults m_defaults;
    QByteArray m_out;
    bool m_needSpace = false;
    bool m_flattenCell = false; // a range inside one table cell is written as plain paragraphs
    int m_tableDepth = 0;       // the depth of the table whose cells are being written
    RunProps m_props;
    std::vector<std::optional<RunProps>> m_runPropsByFormat; // by the document's format index
    std::vector<std::optional<FormatMarks>> m_marksByFormat;
    // The paragraphs of each note whose reference is written, by note id.
    QHash<int, std::vector<QTextBlock>> m_notes;
    QSet<int> m_notesWritten;
    QSet<QByteArray> m_keptWritten; // kept groups already written (rtfkept.h)
    QByteArray m_objectAtParagraphEnd; // the object whose result the last paragraph ended in
    ListTableBuilder m_listTable;
    bool m_inNote = false;
    QStringList m_fonts;
    std::vector<Colour> m_colours;
};

} // namespace kvrtb::rtf::detail
