#include "surface/rtf/rtfreader_p.h"

#include "surface/rtf/rtfkept.h"

#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>

#include <algorithm>
#include <cctype>
#include <unordered_map>

namespace kvrtb::rtf::detail {

namespace {

// Each control word the reader knows, with its kind.
std::unordered_map<std::string_view, Word> wordList()
{
    std::unordered_map<std::string_view, Word> table = {
        {"rtf", Word::Rtf}, {"fonttbl", Word::FontTbl}, {"colortbl", Word::ColorTbl},
        {"field", Word::Field}, {"fldinst", Word::FldInst}, {"fldrslt", Word::FldRslt},
        {"pict", Word::Pict}, {"shppict", Word::ShpPict}, {"nonshppict", Word::NonShpPict},
        {"object", Word::Object}, {"result", Word::Result}, {"pntext", Word::PnText},
        {"listtext", Word::ListText}, {"pn", Word::PnDest}, {"kvpn", Word::PnDest}, {"pntxta", Word::PnTxtA},
        {"pntxtb", Word::PnTxtB}, {"listtable", Word::ListTable}, {"list", Word::ListDest},
        {"listlevel", Word::ListLevel}, {"leveltext", Word::LevelText},
        {"listoverridetable", Word::ListOverrideTable}, {"listoverride", Word::ListOverride},
        {"upr", Word::Upr}, {"ud", Word::Ud}, {"nesttableprops", Word::NestTableProps},
        // Destinations whose content is not document text.
        {"stylesheet", Word::StyleSheet}, {"info", Word::SkipDest}, {"header", Word::SkipDest},
        {"headerl", Word::SkipDest}, {"headerr", Word::SkipDest}, {"headerf", Word::SkipDest},
        {"footer", Word::SkipDest}, {"footerl", Word::SkipDest}, {"footerr", Word::SkipDest},
        {"footerf", Word::SkipDest}, {"footnote", Word::Footnote}, {"annotation", Word::Annotation},
        {"revtbl", Word::SkipDest}, {"filetbl", Word::SkipDest}, {"objdata", Word::SkipDest},
        {"xe", Word::SkipDest}, {"tc", Word::SkipDest}, {"txe", Word::SkipDest},
        {"rxe", Word::SkipDest}, {"private", Word::SkipDest}, {"template", Word::SkipDest},
        {"pgdsctbl", Word::SkipDest}, {"bkmkstart", Word::BkmkStart}, {"bkmkend", Word::BkmkEnd},
        {"author", Word::SkipDest}, {"operator", Word::SkipDest}, {"title", Word::SkipDest},
        {"subject", Word::SkipDest}, {"comment", Word::SkipDest}, {"doccomm", Word::SkipDest},
        {"keywords", Word::SkipDest}, {"buptim", Word::SkipDest}, {"creatim", Word::SkipDest},
        {"revtim", Word::SkipDest}, {"printim", Word::SkipDest}, {"objclass", Word::SkipDest},
        {"objname", Word::SkipDest}, {"pnseclvl", Word::SkipDest}, {"fldtype", Word::SkipDest},
        {"falt", Word::SkipDest}, {"panose", Word::SkipDest}, {"shpinst", Word::ShpInst},
        {"shptxt", Word::ShpTxt}, {"shprslt", Word::ShpRslt}, {"sp", Word::Sp}, {"sn", Word::Sn},
        {"sv", Word::Sv},
        {"atnid", Word::AtnId}, {"atnauthor", Word::AtnAuthor}, {"atndate", Word::SkipDest},
        {"atnref", Word::SkipDest}, {"atntime", Word::SkipDest}, {"atrfstart", Word::SkipDest},
        {"atrfend", Word::SkipDest}, {"ftnsep", Word::SkipDest}, {"ftnsepc", Word::SkipDest},
        {"ftncn", Word::SkipDest}, {"aftnsep", Word::SkipDest}, {"aftnsepc", Word::SkipDest},
        {"aftncn", Word::SkipDest}, {"listpicture", Word::SkipDest}, {"themedata", Word::SkipDest},
        {"colorschememapping", Word::SkipDest}, {"latentstyles", Word::SkipDest},
        {"datastore", Word::SkipDest}, {"xmlnstbl", Word::SkipDest}, {"rsidtbl", Word::SkipDest},
        {"generator", Word::SkipDest}, {"mmathPr", Word::SkipDest}, {"blipuid", Word::SkipDest},
        {"picprop", Word::SkipDest}, {"do", Word::SkipDest}, {"macpict", Word::PictKind},
        // document
        {"ansi", Word::Ansi}, {"mac", Word::Mac}, {"pc", Word::Pc}, {"pca", Word::Pca},
        {"ansicpg", Word::AnsiCpg}, {"deff", Word::Deff}, {"uc", Word::Uc}, {"u", Word::U},
        {"bin", Word::Bin}, {"f", Word::F}, {"fcharset", Word::FCharset}, {"cpg", Word::Cpg},
        {"red", Word::Red}, {"green", Word::Green}, {"blue", Word::Blue},
        // characters
        {"plain", Word::Plain}, {"b", Word::B}, {"i", Word::I}, {"ul", Word::Ul},
        {"uld", Word::UlD}, {"uldash", Word::UlDash}, {"uldashd", Word::UlDashD},
        {"uldashdd", Word::UlDashDD}, {"ulwave", Word::UlWave}, {"ulhwave", Word::UlWave},
        {"ululdbwave", Word::UlWave}, {"uldb", Word::Ul}, {"ulw", Word::Ul}, {"ulth", Word::Ul},
        {"ulthd", Word::UlD}, {"ulthdash", Word::UlDash}, {"ulldash", Word::UlDash},
        {"ulthldash", Word::UlDash}, {"ulthdashd", Word::UlDashD}, {"ulthdashdd", Word::UlDashDD},
        {"ulnone", Word::UlNone}, {"strike", Word::Strike}, {"striked", Word::StrikeD},
        {"cf", Word::Cf}, {"cb", Word::Cb}, {"highlight", Word::Highlight}, {"chcbpat", Word::ChCbPat},
        {"fs", Word::Fs}, {"super", Word::Super}, {"sub", Word::Sub}, {"nosupersub", Word::NoSuperSub},
        {"up", Word::Up}, {"dn", Word::Dn}, {"protect", Word::Protect}, {"lang", Word::Lang},
        {"v", Word::V}, {"kvoffset", Word::KvOffset}, {"ab", Word::Ab}, {"ai", Word::Ai}, {"af", Word::Af},
        {"afs", Word::Afs}, {"rtlch", Word::RtlCh}, {"ltrch", Word::LtrCh}, {"hich", Word::HiCh},
        {"dbch", Word::DbCh}, {"loch", Word::LoCh}, {"rtlpar", Word::RtlPar}, {"ltrpar", Word::LtrPar},
        // paragraphs
        {"pard", Word::Pard}, {"trowd", Word::TrowD}, {"cellx", Word::CellX}, {"trleft", Word::TrLeft}, {"trrh", Word::TrRh},
        {"clmgf", Word::ClMgf}, {"clmrg", Word::ClMrg}, {"clvmgf", Word::ClVmgf}, {"clvmrg", Word::ClVmrg}, {"ql", Word::Ql}, {"qc", Word::Qc}, {"qr", Word::Qr}, {"qj", Word::Qj},
        {"li", Word::Li}, {"ri", Word::Ri}, {"fi", Word::Fi}, {"sb", Word::Sb}, {"sa", Word::Sa},
        {"sl", Word::Sl}, {"slmult", Word::SlMult}, {"tx", Word::Tx}, {"intbl", Word::Intbl},
        {"ls", Word::Ls}, {"ilvl", Word::Ilvl}, {"kvlinerule", Word::KvLineRule},
        {"kvbulletindent", Word::KvBulletIndent},
        {"itap", Word::Itap}, {"trgaph", Word::TrGaph}, {"trpaddl", Word::TrPaddL}, {"trpaddt", Word::TrPaddT},
        {"trpaddb", Word::TrPaddB}, {"trpaddr", Word::TrPaddR}, {"trpaddfl", Word::TrPaddFL},
        {"trpaddft", Word::TrPaddFT}, {"trpaddfb", Word::TrPaddFB}, {"trpaddfr", Word::TrPaddFR},
        {"trql", Word::TrQl}, {"trqc", Word::TrQc}, {"trqr", Word::TrQr}, {"clpadl", Word::ClPadL},
        {"clpadt", Word::ClPadT}, {"clpadb", Word::ClPadB}, {"clpadr", Word::ClPadR}, {"clpadfl", Word::ClPadFL},
        {"clpadft", Word::ClPadFT}, {"clpadfb", Word::ClPadFB}, {"clpadfr", Word::ClPadFR},
        {"clvertalt", Word::ClVertAlT}, {"clvertalc", Word::ClVertAlC}, {"clvertalb", Word::ClVertAlB},
        {"clcbpat", Word::ClCbPat}, {"clcfpat", Word::ClCfPat}, {"clshdng", Word::ClShdng},
        {"clbrdrt", Word::ClBrdrT}, {"clbrdrl", Word::ClBrdrL}, {"clbrdrb", Word::ClBrdrB}, {"clbrdrr", Word::ClBrdrR},
        {"trbrdrt", Word::TrBrdrT}, {"trbrdrl", Word::TrBrdrL}, {"trbrdrb", Word::TrBrdrB}, {"trbrdrr", Word::TrBrdrR},
        {"trbrdrh", Word::TrBrdrH}, {"trbrdrv", Word::TrBrdrV}, {"cldgll", Word::ClDiagonal}, {"cldglu", Word::ClDiagonal},
        // What readers without nested tables read instead of them: dropped like other
        // stand-ins for constructs the reader knows.
        {"nonesttables", Word::NonShpPict},
        {"pnlvlblt", Word::PnLvlBlt}, {"pnlvlbody", Word::PnLvlBody}, {"pnlvlcont", Word::PnLvlCont},
        {"pnlvl", Word::PnLvl}, {"pndec", Word::PnDec}, {"pnucltr", Word::PnUcLtr},
        {"pnlcltr", Word::PnLcLtr}, {"pnucrm", Word::PnUcRm}, {"pnlcrm", Word::PnLcRm},
        {"pnstart", Word::PnStart}, {"pnindent", Word::PnIndent},
        {"listid", Word::ListId}, {"levelnfc", Word::LevelNfc}, {"levelnfcn", Word::LevelNfcN},
        {"levelstartat", Word::LevelStartAt},
        {"par", Word::Par}, {"line", Word::Line}, {"tab", Word::Tab}, {"cell", Word::Cell},
        {"nestcell", Word::NestCell}, {"row", Word::Row}, {"nestrow", Word::NestRow},
        {"page", Word::Page}, {"sect", Word::Sect}, {"column", Word::Column},
        {"pagebb", Word::PageBb}, {"sbknone", Word::SbkNone}, {"sbkcol", Word::SbkNone},
        {"chftn", Word::ChFtn}, {"chatn", Word::ChAtn}, {"ftnalt", Word::FtnAlt}, {"emdash", Word::EmDash}, {"endash", Word::EnDash}, {"lquote", Word::LQuote},
        {"rquote", Word::RQuote}, {"ldblquote", Word::LDblQuote}, {"rdblquote", Word::RDblQuote},
        {"bullet", Word::Bullet}, {"emspace", Word::EmSpace}, {"enspace", Word::EnSpace},
        {"qmspace", Word::QmSpace}, {"zwj", Word::Zwj}, {"zwnj", Word::Zwnj},
        {"ltrmark", Word::LtrMark}, {"rtlmark", Word::RtlMark}, {"kvlink", Word::KvLink},
        {"pngblip", Word::PngBlip}, {"jpegblip", Word::JpegBlip}, {"emfblip", Word::PictKind},
        {"wmetafile", Word::PictKind}, {"dibitmap", Word::PictKind}, {"wbitmap", Word::PictKind},
        {"pmmetafile", Word::PictKind}, {"picw", Word::PicW}, {"pich", Word::PicH},
        {"picwgoal", Word::PicWGoal}, {"pichgoal", Word::PicHGoal}, {"picscalex", Word::PicScaleX},
        {"picscaley", Word::PicScaleY}, {"wbmbitspixel", Word::PictParam},
        {"wbmplanes", Word::PictParam}, {"wbmwidthbytes", Word::PictParam}, {"picbmp", Word::PictParam},
        {"picbpp", Word::PictParam},
        // character effects and styles
        {"caps", Word::Caps}, {"scaps", Word::Scaps}, {"outl", Word::Outl}, {"shad", Word::Shad},
        {"expnd", Word::Expnd}, {"expndtw", Word::ExpndTw}, {"s", Word::S}, {"cs", Word::Cs},
        // tab kinds and leaders
        {"tqr", Word::Tqr}, {"tqc", Word::Tqc}, {"tqdec", Word::Tqdec}, {"tldot", Word::TlDot},
        {"tlmdot", Word::TlMdot}, {"tlhyph", Word::TlHyph}, {"tlul", Word::TlUl}, {"tlth", Word::TlTh},
        {"tleq", Word::TlEq},
        // paragraph borders and shading; the border words of other owners end a paragraph's
        {"brdrt", Word::BrdrT}, {"brdrb", Word::BrdrB}, {"brdrl", Word::BrdrL}, {"brdrr", Word::BrdrR},
        {"box", Word::Box}, {"brdrbtw", Word::BrdrBtw}, {"brdrbar", Word::BrdrOther},
        {"chbrdr", Word::BrdrOther}, {"pgbrdrt", Word::BrdrOther},
        {"pgbrdrb", Word::BrdrOther}, {"pgbrdrl", Word::BrdrOther}, {"pgbrdrr", Word::BrdrOther},
        {"brdrw", Word::BrdrW}, {"brdrcf", Word::BrdrCf}, {"brsp", Word::BrSp},
        {"shading", Word::Shading}, {"cfpat", Word::CfPat}, {"cbpat", Word::CbPat},
        // page setup
        {"paperw", Word::PaperW}, {"paperh", Word::PaperH}, {"margl", Word::MargL}, {"margr", Word::MargR},
        {"margt", Word::MargT}, {"margb", Word::MargB}, {"landscape", Word::Landscape},
        {"pgwsxn", Word::PgWSxn}, {"pghsxn", Word::PgHSxn}, {"marglsxn", Word::MargLSxn},
        {"margrsxn", Word::MargRSxn}, {"margtsxn", Word::MargTSxn}, {"margbsxn", Word::MargBSxn},
        {"lndscpsxn", Word::LndscpSxn},
    };
    // The border styles: one word each, told apart by their place in borderStyleWords().
    for (int i = 0; i < borderStyleCount(); ++i)
        table.emplace(borderStyleWords()[i], Word::BrdrStyle);
    return table;
}

// The control words in an open-addressed table four times their number: finding a word, which
// the reader does for every word it meets, hashes its few bytes once and compares one or two
// names.
class WordIndex {
public:
    explicit WordIndex(const std::unordered_map<std::string_view, Word> &words)
    {
        size_t size = 64;
        while (size < words.size() * 4)
            size *= 2;
        m_mask = size - 1;
        m_slots.resize(size);
        for (const auto &[name, word] : words) {
            size_t i = hash(name) & m_mask;
            while (m_slots[i].word != Word::Unknown)
                i = (i + 1) & m_mask;
            m_slots[i] = {name, word};
        }
    }

