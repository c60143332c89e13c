#include "surface/rtf/rtfreader_p.h"

#include "surface/listmarkers.h"
#include "surface/rtf/rtfkept.h"
#include "surface/rtf/rtfnotes.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextList>

#include <algorithm>

namespace kvrtb::rtf::detail {

namespace {

Numbering numberingOfNfc(int nfc)
{
    switch (nfc) {
    case 0: return Numbering::Arabic;
    case 1: return Numbering::UpperRoman;
    case 2: return Numbering::LowerRoman;
    case 3: return Numbering::UpperLetter;
    case 4: return Numbering::LowerLetter;
    case 23:
    case 255: return Numbering::Bullet;
    default: return Numbering::Arabic;
    }
}

// What follows or surrounds the number, from a level text such as "\'02\'00." (length byte,
// placeholder bytes below 10, literal text).
NumberingStyle styleOfLevelText(const QByteArray &text)
{
    bool before = false;
    bool seenNumber = false;
    QByteArray after;
    for (int i = 1; i < text.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c < 10) {
            seenNumber = true;
            after.clear();
        } else if (!seenNumber) {
            before = before || c == '(';
        } else {
            after += char(c);
        }
    }
    if (after.contains(')'))
        return before ? NumberingStyle::Parens : NumberingStyle::RightParen;
    if (after.contains('.'))
        return NumberingStyle::Period;
    return NumberingStyle::Plain;
}

// Shows \a bullet for the list, and gives other readers of the list format the Qt bullet that
// looks most like it.
void setBullet(QTextListFormat &list, const QString &bullet)
{
    list.setProperty(listmarkers::BulletTextProperty, bullet);
    if (bullet == QLatin1String("o") || bullet == QStringLiteral("\u25cb") || bullet == QStringLiteral("\u25e6"))
        list.setStyle(QTextListFormat::ListCircle);
    else if (bullet == QStringLiteral("\u25aa") || bullet == QStringLiteral("\u25a0"))
        list.setStyle(QTextListFormat::ListSquare);
}

} // namespace

QTextBlockFormat Reader::paragraphFormat(const ParaState &para, bool pageBreak, bool listParagraph, bool ownIndents)
{
    QTextBlockFormat qt;
    ParaFormat fields;
    fields.alignment = ParaAlignment(std::clamp(para.align, 0, 3));
    fields.leftIndent = para.li + para.fi;
    fields.hangingIndent = -para.fi;
    fields.rightIndent = para.ri;
    fields.spaceBefore = para.sb;
    fields.spaceAfter = para.sa;
    if (!para.tabs.isEmpty())
        fields.tabStops = para.tabs;
    if (para.bulletIndent != 0)
        fields.bulletIndent = para.bulletIndent;
    if (para.ruleOverride >= 0 && para.ruleOverride <= 5) {
        fields.lineSpacingRule = LineSpacingRule(para.ruleOverride);
        fields.lineSpacing = para.slMult ? para.sl / 12 : std::abs(para.sl);
        if (fields.lineSpacingRule != LineSpacingRule::Multiple && fields.lineSpacingRule != LineSpacingRule::AtLeast
            && fields.lineSpacingRule != LineSpacingRule::Exactly)
            fields.lineSpacing = 0;
    } else if (para.sl != 0) {
        if (para.slMult) {
            if (para.sl == 360) {
                fields.lineSpacingRule = LineSpacingRule::OneAndHalf;
                fields.lineSpacing = 0;
            } else if (para.sl == 480) {
                fields.lineSpacingRule = LineSpacingRule::Double;
                fields.lineSpacing = 0;
            } else if (para.sl > 0) {
                fields.lineSpacingRule = LineSpacingRule::Multiple;
                fields.lineSpacing = para.sl / 12;
            }
        } else if (para.sl > 0) {
            fields.lineSpacingRule = LineSpacingRule::AtLeast;
            fields.lineSpacing = para.sl;
        } else {
            fields.lineSpacingRule = LineSpacingRule::Exactly;
            fields.lineSpacing = -para.sl;
        }
    }
    format::applyParaFields(qt, fields);
    applyParagraphFormats(qt, para);
    if (para.rtl)
        qt.setLayoutDirection(Qt::RightToLeft);
    if (pageBreak)
        qt.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    if (!m_keptParagraph.isEmpty()) {
        qt.setProperty(KeptParagraphGroups, m_keptParagraph);
        m_keptParagraph.clear();
    }
    // List paragraphs show the markers the surface draws; those that give their own indent
    // show their text there, the marker hanging in the first line's indent (their lists add
    // no indent of their own).
    if (listParagraph) {
        listmarkers::setDrawnBySurface(qt);
        if (ownIndents && para.fi < 0)
            qt.setTextIndent(0);
    }
    return qt;
}

void Reader::addNoteProperties(QTextBlockFormat &qt) const
{
    qt.setProperty(NoteKindProperty, m_noteKind);
    qt.setProperty(NoteIdProperty, m_noteId);
    qt.setBackground(noteBackground());
}

