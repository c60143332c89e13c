#include "surface/rtf/rtfreader_p.h"

#include "surface/rtf/rtfnotes.h"

#include <algorithm>

namespace kvrtb::rtf::detail {

void Reader::openGroup()
{
    flushBytes();
    m_unicodeSkip = 0;
    if (int(m_stack.size()) >= kMaxDepth) {
        m_stack.push_back(top());
        m_stack.back().dest = Dest::Skip;
        m_stack.back().destRoot = false;
        return;
    }
    GroupState next = top();
    next.destRoot = false;
    next.star = false;
    next.opensField = false;
    next.opensObject = false;
    next.keep = false;
    next.start = m_p - 1;
    if (next.dest == Dest::Upr)
        next.dest = Dest::Ignore;
    if (next.dest == Dest::StyleSheet) {
        // A style's definition: its formats start from the defaults.
        next.dest = Dest::Style;
        next.destRoot = true;
        next.ch = CharState();
        next.para = ParaState();
        m_styleNumber = 0;
        m_styleIsCharacter = false;
    }
    m_stack.push_back(std::move(next));
}

void Reader::closeGroup()
{
    flushBytes();
    m_unicodeSkip = 0;
    if (m_stack.size() <= 1 || (m_inNote && m_stack.size() <= m_noteBase + 1))
        return;
    const GroupState closing = m_stack.back();
    m_stack.pop_back();
    finishDestination(closing);
    if (m_started && m_stack.size() == 1) {
        m_finished = true;
        m_documentPara = closing.para;
    }
}

void Reader::controlWord(Word word, std::string_view name, bool hasParam, int param)
{
    GroupState &state = top();
    if (state.star) {
        state.star = false;
        const bool knownDestination = word == Word::FldInst || word == Word::FldRslt || word == Word::Pict || word == Word::ShpPict
                                      || word == Word::PnDest || word == Word::ListTable
                                      || word == Word::ListOverrideTable || word == Word::Ud
                                      || word == Word::ListDest || word == Word::ListLevel
                                      || word == Word::KvLink || word == Word::NestTableProps
                                      || word == Word::Footnote || word == Word::Annotation
                                      || word == Word::AtnId || word == Word::AtnAuthor
                                      || word == Word::ShpInst || word == Word::ShpTxt
                                      || word == Word::BkmkStart || word == Word::BkmkEnd || word == Word::Cs;
        if (!knownDestination) {
            skipAndKeep(state);
            return;
        }
    }
    if (m_unicodeSkip > 0 && word != Word::Bin) {
        --m_unicodeSkip;
        return;
    }
    if (word == Word::Unknown) {
        // Picture description words we do not interpret are kept with the picture.
        if (state.dest == Dest::Pict && name.size() > 3 && name.substr(0, 3) == "pic")
            return;
        return;
    }
    if (word <= Word::SkipDest) {
        if (word == Word::Rtf)
            return;
        if (state.dest == Dest::Skip)
            return;
        handleDestinationWord(word);
        return;
    }
    const Dest dest = state.dest;
    // Words that change which code page decodes the next bytes end the bytes gathered so far.
    if (!m_bytes.isEmpty())
        flushBytes();
    // Border details (\brdrw, \brdrcf, a style word) describe the border named last: a cell's or
    // row's (\clbrdrt, \trbrdrl ...) or the paragraph's (\brdrt, \box ...).
    if (word >= Word::ClBrdrT && word <= Word::ClDiagonal)
        state.para.borderSide = -1;
    const bool borderDetail = word == Word::BrdrW || word == Word::BrdrCf || word == Word::BrdrStyle;
    if ((word >= Word::TrowD && word <= Word::ClVmrg) || (word >= Word::Itap && word <= Word::ClDiagonal)
        || (borderDetail && state.para.borderSide == -1)) {
        tableWord(word, name, hasParam, param);
        return;
    }
    const int value = hasParam ? param : 1;
    CharState &ch = state.ch;
    ParaState &para = state.para;
    switch (word) {
    case Word::Ansi: m_docCodePage = 1252; state.codePage = 1252; break;
    case Word::Mac: m_docCodePage = 10000; state.codePage = 10000; break;
    case Word::Pc: m_docCodePage = 437; state.codePage = 437; break;
    case Word::Pca: m_docCodePage = 850; state.codePage = 850; break;
    case Word::AnsiCpg:
        if (hasParam && param > 0) {
            m_docCodePage = param;
            state.codePage = param;
        }
        break;
    case Word::Deff: m_defaultFont = param; break;
    case Word::Uc: state.uc = quint8(std::clamp(param, 0, kMaxUnicodeSkip)); break;
    case Word::U: {
        const char16_t unit = char16_t(param < 0 ? param + 65536 : param);
        if (dest == Dest::LevelText) {
            m_levelBuild.text += '?';
            m_levelBuild.characters += QChar(unit);
        } else {
            addChar(unit);
        }
        m_unicodeSkip = state.uc;
        break;
    }
    case Word::Bin: {
        const long long length = std::min<long long>(std::max(0, param), m_end - m_p);
        if (dest == Dest::Pict)
            m_picture.data.append(m_p, qsizetype(length));
        m_p += length;
        break;
    }
    case Word::F:
        if (dest == Dest::FontTable) {
            if (m_fontEntry >= 0 && m_fonts[m_fontEntry].name.isEmpty())
                m_fonts[m_fontEntry].name = m_fontName.trimmed();
            m_fontEntry = param;
            m_fonts[param] = FontEntry();
            m_fontName.clear();
        } else {
            ch.font = param;
            const auto font = m_fonts.constFind(param);
            state.codePage = font != m_fonts.constEnd() && font->codePage ? font->codePage : m_docCodePage;
        }
        break;
    case Word::FCharset:
        if (dest == Dest::FontTable && m_fontEntry >= 0 && m_fonts[m_fontEntry].codePage == 0)
            m_fonts[m_fontEntry].codePage = CodePageDecoder::codePageOfCharset(param);
        break;
    case Word::Cpg:
        if (dest == Dest::FontTable && m_fontEntry >= 0 && param > 0)
            m_fonts[m_fontEntry].codePage = param;
        break;
    case Word::Red: m_red = param; break;
    case Word::Green: m_green = param; break;
    case Word::Blue: m_blue = param; break;
    case Word::Plain: {
        const int link = ch.link;
        ch = CharState();
        ch.link = link;
        state.codePage = m_docCodePage;
        if (const auto font = m_fonts.constFind(m_defaultFont); font != m_fonts.constEnd() && font->codePage)
            state.codePage = font->codePage;
        break;
    }
    case Word::B: ch.bold = value != 0; break;
    case Word::I: ch.italic = value != 0; break;
    case Word::Ul: ch.underline = value ? QTextCharFormat::SingleUnderline : QTextCharFormat::NoUnderline; break;
    case Word::UlD: ch.underline = value ? QTextCharFormat::DotLine : QTextCharFormat::NoUnderline; break;
    case Word::UlDash: ch.underline = value ? QTextCharFormat::DashUnderline : QTextCharFormat::NoUnderline; break;
    case Word::UlDashD: ch.underline = value ? QTextCharFormat::DashDotLine : QTextCharFormat::NoUnderline; break;
    case Word::UlDashDD: ch.underline = value ? QTextCharFormat::DashDotDotLine : QTextCharFormat::NoUnderline; break;
    case Word::UlWave: ch.underline = value ? QTextCharFormat::WaveUnderline : QTextCharFormat::NoUnderline; break;
    case Word::UlNone: ch.underline = QTextCharFormat::NoUnderline; break;
    case Word::Strike:
    case Word::StrikeD: ch.strike = value != 0; break;
    case Word::Cf: ch.color = std::max(0, param); break;
    case Word::Cb:
    case Word::Highlight:
    case Word::ChCbPat: ch.back = std::max(0, param); break;
    case Word::Fs: ch.halfPoints = hasParam && param > 0 ? std::min(param, 3276) : 24; break;
    case Word::Super: ch.script = value ? int(ScriptPosition::Superscript) : 0; break;
    case Word::Sub: ch.script = value ? int(ScriptPosition::Subscript) : 0; break;
    case Word::NoSuperSub: ch.script = 0; break;
    case Word::Up: ch.offset = (hasParam ? std::clamp(param, -32000, 32000) : 6) * 10; break;
    case Word::Dn: ch.offset = -(hasParam ? std::clamp(param, -32000, 32000) : 6) * 10; break;
    case Word::KvOffset: ch.offset = std::clamp(param, -320000, 320000); break;
    case Word::Protect: ch.protect = value != 0; break;
    case Word::Lang: ch.lang = std::max(0, param); break;
    case Word::V: break; // hidden text is kept as text, as other readers show it in their text
    case Word::Ab: ch.aBold = value != 0; break;
    case Word::Ai: ch.aItalic = value != 0; break;
    case Word::Af: if (!ch.afForRanges) ch.aFont = param; break;
    case Word::Afs: ch.aHalfPoints = hasParam && param > 0 ? std::min(param, 3276) : 24; break;
    case Word::RtlCh:
    case Word::LtrCh: ch.afForRanges = 0; break;
    case Word::HiCh:
    case Word::DbCh:
    case Word::LoCh: ch.afForRanges = 1; break;
    case Word::RtlPar: para.rtl = true; break;
    case Word::LtrPar: para.rtl = false; break;

    case Word::Pard:
        para = ParaState();
        m_bodyStarted = m_bodyStarted || dest == Dest::Text;
        break;
    case Word::Ql: para.align = int(ParaAlignment::Left); break;
    case Word::Qc: para.align = int(ParaAlignment::Center); break;
    case Word::Qr: para.align = int(ParaAlignment::Right); break;
    case Word::Qj: para.align = int(ParaAlignment::Justify); break;
    case Word::Li: para.li = param; break;
    case Word::Ri: para.ri = param; break;
    case Word::Fi: para.fi = param; break;
    case Word::Sb: para.sb = param; break;
    case Word::Sa: para.sa = param; break;
    case Word::Sl: para.sl = param; break;
    case Word::SlMult: para.slMult = value; break;
    case Word::KvLineRule: para.ruleOverride = param; break;
    case Word::KvBulletIndent: para.bulletIndent = param; break;
    case Word::Tx:
        if (para.tabs.size() < 64 && param >= 0) {
            // In order of position, each with the kind and leader words given before it.
            const qsizetype at = std::upper_bound(para.tabs.begin(), para.tabs.end(), param) - para.tabs.begin();
            para.tabs.insert(at, param);
            para.tabKinds.insert(at, para.nextTabKind);
        }
        para.nextTabKind = 0;
        break;
    case Word::Intbl: para.intbl = true; break;
    case Word::Ls:
        if (dest == Dest::ListOverride)
            m_overrideLs = param;
        else
            para.ls = std::max(0, param);
        break;
    case Word::Ilvl: para.ilvl = std::max(0, param); break;

    case Word::PnLvlBlt: m_pnBuild.numbering = int(Numbering::Bullet); break;
    case Word::PnLvlBody: break;
    case Word::PnLvlCont: m_pnBuild.style = int(NumberingStyle::NoNumber); break;
    case Word::PnLvl: m_pnBuild.level = std::clamp(param, 0, 9); break;
    case Word::PnDec: if (m_pnBuild.numbering != int(Numbering::Bullet)) m_pnBuild.numbering = int(Numbering::Arabic); break;
    case Word::PnUcLtr: m_pnBuild.numbering = int(Numbering::UpperLetter); break;
    case Word::PnLcLtr: m_pnBuild.numbering = int(Numbering::LowerLetter); break;
    case Word::PnUcRm: m_pnBuild.numbering = int(Numbering::UpperRoman); break;
    case Word::PnLcRm: m_pnBuild.numbering = int(Numbering::LowerRoman); break;
    case Word::PnStart: m_pnBuild.start = param; break;
    case Word::PnIndent:
        m_pnBuild.indent = param;
        break;

    case Word::ListId:
        if (dest == Dest::List && !m_lists.empty())
            m_lists.back().id = param;
        else if (dest == Dest::ListOverride)
            m_overrideListId = param;
        break;
    case Word::LevelNfc:
    case Word::LevelNfcN: m_levelBuild.nfc = param; break;
    case Word::LevelStartAt: m_levelBuild.start = param; break;

    case Word::Par:
        if (dest == Dest::Text)
            endParagraph(true);
        break;
    case Word::Page:
    case Word::Sect:
    case Word::Column:
        if (dest == Dest::Text)
            pageBreak(word != Word::Column);
        m_pastFirstSection = m_pastFirstSection || word == Word::Sect;
        break;
    case Word::SbkNone:
        // A section that continues on the same page (or column): its \sect broke no page.
        if (!m_paragraphHasContent)
            m_pageBreakPending = false;
        break;
    case Word::PageBb: para.pageBreakBefore = value != 0; break;
    case Word::NestCell:
    case Word::NestRow:
        if (dest == Dest::Text && m_inNote)
            endParagraph(true);
        else if (dest == Dest::Text && word == Word::NestCell)
            endCell(true);
        else if (dest == Dest::Text)
            endRow(true);
        break;
    case Word::Line: if (dest == Dest::Text) addChar(QChar::LineSeparator); break;
    case Word::Tab: addChar('\t'); break;
    case Word::Cell:
    case Word::Row:
        // Table words inside a note end its paragraph: the note is not part of the table.
        if (dest == Dest::Text && m_inNote)
            endParagraph(true);
        else if (dest == Dest::Text && word == Word::Cell)
            endCell(false);
        else if (dest == Dest::Text)
            endRow(false);
        break;
    case Word::ChFtn:
    case Word::ChAtn:
        if (dest == Dest::Text)
            addNoteMark(word == Word::ChAtn);
        break;
    case Word::FtnAlt:
        if (m_inNote && m_noteKind == int(NoteKind::Footnote))
            m_noteKind = int(NoteKind::Endnote);
        break;
    case Word::EmDash: addChar(0x2014); break;
    case Word::EnDash: addChar(0x2013); break;
    case Word::LQuote: addChar(0x2018); break;
    case Word::RQuote: addChar(0x2019); break;
    case Word::LDblQuote: addChar(0x201C); break;
    case Word::RDblQuote: addChar(0x201D); break;
    case Word::Bullet: addChar(0x2022); break;
    case Word::EmSpace: addChar(0x2003); break;
    case Word::EnSpace: addChar(0x2002); break;
    case Word::QmSpace: addChar(0x2005); break;
    case Word::Zwj: addChar(0x200D); break;
    case Word::Zwnj: addChar(0x200C); break;
    case Word::LtrMark: addChar(0x200E); break;
    case Word::RtlMark: addChar(0x200F); break;

    case Word::KvLink:
        if (!m_fieldOfGroup.empty())
            m_fields[size_t(m_fieldOfGroup.back())].flags = param;
        state.dest = Dest::Skip;
        break;

    case Word::PngBlip:
    case Word::JpegBlip:
    case Word::PictKind:
    case Word::PictParam:
    case Word::PicW:
    case Word::PicH:
        // Words that describe the picture's kind and native size are kept to write it back.
        if (dest == Dest::Pict) {
            m_picture.header += '\\';
            m_picture.header += QByteArray(name.data(), qsizetype(name.size()));
            if (word == Word::PngBlip || word == Word::JpegBlip)
                m_picture.image = true;
            else if (hasParam)
                m_picture.header += QByteArray::number(param);
            if (word == Word::PicW)
                m_picture.picW = std::max(0, param);
            else if (word == Word::PicH)
                m_picture.picH = std::max(0, param);
        }
        break;
    case Word::PicWGoal: if (dest == Dest::Pict) m_picture.goalW = std::max(0, param); break;
    case Word::PicHGoal: if (dest == Dest::Pict) m_picture.goalH = std::max(0, param); break;
    case Word::PicScaleX: if (dest == Dest::Pict) m_picture.scaleX = param; break;
    case Word::PicScaleY: if (dest == Dest::Pict) m_picture.scaleY = param; break;
    default:
        formatWord(word, name, hasParam, param);
        break;
    }
}

} // namespace kvrtb::rtf::detail