    // The name's hash is worked out a byte at a time (FNV-1a) while the name is scanned.
    static constexpr quint32 kHashSeed = 2166136261u;
    static quint32 hashStep(quint32 hash, unsigned char c) { return (hash ^ c) * 16777619u; }

    // The kind of the word \a name whose hash is \a hash.
    Word find(std::string_view name, quint32 hash) const
    {
        for (size_t i = hash & m_mask;; i = (i + 1) & m_mask) {
            const Slot &slot = m_slots[i];
            if (slot.word == Word::Unknown || slot.name == name)
                return slot.word;
        }
    }

private:
    static quint32 hash(std::string_view name)
    {
        quint32 h = kHashSeed;
        for (const char c : name)
            h = hashStep(h, quint8(c));
        return h;
    }

    struct Slot {
        std::string_view name;
        Word word = Word::Unknown;
    };
    std::vector<Slot> m_slots;
    size_t m_mask = 0;
};

const WordIndex &wordIndex()
{
    static const WordIndex index(wordList());
    return index;
}

} // namespace

void Reader::run(const QByteArray &bytes)
{
    m_p = bytes.constData();
    m_end = m_p + bytes.size();
    m_stack.reserve(64);
    m_stack.emplace_back();
    m_stack.back().dest = Dest::Skip; // text before the outer group is not part of the document
    parse();
    // A file that ends inside groups is read as if they were closed.
    flushText();
    while (m_stack.size() > 1 && m_started) {
        const GroupState closing = m_stack.back();
        m_stack.pop_back();
        finishDestination(closing);
        if (m_stack.size() == 1)
            m_documentPara = closing.para;
    }
    while (!m_tables.empty())
        leaveTable();
    placeParagraphEndBookmarks();
    // The last paragraph keeps its properties; a final \par with nothing after it ends the
    // document's last paragraph rather than starting an empty one.
    if (m_endsDocument && !m_paragraphHasContent && m_lastWasPar && m_parCount > 0) {
        const QByteArray kept = m_cursor.block().previous().blockFormat().property(KeptParagraphGroups).toByteArray()
                                + m_keptParagraph;
        m_cursor.deletePreviousChar();
        if (!kept.isEmpty()) {
            QTextBlockFormat format;
            format.setProperty(KeptParagraphGroups, kept);
            m_cursor.mergeBlockFormat(format);
        }
    } else {
        // A last paragraph with text has the properties in effect at the document's end, which
        // the document's own group held.
        applyParagraph(m_started && m_stack.size() == 1 && m_paragraphHasContent ? m_documentPara : top().para);
    }
    insertPendingNotes();
    if (m_endsDocument)
        storePageSetup();
    if (m_endsDocument && !m_keptDocument.isEmpty()) {
        QTextFrameFormat root = m_doc.rootFrame()->frameFormat();
        root.setProperty(KeptDocumentGroups, m_keptDocument);
        m_doc.rootFrame()->setFrameFormat(root);
    }
}

void Reader::parse()
{
    const WordIndex &words = wordIndex();
    while (m_p < m_end && !m_finished) {
        const char c = *m_p;
        if (top().dest == Dest::Skip && m_started) {
            skipGroup();
            continue;
        }
        switch (c) {
        case '{':
            ++m_p;
            openGroup();
            break;
        case '}':
            ++m_p;
            closeGroup();
            break;
        case '\\': {
            ++m_p;
            if (m_p >= m_end)
                break;
            const char d = *m_p;
            if ((d >= 'a' && d <= 'z') || (d >= 'A' && d <= 'Z')) {
                const char *nameStart = m_p;
                const char *nameLimit = std::min(m_end, m_p + 32);
                quint32 hash = WordIndex::kHashSeed;
                while (m_p < nameLimit) {
                    const auto letter = static_cast<unsigned char>(*m_p);
                    if (unsigned((letter | 0x20) - 'a') >= 26)
                        break; // not an ASCII letter
                    hash = WordIndex::hashStep(hash, letter);
                    ++m_p;
                }
                const std::string_view name(nameStart, size_t(m_p - nameStart));
                bool hasParam = false;
                bool negative = false;
                long long value = 0;
                if (m_p < m_end && *m_p == '-' && m_p + 1 < m_end && m_p[1] >= '0' && m_p[1] <= '9') {
                    negative = true;
                    ++m_p;
                }
                int digits = 0;
                while (m_p < m_end && *m_p >= '0' && *m_p <= '9') {
                    if (digits < 10)
                        value = value * 10 + (*m_p - '0');
                    ++digits;
                    hasParam = true;
                    ++m_p;
                }
                if (m_p < m_end && *m_p == ' ')
                    ++m_p;
                value = std::clamp(value, 0LL, 2147483647LL);
                const int param = negative ? -int(value) : int(value);
                const Word word = words.find(name, hash);
                if (!m_started) {
                    if (word == Word::Rtf && m_stack.size() == 2) {
                        m_started = true;
                        top().dest = Dest::Text;
                    }
                    break;
                }
                controlWord(word, name, hasParam, param);
            } else {
                ++m_p;
                if (!m_started)
                    break;
                switch (d) {
                case '\'': {
                    int value = 0;
                    int count = 0;
                    while (count < 2 && m_p < m_end && std::isxdigit(static_cast<unsigned char>(*m_p))) {
                        const char h = *m_p;
                        value = value * 16 + (h <= '9' ? h - '0' : (h | 0x20) - 'a' + 10);
                        ++m_p;
                        ++count;
                    }
                    if (count > 0)
                        addByte(static_cast<unsigned char>(value));
                    break;
                }
                case '\\':
                case '{':
                case '}': {
                    const char s = d;
                    addAscii(&s, 1);
                    break;
                }
                case '~': if (!consumeUnicodeSkip()) addChar(0x00A0); break;
                case '-': if (!consumeUnicodeSkip()) addChar(0x00AD); break;
                case '_': if (!consumeUnicodeSkip()) addChar(0x2011); break;
                case '*': top().star = true; break;
                case '\r':
                case '\n': controlWord(Word::Par, "par", false, 0); break;
                case '\t': controlWord(Word::Tab, "tab", false, 0); break;
                default: consumeUnicodeSkip(); break;
                }
            }
            break;
        }
        case '\r':
        case '\n':
            ++m_p;
            break;
        default: {
            const char *start = m_p;
            while (m_p < m_end && *m_p != '{' && *m_p != '}' && *m_p != '\\' && *m_p != '\r' && *m_p != '\n'
                   && static_cast<unsigned char>(*m_p) < 0x80)
                ++m_p;
            if (m_p == start) {
                if (static_cast<unsigned char>(*m_p) >= 0x80) {
                    if (m_started)
                        addByte(static_cast<unsigned char>(*m_p));
                    ++m_p;
                }
            } else if (m_started) {
                addAscii(start, int(m_p - start));
            }
            break;
        }
        }
    }
}

void Reader::skipGroup()
{
    // Skips the rest of the current group, nested groups included, without building state.
    int depth = 1;
    while (m_p < m_end) {
        const char c = *m_p++;
        if (c == '{') {
            ++depth;
        } else if (c == '}') {
            if (--depth == 0) {
                if (m_stack.size() > 1) {
                    const GroupState closing = m_stack.back();
                    if (closing.keep && closing.start)
                        keepGroupBytes(closing);
                    m_stack.pop_back();
                    finishDestination(closing);
                }
                return;
            }
        } else if (c == '\\' && m_p < m_end) {
            if (*m_p == 'b' && m_end - m_p >= 3 && m_p[1] == 'i' && m_p[2] == 'n'
                && (m_end - m_p == 3 || !std::isalpha(static_cast<unsigned char>(m_p[3])))) {
                m_p += 3;
                long long length = 0;
                while (m_p < m_end && *m_p >= '0' && *m_p <= '9') {
                    if (length < (1LL << 40))
                        length = length * 10 + (*m_p - '0');
                    ++m_p;
                }
                if (m_p < m_end && *m_p == ' ')
                    ++m_p;
                m_p += std::min<long long>(length, m_end - m_p);
            } else {
                ++m_p;
            }
        }
    }
}

} // namespace kvrtb::rtf::detail
