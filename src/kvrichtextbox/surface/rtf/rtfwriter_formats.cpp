#include "surface/rtf/rtfwriter_p.h"

// Formats Qt shows only in part: character effects, tab kinds and leaders, paragraph borders and
// shading; bookmarks and the page setup.

namespace kvrtb::rtf::detail {

void Writer::writeCharEffects(const RunProps &next)
{
    const RunProps &now = m_props;
    if (next.caps != now.caps) {
        if (now.caps == QFont::AllUppercase)
            word("caps", 0);
        else if (now.caps == QFont::SmallCaps)
            word("scaps", 0);
        if (next.caps == QFont::AllUppercase)
            word("caps");
        else if (next.caps == QFont::SmallCaps)
            word("scaps");
    }
    if (next.outline != now.outline)
        next.outline ? word("outl") : word("outl", 0);
    if (next.shadow != now.shadow)
        next.shadow ? word("shad") : word("shad", 0);
    if (next.expand != now.expand) {
        // Quarter points for every reader, the twips for those that know them.
        word("expnd", int(std::lround(next.expand / 5.0)));
        word("expndtw", next.expand);
    }
}

void Writer::writeTabsBordersAndShading(const QTextBlockFormat &qt, const QList<int> &tabStops)
{
    const QList<QTextOption::Tab> shown = qt.tabPositions();
    const QList<int> leaders = qt.property(TabLeaders).value<QList<int>>();
    for (int tab : tabStops) {
        for (const QTextOption::Tab &kind : shown) {
            if (format::pixelsToTwips(kind.position) != tab)
                continue;
            switch (kind.type) {
            case QTextOption::RightTab: word("tqr"); break;
            case QTextOption::CenterTab: word("tqc"); break;
            case QTextOption::DelimiterTab: word("tqdec"); break;
            case QTextOption::LeftTab: break;
            }
            break;
        }
        for (qsizetype i = 0; i + 1 < leaders.size(); i += 2) {
            if (leaders[i] != tab)
                continue;
            static const char *const words[] = {nullptr, "tldot", "tlmdot", "tlhyph", "tlul", "tlth", "tleq"};
            const int leader = leaders[i + 1];
            if (leader > 0 && leader < int(std::size(words)))
                word(words[leader]);
            break;
        }
        word("tx", tab);
    }

    const QList<int> borders = qt.property(ParagraphBorders).value<QList<int>>();
    static const char *const sides[kBorderSides] = {"brdrt", "brdrb", "brdrl", "brdrr", "brdrbtw"};
    for (qsizetype i = 0; i + 4 < borders.size(); i += 5) {
        const int side = borders[i];
        const int style = borders[i + 1];
        if (side < 0 || side >= kBorderSides || style < 0 || style >= borderStyleCount())
            continue;
        word(sides[side]);
        word(borderStyleWords()[style]);
        if (borders[i + 2] > 0)
            word("brdrw", borders[i + 2]);
        if (Colour(borders[i + 3]) != kAutoColour)
            word("brdrcf", colourIndex(Colour(borders[i + 3])));
        if (borders[i + 4] > 0)
            word("brsp", borders[i + 4]);
    }

    const QList<int> shading = qt.property(ParagraphShading).value<QList<int>>();
    if (shading.size() == 3) {
        if (Colour(shading[2]) != kAutoColour)
            word("cbpat", colourIndex(Colour(shading[2])));
        if (Colour(shading[1]) != kAutoColour)
            word("cfpat", colourIndex(Colour(shading[1])));
        if (shading[0] > 0)
            word("shading", shading[0]);
    }
}

void Writer::writeBookmarks(const char *kind, const QStringList &names)
{
    for (const QString &name : names) {
        m_out += "{\\*\\";
        m_out += kind;
        m_out += ' ';
        escaped(name, m_out);
        m_out += '}';
        m_needSpace = false;
    }
}

const FormatMarks &Writer::marksOf(const QTextCharFormat &qt, int formatIndex)
{
    if (size_t(formatIndex) >= m_marksByFormat.size())
        m_marksByFormat.resize(size_t(formatIndex) + 1);
    std::optional<FormatMarks> &marks = m_marksByFormat[size_t(formatIndex)];
    if (!marks) {
        marks = FormatMarks{qt.stringProperty(FieldInstruction), qt.intProperty(FieldId), qt.anchorNames(),
                            qt.property(BookmarkStartsAfter).toStringList(), qt.property(BookmarkEnds).toStringList()};
    }
    return *marks;
}

QByteArray Writer::pageSetup() const
{
    const QList<int> setup = m_doc.rootFrame()->frameFormat().property(PageSetupProperty).value<QList<int>>();
    if (setup.size() != PageSetupFields)
        return QByteArray();
    static const char *const words[PageSetupFields] = {"paperw", "paperh", "margl", "margr", "margt", "margb", "landscape"};
    QByteArray out;
    for (int field = 0; field < PageSetupFields; ++field) {
        if (setup[field] <= 0)
            continue;
        out += '\\';
        out += words[field];
        if (field != Landscape)
            out += QByteArray::number(setup[field]);
    }
    return out.isEmpty() ? out : out + '\n';
}

} // namespace kvrtb::rtf::detail
