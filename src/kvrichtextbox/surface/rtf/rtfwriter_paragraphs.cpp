#include "surface/rtf/rtfwriter_p.h"

namespace kvrtb::rtf::detail {

void Writer::writeParagraphProperties(const QTextBlock &block)
{
    const ParaFormat p = format::readPara(block);
    if (block.blockFormat().layoutDirection() == Qt::RightToLeft)
        word("rtlpar");
    switch (*p.alignment) {
    case ParaAlignment::Center: word("qc"); break;
    case ParaAlignment::Right: word("qr"); break;
    case ParaAlignment::Justify: word("qj"); break;
    case ParaAlignment::Left: break;
    }
    const int fi = -*p.hangingIndent;
    const int li = *p.leftIndent + *p.hangingIndent;
    if (fi)
        word("fi", fi);
    if (li)
        word("li", li);
    if (*p.rightIndent)
        word("ri", *p.rightIndent);
    if (*p.spaceBefore)
        word("sb", *p.spaceBefore);
    if (*p.spaceAfter)
        word("sa", *p.spaceAfter);
    const int amount = *p.lineSpacing;
    switch (*p.lineSpacingRule) {
    case LineSpacingRule::Single: break;
    case LineSpacingRule::OneAndHalf: word("sl", 360); word("slmult", 1); break;
    case LineSpacingRule::Double: word("sl", 480); word("slmult", 1); break;
    case LineSpacingRule::AtLeast: word("sl", amount); word("slmult", 0); break;
    case LineSpacingRule::Exactly: word("sl", -amount); word("slmult", 0); break;
    case LineSpacingRule::Multiple:
        word("sl", amount * 12);
        word("slmult", 1);
        // 30 and 40 twentieths read back as one and a half and double without this.
        if (amount * 12 == 360 || amount * 12 == 480 || amount <= 0)
            word("kvlinerule", int(LineSpacingRule::Multiple));
        break;
    }
    if (*p.lineSpacingRule == LineSpacingRule::AtLeast && amount == 0)
        word("kvlinerule", int(LineSpacingRule::AtLeast));
    if (*p.lineSpacingRule == LineSpacingRule::Exactly && amount == 0)
        word("kvlinerule", int(LineSpacingRule::Exactly));
    writeTabsBordersAndShading(block.blockFormat(), *p.tabStops);
    if (*p.numbering != Numbering::None) {
        const Numbering numbering = *p.numbering;
        const NumberingStyle style = *p.numberingStyle;
        // The list table for word processors, the number as text for readers without lists,
        // and, in a group of our own, paragraph numbering words that say what the list table
        // cannot (our reader takes them over the list table's level; other readers would let
        // plain \pn paragraph numbering replace the list).
        // Paragraphs without a number of their own (continuations) are no list items to others.
        const QTextList *list = block.textList();
        const int level = listmarkers::levelOf(list->format());
        const QTextBlock previous = block.previous();
        const bool followsList = previous.isValid() && previous.textList();
        if (style != NumberingStyle::NoNumber) {
            word("ls", m_listTable.overrideOf(list, numbering, *p.numberingStart, style, level, followsList,
                                              list->format().stringProperty(listmarkers::BulletTextProperty)));
            if (level)
                word("ilvl", level);
        }
        m_out += "{\\*\\kvpn";
        m_out += numbering == Numbering::Bullet ? "\\pnlvlblt" : "\\pnlvlbody";
        if (style == NumberingStyle::NoNumber)
            m_out += "\\pnlvlcont";
        if (*p.bulletIndent)
            m_out += "\\pnindent" + QByteArray::number(*p.bulletIndent);
        if (numbering != Numbering::Bullet || *p.numberingStart != 1)
            m_out += "\\pnstart" + QByteArray::number(*p.numberingStart);
        switch (numbering) {
        case Numbering::Arabic: m_out += "\\pndec"; break;
        case Numbering::LowerLetter: m_out += "\\pnlcltr"; break;
        case Numbering::UpperLetter: m_out += "\\pnucltr"; break;
        case Numbering::LowerRoman: m_out += "\\pnlcrm"; break;
        case Numbering::UpperRoman: m_out += "\\pnucrm"; break;
        default: break;
        }
        if (numbering == Numbering::Bullet) {
            m_out += "{\\pntxtb ";
            escaped(listmarkers::markerText(block), m_out);
            m_out += '}';
        }
        switch (style) {
        case NumberingStyle::Period:
            if (numbering != Numbering::Bullet)
                m_out += "{\\pntxta.}";
            break;
        case NumberingStyle::RightParen: m_out += "{\\pntxta)}"; break;
        case NumberingStyle::Parens:
            if (numbering != Numbering::Bullet)
                m_out += "{\\pntxtb(}";
            m_out += "{\\pntxta)}";
            if (numbering == Numbering::Bullet)
                m_out += "{\\pntxtb(}";
            break;
        case NumberingStyle::Plain:
            if (numbering == Numbering::Bullet)
                m_out += "{\\pntxta  }";
            break;
        case NumberingStyle::NoNumber: break;
        }
        m_out += '}';
        if (style != NumberingStyle::NoNumber) {
            // The number as text, for readers that know neither form.
            m_out += "{\\listtext ";
            escaped(listmarkers::markerText(block), m_out);
            m_out += "\\tab}";
        }
        m_needSpace = false;
    } else if (*p.bulletIndent) {
        word("kvbulletindent", *p.bulletIndent);
    }
}

void Writer::writeBlock(const QTextBlock &block, const char *ending)
{
    const int blockStart = block.position();
    const int blockEnd = blockStart + block.length() - 1; // position of its paragraph break
    // A note goes whole with its reference, even where the range ends before it.
    const int rangeStart = m_inNote ? blockStart : m_start;
    const int rangeEnd = m_inNote ? blockEnd + 1 : m_end;
    const bool inTable = !m_flattenCell && !m_inNote && m_tableDepth > 0;
    const QTextBlockFormat blockFormat = block.blockFormat();
    if (!inTable && !m_inNote && (blockFormat.pageBreakPolicy() & QTextFormat::PageBreak_AlwaysBefore))
        word("page");
    word("pard");
    if (inTable) {
        word("intbl");
        if (m_tableDepth > 1)
            word("itap", m_tableDepth);
    }
    writeParagraphProperties(block);
    const QByteArray kept = blockFormat.property(KeptParagraphGroups).toByteArray();
    if (!kept.isEmpty() && !m_keptWritten.contains(kept)) {
        m_keptWritten.insert(kept);
        m_out += kept;
        m_needSpace = false;
    }
    if (block.length() == 1)
        writeCharProps(block.charFormat());

    // Consecutive fragments of one link form one HYPERLINK field; those of another field (with
    // its instruction kept) form one field, inside the link or outside any.
    bool inLink = false;
    QString linkAddress;
    bool linkEffect = false;
    RunProps beforeLink;
    bool inField = false;
    bool fieldInLink = false;
    QString fieldInstruction;
    int fieldId = 0;
    RunProps beforeField;
    // Ends an open field, link or object group: "}}" and the properties from before it.
    auto closeGroup = [&](bool &open, const RunProps &before) {
        if (!open)
            return;
        m_out += "}}";
        m_needSpace = false;
        m_props = before;
        open = false;
    };
    auto closeField = [&] { closeGroup(inField, beforeField); };
    // A field inside a link's result ends with the link.
    auto closeLink = [&] {
        if (inLink && fieldInLink)
            closeField();
        closeGroup(inLink, beforeLink);
    };
    // Consecutive fragments of one embedded object's result are written inside its group
    // (rtfkept.h); a result that goes on from the paragraph before is written there.
    QByteArray object = m_objectAtParagraphEnd;
    bool inObject = false;
    RunProps beforeObject;
    auto closeObject = [&] { closeGroup(inObject, beforeObject); };
    // A block's fragments follow each other, so their positions are counted here (asking
    // each fragment for its position walks the document's fragment tree every time).
    int fragmentStart = blockStart;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        const int fragmentPosition = fragmentStart;
        fragmentStart += fragment.length();
        const int from = std::max(rangeStart, fragmentPosition);
        const int to = std::min(rangeEnd, fragmentStart);
        if (from >= to)
            continue;
        const QTextCharFormat qt = fragment.charFormat();
        const QByteArray objectGroup = qt.property(KeptObjectGroup).toByteArray();
        if (objectGroup != object) {
            closeLink();
            closeField();
            closeObject();
            object = objectGroup;
            if (!object.isEmpty()) {
                beforeObject = m_props;
                m_out += object;
                m_out += "{\\result";
                m_needSpace = true;
                inObject = true;
            }
        }
        const QString address = qt.anchorHref();
        const bool effect = qt.boolProperty(format::LinkEffect);
        const bool isLink = !address.isEmpty() || effect;
        const FormatMarks &marks = marksOf(qt, fragment.charFormatIndex());
        const QString &instruction = marks.fieldInstruction;
        const int id = marks.fieldId;
        if (inField && (instruction != fieldInstruction || id != fieldId))
            closeField();
        if (inLink && (!isLink || address != linkAddress || effect != linkEffect))
            closeLink();
        if (from == fragmentPosition)
            writeBookmarks("bkmkstart", marks.startsBefore);
        QString value = fragment.text();
        if (to - from != value.size())
            value = value.mid(from - fragmentPosition, to - from);
        if (isLink && !inLink) {
            closeField();
            inLink = true;
            linkAddress = address;
            linkEffect = effect;
            beforeLink = m_props;
            // Without an address the link points at its own text, for other readers; the
            // flags tell this reader what was really set.
            const int flags = (effect ? 0 : 1) | (address.isEmpty() ? 2 : 0);
            m_out += "{\\field";
            if (flags)
                m_out += "{\\*\\kvlink" + QByteArray::number(flags) + '}';
            QString target = address.isEmpty() ? value : address;
            // A place in the document (a bookmark) is named with the \l switch.
            const bool local = target.size() > 1 && target.startsWith(QLatin1Char('#'));
            if (local)
                target.remove(0, 1);
            m_out += local ? "{\\*\\fldinst HYPERLINK \\'5cl \"" : "{\\*\\fldinst HYPERLINK \"";
            target.replace(QLatin1Char('\\'), QLatin1String("\\\\")).replace(QLatin1Char('"'), QLatin1String("\\\""));
            escaped(target, m_out);
            m_out += "\"}{\\fldrslt";
            m_needSpace = true;
        }
        if (!instruction.isEmpty() && !inField) {
            inField = true;
            fieldInLink = inLink;
            fieldInstruction = instruction;
            fieldId = id;
            beforeField = m_props;
            m_out += "{\\field{\\*\\fldinst ";
            escaped(instruction, m_out);
            m_out += "}{\\fldrslt";
            m_needSpace = true;
        }
        const bool endsFragment = to == fragmentStart;
        if (qt.isImageFormat()) {
            writeCharProps(qt, fragment.charFormatIndex());
            for (int i = 0; i < value.size(); ++i)
                writePicture(qt.toImageFormat());
            if (endsFragment) {
                writeBookmarks("bkmkstart", marks.startsAfter);
                writeBookmarks("bkmkend", marks.ends);
            }
            continue;
        }
        // Right-to-left text: in a group of its own that gives the same properties as the
        // complex-script ones, which word processors apply to such text.
        const bool rtl = std::any_of(value.cbegin(), value.cend(), [](QChar c) {
            return c.unicode() >= 0x0590 && (c.direction() == QChar::DirR || c.direction() == QChar::DirAL);
        });
        const RunProps outside = m_props;
        if (rtl) {
            m_out += "{\\rtlch";
            m_needSpace = true;
        }
        writeCharProps(qt, fragment.charFormatIndex());
        if (rtl) {
            m_props.bold ? word("ab") : word("ab", 0);
            m_props.italic ? word("ai") : word("ai", 0);
            word("af", m_props.font);
            word("afs", m_props.halfPoints);
        }
        const int noteId = m_notes.isEmpty() ? 0 : qt.intProperty(NoteIdProperty);
        if (noteId && m_notes.contains(noteId) && qt.boolProperty(NoteMarkProperty))
            writeNoteMark(noteId, qt);
        else
            writeFragmentText(value);
        if (rtl) {
            m_out += '}';
            m_needSpace = false;
            m_props = outside;
        }
        if (endsFragment) {
            writeBookmarks("bkmkstart", marks.startsAfter);
            writeBookmarks("bkmkend", marks.ends);
        }
        if (noteId && !m_inNote && m_notes.contains(noteId) && !m_notesWritten.contains(noteId))
            writeNote(noteId);
    }
    closeField();
    closeLink();
    closeObject();
    m_objectAtParagraphEnd = object;
    if (blockEnd >= rangeStart && blockEnd < rangeEnd && ending)
        word(ending);
    m_out += '\n';
    m_needSpace = false;
}

} // namespace kvrtb::rtf::detail
