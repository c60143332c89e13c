#include "surface/rtf/rtfreader_p.h"

#include "surface/rtf/rtfkept.h"

#include <QPen>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextOption>

#include <algorithm>
#include <cstring>
#include <type_traits>

// Formats Qt shows only in part (character effects, tab kinds, paragraph borders and shading),
// the stylesheet's formats, bookmarks and the page setup.

namespace kvrtb::rtf::detail {

namespace {

constexpr int kMaxStyles = 4096;
constexpr int kAllFourSides = 5;

int pageSetupFieldOf(Word word)
{
    switch (word) {
    case Word::PaperW: case Word::PgWSxn: return PaperWidth;
    case Word::PaperH: case Word::PgHSxn: return PaperHeight;
    case Word::MargL: case Word::MargLSxn: return MarginLeft;
    case Word::MargR: case Word::MargRSxn: return MarginRight;
    case Word::MargT: case Word::MargTSxn: return MarginTop;
    case Word::MargB: case Word::MargBSxn: return MarginBottom;
    default: return Landscape;
    }
}

bool isSectionWord(Word word)
{
    return word == Word::PgWSxn || word == Word::PgHSxn || word == Word::MargLSxn || word == Word::MargRSxn
           || word == Word::MargTSxn || word == Word::MargBSxn || word == Word::LndscpSxn;
}

} // namespace

Colour Reader::colourAt(int index) const
{
    return index > 0 && size_t(index) < m_colours.size() ? m_colours[size_t(index)] : kAutoColour;
}

void Reader::formatWord(Word word, std::string_view name, bool hasParam, int param)
{
    GroupState &state = top();
    CharState &ch = state.ch;
    ParaState &para = state.para;
    const int value = hasParam ? param : 1;
    // The border side (or all four) that border words describe now.
    const auto forBorders = [&para](auto change) {
        if (para.borderSide == kAllFourSides) {
            for (int side = 0; side < 4; ++side)
                change(para.borders[side]);
        } else if (para.borderSide >= 0 && para.borderSide < kBorderSides) {
            change(para.borders[para.borderSide]);
        }
    };
    const auto startSide = [&para](int side) {
        para.borderSide = side;
        for (int s = 0; s < kBorderSides; ++s) {
            if (s == side || (side == kAllFourSides && s < 4))
                para.borders[s] = BorderState();
        }
    };
    const auto setTabKind = [&para](int kind) { para.nextTabKind = (para.nextTabKind & ~0xFF) | kind; };
    const auto setLeader = [&para](TabLeader leader) { para.nextTabKind = (para.nextTabKind & 0xFF) | (int(leader) << 8); };
    switch (word) {
    case Word::Caps: ch.caps = value != 0; break;
    case Word::Scaps: ch.smallCaps = value != 0; break;
    case Word::Outl: ch.outline = value != 0; break;
    case Word::Shad: ch.shadow = value != 0; break;
    case Word::Expnd: ch.expand = std::clamp(param, -3276, 3276) * 5; break; // quarter points
    case Word::ExpndTw: ch.expand = std::clamp(param, -16380, 16380); break;
    case Word::S:
    case Word::Cs:
        if (state.dest == Dest::Style) {
            m_styleNumber = param;
            m_styleIsCharacter = word == Word::Cs;
        } else if (state.dest == Dest::Text) {
            const QHash<int, StyleDef> &styles = word == Word::S ? m_paragraphStyles : m_characterStyles;
            if (const auto style = styles.constFind(param); style != styles.constEnd())
                applyStyle(*style, word == Word::S);
        }
        break;

    case Word::Tqr: setTabKind(QTextOption::RightTab); break;
    case Word::Tqc: setTabKind(QTextOption::CenterTab); break;
    case Word::Tqdec: setTabKind(QTextOption::DelimiterTab); break;
    case Word::TlDot: setLeader(TabLeader::Dot); break;
    case Word::TlMdot: setLeader(TabLeader::MiddleDot); break;
    case Word::TlHyph: setLeader(TabLeader::Hyphen); break;
    case Word::TlUl: setLeader(TabLeader::Underline); break;
    case Word::TlTh: setLeader(TabLeader::Thick); break;
    case Word::TlEq: setLeader(TabLeader::Equal); break;

    case Word::BrdrT: startSide(int(BorderSide::Top)); break;
    case Word::BrdrB: startSide(int(BorderSide::Bottom)); break;
    case Word::BrdrL: startSide(int(BorderSide::Left)); break;
    case Word::BrdrR: startSide(int(BorderSide::Right)); break;
    case Word::BrdrBtw: startSide(int(BorderSide::Between)); break;
    case Word::Box: startSide(kAllFourSides); break;
    case Word::BrdrOther: para.borderSide = -1; break; // a cell's, row's, page's or characters' border
    case Word::BrdrStyle: {
        const int count = borderStyleCount();
        int style = 0;
        while (style < count && name != borderStyleWords()[style])
            ++style;
        forBorders([style](BorderState &b) { b.style = style; });
        break;
    }
    case Word::BrdrW: forBorders([param](BorderState &b) { b.width = std::clamp(param, 0, 1000); }); break;
    case Word::BrdrCf: forBorders([param](BorderState &b) { b.colour = std::max(0, param); }); break;
    case Word::BrSp: forBorders([param](BorderState &b) { b.space = std::clamp(param, 0, 10000); }); break;
    case Word::Shading: para.shading = std::clamp(param, 0, 10000); break;
    case Word::CfPat: para.patternColour = std::max(0, param); break;
    case Word::CbPat: para.fillColour = std::max(0, param); break;

    case Word::PaperW: case Word::PaperH: case Word::MargL: case Word::MargR: case Word::MargT:
    case Word::MargB: case Word::Landscape: case Word::PgWSxn: case Word::PgHSxn: case Word::MargLSxn:
    case Word::MargRSxn: case Word::MargTSxn: case Word::MargBSxn: case Word::LndscpSxn: {
        // The document's page, and that of its first section, which says more where given.
        if (isSectionWord(word) && m_pastFirstSection)
            break;
        const int field = pageSetupFieldOf(word);
        const int amount = field == Landscape ? 1 : std::clamp(param, 0, 1000000);
        (isSectionWord(word) ? m_sectionPageSetup : m_pageSetup)[field] = amount;
        break;
    }
    default:
        break;
    }
}

void Reader::applyStyle(const StyleDef &style, bool paragraph)
{
    // What the style gives, over what is in effect: the words after the style's number may
    // still change it.
    static_assert(std::is_trivially_copyable_v<CharState> && sizeof(CharState) % sizeof(qint32) == 0);
    constexpr size_t count = sizeof(CharState) / sizeof(qint32);
    static const CharState defaults;
    qint32 given[count];
    qint32 plain[count];
    qint32 now[count];
    std::memcpy(given, &style.ch, sizeof(CharState));
    std::memcpy(plain, &defaults, sizeof(CharState));
    std::memcpy(now, &top().ch, sizeof(CharState));
    for (size_t i = 0; i < count; ++i) {
        if (given[i] != plain[i])
            now[i] = given[i];
    }
    std::memcpy(&top().ch, now, sizeof(CharState));
    if (style.ch.font >= 0) {
        const auto font = m_fonts.constFind(style.ch.font);
        top().codePage = font != m_fonts.constEnd() && font->codePage ? font->codePage : m_docCodePage;
    }
    if (!paragraph)
        return;
    const ParaState &from = style.para;
    ParaState &to = top().para;
    static const ParaState none;
    const auto take = [](qint32 &target, qint32 source, qint32 unset) {
        if (source != unset)
            target = source;
    };
    take(to.align, from.align, none.align);
    take(to.li, from.li, none.li);
    take(to.ri, from.ri, none.ri);
    take(to.fi, from.fi, none.fi);
    take(to.sb, from.sb, none.sb);
    take(to.sa, from.sa, none.sa);
    if (from.sl != none.sl) {
        to.sl = from.sl;
        to.slMult = from.slMult;
    }
    if (!from.tabs.isEmpty()) {
        to.tabs = from.tabs;
        to.tabKinds = from.tabKinds;
    }
    for (int side = 0; side < kBorderSides; ++side) {
        if (from.borders[side].style >= 0)
            to.borders[side] = from.borders[side];
    }
    take(to.shading, from.shading, none.shading);
    take(to.patternColour, from.patternColour, none.patternColour);
    take(to.fillColour, from.fillColour, none.fillColour);
    to.pageBreakBefore = to.pageBreakBefore || from.pageBreakBefore;
    to.rtl = to.rtl || from.rtl;
}

void Reader::addFormatProperties(QTextCharFormat &qt, const CharState &state) const
{
    // Capitals are shown, never stored: the text keeps the letters as they were typed.
    if (state.caps)
        qt.setFontCapitalization(QFont::AllUppercase);
    else if (state.smallCaps)
        qt.setFontCapitalization(QFont::SmallCaps);
    if (state.outline) {
        qt.setProperty(CharOutline, true);
        const Colour colour = colourAt(state.color);
        qt.setTextOutline(QPen(colour == kAutoColour ? QColor(Qt::black) : shadingColour(0, kAutoColour, colour), 0));
    }
    if (state.shadow)
        qt.setProperty(CharShadow, true);
    if (state.expand != 0) {
        qt.setFontLetterSpacingType(QFont::AbsoluteSpacing);
        qt.setFontLetterSpacing(double(state.expand) / kTwipsPerPixel);
    }
    if (state.field >= 0 && size_t(state.field) < m_fields.size()) {
        qt.setProperty(FieldInstruction, m_fields[size_t(state.field)].instruction.trimmed());
        qt.setProperty(FieldId, state.field + 1);
    }
}

void Reader::applyParagraphFormats(QTextBlockFormat &qt, const ParaState &para) const
{
    if (std::any_of(para.tabKinds.cbegin(), para.tabKinds.cend(), [](int kind) { return kind != 0; })) {
        QList<QTextOption::Tab> tabs;
        QList<int> leaders;
        for (qsizetype i = 0; i < para.tabs.size(); ++i) {
            const auto type = QTextOption::TabType(std::clamp(para.tabKinds[i] & 0xFF, 0, 3));
            const QChar delimiter = type == QTextOption::DelimiterTab ? QLatin1Char('.') : QChar();
            tabs.append(QTextOption::Tab(format::twipsToPixels(para.tabs[i]), type, delimiter));
            if (const int leader = para.tabKinds[i] >> 8)
                leaders << para.tabs[i] << leader;
        }
        qt.setTabPositions(tabs);
        if (!leaders.isEmpty())
            qt.setProperty(TabLeaders, QVariant::fromValue(leaders));
    }
    QList<int> borders;
    for (int side = 0; side < kBorderSides; ++side) {
        const BorderState &b = para.borders[side];
        if (b.style >= 0)
            borders << side << b.style << b.width << int(colourAt(b.colour)) << b.space;
    }
    if (!borders.isEmpty())
        qt.setProperty(ParagraphBorders, QVariant::fromValue(borders));
    if (para.shading > 0 || para.patternColour > 0 || para.fillColour > 0) {
        const Colour pattern = colourAt(para.patternColour);
        const Colour fill = colourAt(para.fillColour);
        qt.setProperty(ParagraphShading, QVariant::fromValue(QList<int>{para.shading, int(pattern), int(fill)}));
        const QColor shown = shadingColour(para.shading, pattern, fill);
        if (shown.isValid())
            qt.setBackground(shown);
    }
}

void Reader::openFormatDestination(Word word)
{
    flushText();
    GroupState &state = top();
    state.destRoot = true;
    m_destText.clear();
    if (word == Word::StyleSheet) {
        state.dest = Dest::StyleSheet;
    } else {
        state.dest = Dest::Bookmark;
        m_bookmarkIsEnd = word == Word::BkmkEnd;
    }
}

void Reader::keepGroupBytes(const GroupState &closing)
{
    // The document's header, or the paragraph being read.
    const bool header = !m_bodyStarted && m_parCount == 0 && !m_inNote;
    (header ? m_keptDocument : m_keptParagraph).append(closing.start, qsizetype(m_p - closing.start));
}

void Reader::finishFormatDestination(const GroupState &closing)
{
    const bool inText = top().dest == Dest::Text;
    switch (closing.dest) {
    case Dest::Style:
        if (m_paragraphStyles.size() + m_characterStyles.size() < kMaxStyles)
            (m_styleIsCharacter ? m_characterStyles : m_paragraphStyles).insert(m_styleNumber, StyleDef{closing.ch, closing.para});
        break;
    case Dest::StyleSheet:
        // Its formats are applied where styles are used; the group itself is written back as read.
        if (inText && closing.start)
            keepGroupBytes(closing);
        break;
    case Dest::Bookmark: {
        const QString name = m_destText.trimmed();
        m_destText.clear();
        if (!inText || !closing.start)
            break;
        const QByteArray bytes(closing.start, qsizetype(m_p - closing.start));
        if (!m_bookmarkIsEnd) {
            m_pendingBookmarks << name;
            m_pendingBookmarkBytes << bytes;
            break;
        }
        const bool afterText = m_paragraphHasContent && m_cursor.position() > m_cursor.block().position();
        const qsizetype pending = m_pendingBookmarks.indexOf(name);
        if (pending >= 0) {
            // A bookmark that covers nothing: both ends after the character before it.
            const QByteArray start = m_pendingBookmarkBytes.takeAt(pending);
            m_pendingBookmarks.removeAt(pending);
            if (afterText) {
                attachToPreviousCharacter(BookmarkStartsAfter, name);
                attachToPreviousCharacter(BookmarkEnds, name);
            } else {
                m_keptParagraph += start + bytes;
            }
        } else if (afterText) {
            attachToPreviousCharacter(BookmarkEnds, name);
        } else {
            // At the paragraph's start: kept with the paragraph, written where it was.
            m_keptParagraph += bytes;
        }
        break;
    }
    default:
        break;
    }
}

void Reader::attachToPreviousCharacter(int property, const QString &name)
{
    QTextCursor previous(m_cursor);
    previous.setPosition(m_cursor.position() - 1);
    previous.setPosition(m_cursor.position(), QTextCursor::KeepAnchor);
    QStringList names = previous.charFormat().property(property).toStringList();
    names << name;
    QTextCharFormat change;
    change.setProperty(property, names);
    previous.mergeCharFormat(change);
}

void Reader::placeParagraphEndBookmarks()
{
    if (m_pendingBookmarks.isEmpty())
        return;
    if (m_paragraphHasContent && m_cursor.position() > m_cursor.block().position()) {
        for (const QString &name : std::as_const(m_pendingBookmarks))
            attachToPreviousCharacter(BookmarkStartsAfter, name);
    } else {
        for (const QByteArray &bytes : std::as_const(m_pendingBookmarkBytes))
            m_keptParagraph += bytes;
    }
    m_pendingBookmarks.clear();
    m_pendingBookmarkBytes.clear();
}

void Reader::storePageSetup()
{
    QList<int> setup;
    bool given = false;
    for (int field = 0; field < PageSetupFields; ++field) {
        setup << (m_sectionPageSetup[field] ? m_sectionPageSetup[field] : m_pageSetup[field]);
        given = given || setup.back() != 0;
    }
    if (!given)
        return;
    QTextFrameFormat root = m_doc.rootFrame()->frameFormat();
    root.setProperty(PageSetupProperty, QVariant::fromValue(setup));
    m_doc.rootFrame()->setFrameFormat(root);
}

} // namespace kvrtb::rtf::detail
