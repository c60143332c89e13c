#include "surface/rtf/rtfreader_p.h"

#include "surface/rtf/rtfkept.h"
#include "surface/rtf/rtflisttable.h"
#include "surface/rtf/rtfnotes.h"
#include "surface/rtf/rtfpicture.h"

#include <QCryptographicHash>
#include <QSet>
#include <QTextCursor>
#include <QTextDocument>
#include <QUrl>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <optional>

namespace kvrtb::rtf::detail {

namespace {

// The address of a HYPERLINK field instruction ("HYPERLINK "url" \o "tip"", "HYPERLINK \l
// "place""), or an empty optional when the field is of another kind.
std::optional<QString> hyperlinkAddress(const QString &instruction)
{
    const QString text = instruction.trimmed();
    if (!text.startsWith(QLatin1String("HYPERLINK"), Qt::CaseInsensitive))
        return std::nullopt;
    QString address;
    QString fragment;
    int i = 9;
    const int n = int(text.size());
    bool local = false;
    while (i < n) {
        const QChar c = text[i];
        if (c.isSpace()) {
            ++i;
            continue;
        }
        if (c == QLatin1Char('\\')) {
            // A switch: \l takes the next argument as the place in the document; others
            // (\o tip, \t target, \m, \n) are skipped with their argument.
            const QChar sw = i + 1 < n ? text[i + 1] : QChar();
            i += 2;
            local = sw == QLatin1Char('l');
            const bool takesArgument = sw == QLatin1Char('l') || sw == QLatin1Char('o') || sw == QLatin1Char('t');
            if (!takesArgument)
                continue;
            while (i < n && text[i].isSpace())
                ++i;
        }
        QString argument;
        if (i < n && text[i] == QLatin1Char('"')) {
            ++i;
            while (i < n && text[i] != QLatin1Char('"')) {
                if (text[i] == QLatin1Char('\\') && i + 1 < n
                    && (text[i + 1] == QLatin1Char('\\') || text[i + 1] == QLatin1Char('"')))
                    ++i;
                argument += text[i++];
            }
            ++i;
        } else {
            while (i < n && !text[i].isSpace())
                argument += text[i++];
        }
        if (local) {
            fragment = argument;
            local = false;
        } else if (address.isEmpty() && !argument.startsWith(QLatin1Char('\\'))) {
            address = argument;
        }
    }
    if (!fragment.isEmpty())
        address += QLatin1Char('#') + fragment;
    return address;
}

// Fields whose result is a short run of text (a page number, a date, a document property, a
// reference) keep their instruction with that text; fields whose result is built of
// paragraphs or other fields (a table of contents, an index) are shown by their result alone.
bool keepsInstruction(const QString &instruction)
{
    static const QSet<QString> kinds{
        QStringLiteral("PAGE"), QStringLiteral("NUMPAGES"), QStringLiteral("SECTIONPAGES"), QStringLiteral("SECTION"),
        QStringLiteral("DATE"), QStringLiteral("TIME"), QStringLiteral("CREATEDATE"), QStringLiteral("SAVEDATE"),
        QStringLiteral("PRINTDATE"), QStringLiteral("EDITTIME"), QStringLiteral("AUTHOR"), QStringLiteral("LASTSAVEDBY"),
        QStringLiteral("TITLE"), QStringLiteral("SUBJECT"), QStringLiteral("KEYWORDS"), QStringLiteral("COMMENTS"),
        QStringLiteral("FILENAME"), QStringLiteral("FILESIZE"), QStringLiteral("NUMWORDS"), QStringLiteral("NUMCHARS"),
        QStringLiteral("REVNUM"), QStringLiteral("TEMPLATE"), QStringLiteral("USERNAME"), QStringLiteral("USERINITIALS"),
        QStringLiteral("DOCPROPERTY"), QStringLiteral("DOCVARIABLE"), QStringLiteral("INFO"), QStringLiteral("REF"),
        QStringLiteral("PAGEREF"), QStringLiteral("NOTEREF"), QStringLiteral("STYLEREF"), QStringLiteral("SEQ"),
        QStringLiteral("MERGEFIELD"), QStringLiteral("QUOTE"), QStringLiteral("LISTNUM"),
    };
    const QString kind = instruction.trimmed().section(QLatin1Char(' '), 0, 0).toUpper();
    return kinds.contains(kind);
}

} // namespace

void Reader::finishDestination(const GroupState &closing)
{
    if (closing.opensObject && !m_objectShown && closing.start && top().dest == Dest::Text) {
        // An object that shows nothing is kept with its paragraph (rtfkept.h).
        (!m_bodyStarted && m_parCount == 0 && !m_inNote ? m_keptDocument : m_keptParagraph)
            .append(closing.start, qsizetype(m_p - closing.start));
    }
    if (closing.opensField && !m_fieldOfGroup.empty()) {
        const FieldEntry field = m_fields[size_t(m_fieldOfGroup.back())];
        m_fieldOfGroup.pop_back();
        if (!field.fallback.isEmpty() && field.textMark == m_textCount && top().dest == Dest::Text)
            addString(field.fallback);
    }
    if (!closing.destRoot)
        return;
    const Dest parentDest = top().dest;
    switch (closing.dest) {
    case Dest::FontTable:
        if (m_fontEntry >= 0) {
            // An entry whose name had no closing ";".
            FontEntry &font = m_fonts[m_fontEntry];
            if (font.name.isEmpty())
                font.name = m_fontName.trimmed();
            m_fontEntry = -1;
        }
        break;
    case Dest::ColorTable:
        break;
    case Dest::FieldInst:
        if (!m_fieldOfGroup.empty()) {
            FieldEntry &field = m_fields[size_t(m_fieldOfGroup.back())];
            field.instruction += m_destText;
            if (const auto address = hyperlinkAddress(field.instruction)) {
                field.hyperlink = true;
                field.address = *address;
            }
            if (field.flags & 2)
                field.address.clear();
            const QString instruction = field.instruction.trimmed();
            if (instruction.startsWith(QLatin1String("SYMBOL"), Qt::CaseInsensitive)) {
                const int symbol = instruction.mid(6).trimmed().section(QLatin1Char(' '), 0, 0).toInt();
                if (symbol > 0 && symbol < 0xFFFF)
                    field.fallback = QChar(char16_t(symbol));
            } else if (instruction.startsWith(QLatin1String("MACROBUTTON"), Qt::CaseInsensitive)) {
                // "MACROBUTTON name prompt text": the prompt is what the user sees.
                field.fallback = instruction.mid(11).trimmed().section(QLatin1Char(' '), 1).trimmed();
            }
        }
        m_destText.clear();
        break;
    case Dest::Pict:
        if (parentDest == Dest::Text || parentDest == Dest::Ignore)
            insertPicture(m_picture);
        m_picture = PictureBuild();
        break;
    case Dest::Pn:
        // A middle dot is the Symbol font's bullet, the font old writers give it in.
        m_pnBullet = m_pnBuild.numbering == int(Numbering::Bullet) ? QString(m_pnBefore).remove(QLatin1Char('(')).trimmed() : QString();
        if (m_pnBullet == QStringLiteral("\u00b7"))
            m_pnBullet = QStringLiteral("\u2022");
        top().para.pn = m_pnBuild;
        top().para.bulletIndent = m_pnBuild.indent;
        if (m_pnBuild.numbering != int(Numbering::Bullet) && m_pnBuild.style != int(NumberingStyle::NoNumber)) {
            const bool close = m_pnAfter.contains(QLatin1Char(')'));
            if (close && m_pnBefore.contains(QLatin1Char('(')))
                top().para.pn.style = int(NumberingStyle::Parens);
            else if (close)
                top().para.pn.style = int(NumberingStyle::RightParen);
            else if (m_pnAfter.contains(QLatin1Char('.')))
                top().para.pn.style = int(NumberingStyle::Period);
            else
                top().para.pn.style = int(NumberingStyle::Plain);
        } else if (m_pnBuild.numbering == int(Numbering::Bullet) && m_pnBuild.style != int(NumberingStyle::NoNumber)) {
            const bool close = m_pnAfter.contains(QLatin1Char(')'));
            if (close)
                top().para.pn.style = int(m_pnBefore.contains(QLatin1Char('(')) ? NumberingStyle::Parens : NumberingStyle::RightParen);
            else if (m_pnAfter.contains(QLatin1Char(' ')))
                top().para.pn.style = int(NumberingStyle::Plain);
            else
                top().para.pn.style = int(NumberingStyle::Period);
        }
        break;
    case Dest::PnTextBefore:
        m_pnBefore += m_destText;
        m_destText.clear();
        break;
    case Dest::PnTextAfter:
        m_pnAfter += m_destText;
        m_destText.clear();
        break;
    case Dest::ShapeName:
    case Dest::AtnId:
    case Dest::AtnAuthor:
        (closing.dest == Dest::ShapeName ? m_shapeProperty : closing.dest == Dest::AtnId ? m_atnId : m_atnAuthor) =
            m_destText.trimmed();
        m_destText.clear();
        break;
    case Dest::ListLevel:
        m_levelBuild.bullet = rtf::bulletOfLevel(m_levelBuild.characters, m_fonts.value(closing.ch.font).name);
        if (!m_lists.empty())
            m_lists.back().levels.push_back(m_levelBuild);
        m_levelBuild = ListLevelDef();
        break;
    case Dest::ListOverride:
        if (m_overrideLs > 0)
            m_overrideToList.insert(m_overrideLs, m_overrideListId);
        m_overrideLs = 0;
        m_overrideListId = 0;
        break;
    case Dest::StyleSheet:
    case Dest::Style:
    case Dest::Bookmark:
        finishFormatDestination(closing);
        break;
    default:
        break;
    }
}

void Reader::addToDestination(const QString &s)
{
    switch (top().dest) {
    case Dest::FontTable: {
        for (const QChar c : s) {
            if (c == QLatin1Char(';')) {
                if (m_fontEntry >= 0) {
                    m_fonts[m_fontEntry].name = m_fontName.trimmed();
                    m_fontEntry = -1;
                }
                m_fontName.clear();
            } else {
                m_fontName += c;
            }
        }
        break;
    }
    case Dest::ColorTable:
        for (const QChar c : s) {
            if (c != QLatin1Char(';'))
                continue;
            if (m_red < 0 && m_green < 0 && m_blue < 0)
                m_colours.push_back(kAutoColour);
            else
                m_colours.push_back(Colour(std::clamp(m_red, 0, 255) | (std::clamp(m_green, 0, 255) << 8)
                                           | (std::clamp(m_blue, 0, 255) << 16)));
            m_red = m_green = m_blue = -1;
        }
        break;
    case Dest::FieldInst:
    case Dest::PnTextBefore:
    case Dest::PnTextAfter:
    case Dest::AtnId:
    case Dest::AtnAuthor:
    case Dest::ShapeName:
    case Dest::Bookmark:
        m_destText += s;
        break;
    default:
        break;
    }
}

void Reader::insertPicture(const PictureBuild &picture)
{
    if (picture.data.isEmpty())
        return;
    flushText();
    ensureTableState();
    const QByteArray hash = QCryptographicHash::hash(picture.data, QCryptographicHash::Sha1).toHex();
    const QString name = QLatin1String(kPictureResourcePrefix) + QString::fromLatin1(hash);
    m_doc.addResource(QTextDocument::ImageResource, QUrl(name), QVariant(picture.data));
    QTextImageFormat image;
    image.merge(formatFor(top().ch));
    image.setObjectType(QTextFormat::ImageObject);
    image.setName(name);
    image.setProperty(PictureHeader, picture.header);
    double width = 0;
    double height = 0;
    if (picture.goalW > 0 && picture.goalH > 0) {
        width = picture.goalW / 15.0;
        height = picture.goalH / 15.0;
    } else if (picture.image) {
        width = picture.picW;
        height = picture.picH;
    } else {
        // Metafile sizes are in hundredths of a millimetre.
        width = picture.picW * 96.0 / 2540.0;
        height = picture.picH * 96.0 / 2540.0;
    }
    width = width * std::clamp(picture.scaleX, 1, 1000) / 100.0;
    height = height * std::clamp(picture.scaleY, 1, 1000) / 100.0;
    if (width > 0 && height > 0) {
        image.setWidth(width);
        image.setHeight(height);
    }
    m_cursor.insertText(QString(QChar::ObjectReplacementCharacter), image);
    m_paragraphHasContent = true;
    m_lastWasPar = false;
}

namespace {

// The start of the first embedded object in the group whose contents run from \a p: its bytes
// up to its result ("{\object...{\*\objdata ...}"), as the object is kept; empty when the group
// holds no object with a result, or binary data that a byte scan cannot step over.
QByteArray objectBeforeResultIn(const char *p, const char *end)
{
    static const QByteArray object = "{\\object";
    static const QByteArray result = "{\\result";
    const auto wordAt = [end](const char *at, const QByteArray &word) {
        return end - at > word.size() && std::memcmp(at, word.constData(), size_t(word.size())) == 0
               && !std::isalpha(static_cast<unsigned char>(at[word.size()]));
    };
    int depth = 1;
    int objectDepth = -1;
    const char *objectStart = nullptr;
    for (; p < end; ++p) {
        if (*p == '\\') {
            if (end - p > 3 && std::memcmp(p + 1, "bin", 3) == 0)
                return QByteArray();
            ++p;
        } else if (*p == '{') {
            if (!objectStart && wordAt(p, object)) {
                objectStart = p;
                objectDepth = depth;
            } else if (objectStart && depth == objectDepth + 1 && wordAt(p, result)) {
                return QByteArray(objectStart, qsizetype(p - objectStart));
            }
            ++depth;
        } else if (*p == '}') {
            if (--depth == 0 || (objectStart && depth == objectDepth))
                return QByteArray();
        }
    }
    return QByteArray();
}

} // namespace

void Reader::keepObjectOfPictureFrame()
{
    // A picture frame shows its picture, and its text box is not read. Word processors put the
    // embedded object the picture shows in that text box: its class and data go with the
    // picture shown, so that writing the picture writes the object around it.
    const int at = m_cursor.position() - 1;
    if (at < m_shapePictureAt || m_doc.characterAt(at) != QChar::ObjectReplacementCharacter)
        return;
    const QByteArray kept = objectBeforeResultIn(m_p, m_end);
    if (kept.isEmpty())
        return;
    QTextCursor picture(&m_doc);
    picture.setPosition(at);
    picture.setPosition(at + 1, QTextCursor::KeepAnchor);
    if (!picture.charFormat().isImageFormat() || picture.charFormat().hasProperty(KeptObjectGroup))
        return;
    QTextCharFormat object;
    object.setProperty(KeptObjectGroup, kept);
    picture.mergeCharFormat(object);
}

void Reader::handleDestinationWord(Word word)
{
    GroupState &state = top();
    auto open = [&](Dest dest) {
        flushText();
        state.dest = dest;
        state.destRoot = true;
        m_destText.clear();
    };
    switch (word) {
    case Word::FontTbl: open(Dest::FontTable); m_fontEntry = -1; m_fontName.clear(); break;
    case Word::ColorTbl: open(Dest::ColorTable); m_colours.clear(); m_red = m_green = m_blue = -1; m_builtParagraphs.clear(); break;
    case Word::Field:
        flushText();
        m_fields.push_back(FieldEntry());
        m_fields.back().textMark = m_textCount;
        m_fieldOfGroup.push_back(int(m_fields.size()) - 1);
        state.opensField = true;
        state.dest = Dest::Ignore;
        break;
    case Word::FldInst: open(Dest::FieldInst); break;
    case Word::FldRslt: {
        state.dest = Dest::Text;
        int link = -1;
        if (!m_fieldOfGroup.empty()) {
            const FieldEntry &field = m_fields[size_t(m_fieldOfGroup.back())];
            if (field.hyperlink)
                link = m_fieldOfGroup.back();
        }
        // The result of another kind of field keeps the enclosing link, if any.
        if (link >= 0)
            state.ch.link = link;
        else if (!m_fieldOfGroup.empty() && keepsInstruction(m_fields[size_t(m_fieldOfGroup.back())].instruction))
            state.ch.field = m_fieldOfGroup.back();
        break;
    }
    case Word::Pict:
        open(Dest::Pict);
        m_picture = PictureBuild();
        break;
    case Word::NestTableProps:
        // Some writers close it only after the nested row's text, which is document text.
        state.nestedTableProps = true;
        [[fallthrough]];
    case Word::Result:
        if (m_stack.size() >= 2 && m_stack[m_stack.size() - 2].opensObject && state.start && state.dest == Dest::Ignore) {
            // What the object shows carries the rest of the object's group with it.
            const GroupState &object = m_stack[m_stack.size() - 2];
            flushText();
            m_objects.push_back(QByteArray(object.start, qsizetype(state.start - object.start)));
            state.ch.object = int(m_objects.size()) - 1;
            m_objectShown = true;
        }
        [[fallthrough]];
    case Word::ShpPict:
    case Word::Ud:
        if (state.dest == Dest::Ignore || state.dest == Dest::Upr)
            state.dest = Dest::Text;
        break;
    case Word::Object:
        flushRun();
        state.dest = Dest::Ignore;
        state.opensObject = true;
        m_objectShown = false;
        break;
    case Word::PnDest:
        open(Dest::Pn);
        m_pnBuild = PnState();
        m_pnBuild.numbering = int(Numbering::Arabic);
        m_pnBuild.style = int(NumberingStyle::Plain);
        m_pnBefore.clear();
        m_pnAfter.clear();
        break;
    case Word::PnTxtA: open(Dest::PnTextAfter); break;
    case Word::PnTxtB: open(Dest::PnTextBefore); break;
    case Word::ListTable: open(Dest::ListTable); break;
    case Word::ListDest:
        open(Dest::List);
        m_lists.push_back(ListDef());
        break;
    case Word::ListLevel: open(Dest::ListLevel); m_levelBuild = ListLevelDef(); break;
    case Word::LevelText: open(Dest::LevelText); m_levelBuild.text.clear(); break;
    case Word::ListOverrideTable: open(Dest::ListOverrideTable); break;
    case Word::ListOverride: open(Dest::ListOverride); break;
    case Word::Upr: flushRun(); state.dest = Dest::Upr; break;
    case Word::Footnote: beginNote(int(NoteKind::Footnote)); break;
    case Word::Annotation: beginNote(int(NoteKind::Annotation)); break;
    case Word::AtnId: open(Dest::AtnId); break;
    case Word::AtnAuthor: open(Dest::AtnAuthor); break;
    // Shapes: the text of a text box and the picture that fills a shape are shown inline, where
    // the shape is anchored; other properties, and the result written for readers that do not
    // know shapes, are not. A picture frame shows its picture only.
    case Word::ShpInst:
        m_shapePicture = false;
        [[fallthrough]];
    case Word::Sp:
        flushText();
        if (state.dest == Dest::Text || state.dest == Dest::Ignore)
            state.dest = Dest::Ignore;
        break;
    case Word::Sn: open(Dest::ShapeName); break;
    case Word::Sv:
        flushText();
        if (m_shapeProperty == QLatin1String("pib") && state.dest == Dest::Ignore) {
            m_shapePicture = true;
            m_shapePictureAt = m_cursor.position();
        } else {
            state.dest = Dest::Skip;
        }
        break;
    case Word::ShpTxt:
        flushText();
        if (state.dest == Dest::Ignore && m_shapePicture)
            keepObjectOfPictureFrame();
        if (state.dest == Dest::Ignore)
            state.dest = m_shapePicture ? Dest::Skip : Dest::Text;
        break;
    case Word::SkipDest:
        skipAndKeep(state);
        break;
    case Word::StyleSheet:
    case Word::BkmkStart:
    case Word::BkmkEnd:
        openFormatDestination(word);
        break;
    case Word::ShpRslt:
    case Word::NonShpPict:
    case Word::PnText:
    case Word::ListText:
        // What readers that do not know a construct read instead of it: written anew.
        flushText();
        state.dest = Dest::Skip;
        break;
    default:
        break;
    }
}

void Reader::skipAndKeep(GroupState &state)
{
    // Groups met in the document's text (not inside a table, field, picture or other
    // destination) are kept; skipGroup() gathers their bytes when it reaches their end.
    flushText();
    const GroupState *parent = m_stack.size() >= 2 ? &m_stack[m_stack.size() - 2] : nullptr;
    state.keep = parent && parent->dest == Dest::Text && state.dest == Dest::Text && !state.opensField;
    state.dest = Dest::Skip;
}

} // namespace kvrtb::rtf::detail