void Reader::applyParagraph(const ParaState &para)
{
    // An empty paragraph keeps the character format in effect at its end (what typing there
    // would insert), so that writing it again gives the same properties.
    if (!m_paragraphHasContent)
        m_cursor.setBlockCharFormat(formatFor(top().ch));
    const bool pageBreak = (m_pageBreakPending || para.pageBreakBefore) && !m_inNote && m_tables.empty();
    const bool listParagraph = para.ls > 0 || para.pn.numbering != 0;
    const bool ownIndents = listParagraph && para.li > 0;
    // Most paragraphs have the properties of one of the last few: their format is built once,
    // without what makes a note's paragraphs its own. (A paragraph with groups kept for
    // writing back has a format of its own.)
    const bool kept = !m_keptParagraph.isEmpty();
    const auto built = std::find_if(m_builtParagraphs.cbegin(), m_builtParagraphs.cend(), [&](const BuiltParagraph &b) {
        return b.pageBreak == pageBreak && b.inNote == m_inNote && b.para.sameAs(para);
    });
    QTextBlockFormat qt;
    if (!kept && built != m_builtParagraphs.cend()) {
        qt = built->format;
    } else {
        qt = paragraphFormat(para, pageBreak, listParagraph, ownIndents);
        if (!kept) {
            BuiltParagraph entry{para, pageBreak, m_inNote, qt};
            constexpr size_t kBuiltParagraphs = 8;
            if (m_builtParagraphs.size() < kBuiltParagraphs) {
                m_builtParagraphs.push_back(std::move(entry));
            } else {
                m_builtParagraphs[m_nextBuiltParagraph] = std::move(entry);
                m_nextBuiltParagraph = (m_nextBuiltParagraph + 1) % kBuiltParagraphs;
            }
        }
    }
    if (m_inNote)
        addNoteProperties(qt);
    m_cursor.setBlockFormat(qt);

    // Lists: \ls paragraphs join the list of their override and level wherever they are;
    // legacy \pn paragraphs join the list of the paragraph before when it is numbered alike.
    QTextBlock block = m_cursor.block();
    if (QTextList *current = block.textList())
        current->remove(block);
    if (para.ls > 0) {
        const int level = std::clamp(para.ilvl, 0, 8);
        const int key = para.ls * 16 + level;
        QTextList *list = m_lsLists.value(key).data();
        if (list) {
            list->add(block);
        } else {
            Numbering numbering = Numbering::Bullet;
            int start = 1;
            NumberingStyle style = NumberingStyle::Period;
            QString bullet;
            const int listId = m_overrideToList.value(para.ls, -1);
            for (const ListDef &def : m_lists) {
                if (def.id != listId || def.levels.empty())
                    continue;
                const ListLevelDef &lvl = def.levels[size_t(std::min<int>(level, int(def.levels.size()) - 1))];
                bullet = lvl.bullet;
                if (para.pn.numbering != 0)
                    break;
                numbering = numberingOfNfc(lvl.nfc);
                start = lvl.start;
                style = numbering == Numbering::Bullet ? NumberingStyle::Period : styleOfLevelText(lvl.text);
                break;
            }
            if (para.pn.numbering != 0) {
                // Paragraph numbering given with the list says more than the list table.
                numbering = Numbering(para.pn.numbering);
                start = para.pn.start;
                style = NumberingStyle(para.pn.style);
                if (!m_pnBullet.isEmpty())
                    bullet = m_pnBullet;
            }
            QTextListFormat listFormat = format::listFormatFor(numbering, start, style);
            listFormat.setIndent(level + 1);
            if (ownIndents)
                listmarkers::setOwnIndents(listFormat, level);
            if (numbering == Numbering::Bullet && !bullet.isEmpty())
                setBullet(listFormat, bullet);
            list = m_cursor.createList(listFormat);
            m_lsLists.insert(key, list);
        }
        m_lastPnList = nullptr;
    } else if (para.pn.numbering != 0) {
        if (m_lastPnList && m_lastPn == para.pn && block.previous().isValid()
            && block.previous().textList() == m_lastPnList) {
            m_lastPnList->add(block);
        } else {
            QTextListFormat listFormat = format::listFormatFor(Numbering(para.pn.numbering), para.pn.start,
                                                               NumberingStyle(para.pn.style));
            if (para.pn.level > 1)
                listFormat.setIndent(para.pn.level);
            if (ownIndents)
                listmarkers::setOwnIndents(listFormat, para.pn.level - 1);
            if (para.pn.numbering == int(Numbering::Bullet) && !m_pnBullet.isEmpty())
                setBullet(listFormat, m_pnBullet);
            m_lastPnList = m_cursor.createList(listFormat);
            m_lastPn = para.pn;
        }
    } else {
        m_lastPnList = nullptr;
    }
}

// \page, \sect and \column end the paragraph they are in (unless it has nothing yet), and a
// page or section break makes the next paragraph start a new page.
void Reader::pageBreak(bool page)
{
    if (m_inNote || !m_tables.empty() || paragraphTableDepth() > 0) {
        endParagraph(true);
        return;
    }
    if (m_paragraphHasContent)
        endParagraph(true);
    if (page)
        m_pageBreakPending = true;
}

void Reader::endParagraph(bool insertBreak)
{
    flushText();
    placeParagraphEndBookmarks();
    ensureTableState();
    applyParagraph(top().para);
    if (!m_inNote)
        m_pageBreakPending = false;
    insertPendingNotes();
    if (insertBreak) {
        m_cursor.insertBlock(QTextBlockFormat(), blockCharFormat());
        ++m_parCount;
        m_paragraphHasContent = false;
        m_lastWasPar = true;
    }
}

} // namespace kvrtb::rtf::detail
