#include "surface/rtf/rtfwriter_p.h"

namespace kvrtb::rtf::detail {

RunProps Writer::runPropsOf(const QTextCharFormat &qt)
{
    const CharFormat f = format::readChar(qt, m_defaults);
    RunProps next;
    next.bold = *f.bold;
    next.italic = *f.italic;
    next.strike = *f.strikeThrough;
    next.protect = *f.protectedText;
    next.underline = format::userUnderline(qt);
    next.font = fontIndex(*f.fontName);
    next.halfPoints = std::max(1, int(std::lround(*f.fontSize * 2)));
    next.color = *f.color == m_defaults.color && !(qt.hasProperty(QTextFormat::ForegroundBrush)
                                                   && qt.foreground().style() != Qt::NoBrush)
                     ? 0
                     : colourIndex(*f.color);
    next.back = *f.backColor == kAutoColour ? 0 : colourIndex(*f.backColor);
    next.script = int(*f.script);
    next.offset = *f.charOffset;
    next.lang = *f.locale;
    next.caps = qt.fontCapitalization() == QFont::AllUppercase || qt.fontCapitalization() == QFont::SmallCaps
                    ? int(qt.fontCapitalization())
                    : 0;
    next.outline = qt.boolProperty(CharOutline);
    next.shadow = qt.boolProperty(CharShadow);
    if (qt.hasProperty(QTextFormat::FontLetterSpacing) && qt.fontLetterSpacingType() == QFont::AbsoluteSpacing)
        next.expand = format::pixelsToTwips(qt.fontLetterSpacing());
    return next;
}

void Writer::writeCharProps(const QTextCharFormat &qt, int formatIndex)
{
    // Fragments share a handful of formats: each format's properties are worked out once.
    RunProps next;
    if (formatIndex < 0) {
        next = runPropsOf(qt);
    } else {
        if (size_t(formatIndex) >= m_runPropsByFormat.size())
            m_runPropsByFormat.resize(size_t(formatIndex) + 1);
        std::optional<RunProps> &cached = m_runPropsByFormat[size_t(formatIndex)];
        if (!cached)
            cached = runPropsOf(qt);
        next = *cached;
    }

    RunProps &now = m_props;
    if (next.font != now.font)
        word("f", next.font);
    if (next.halfPoints != now.halfPoints)
        word("fs", next.halfPoints);
    if (next.bold != now.bold)
        next.bold ? word("b") : word("b", 0);
    if (next.italic != now.italic)
        next.italic ? word("i") : word("i", 0);
    if (next.underline != now.underline) {
        switch (next.underline) {
        case QTextCharFormat::NoUnderline: word("ulnone"); break;
        case QTextCharFormat::DotLine: word("uld"); break;
        case QTextCharFormat::DashUnderline: word("uldash"); break;
        case QTextCharFormat::DashDotLine: word("uldashd"); break;
        case QTextCharFormat::DashDotDotLine: word("uldashdd"); break;
        case QTextCharFormat::WaveUnderline:
        case QTextCharFormat::SpellCheckUnderline: word("ulwave"); next.underline = QTextCharFormat::WaveUnderline; break;
        default: word("ul"); next.underline = QTextCharFormat::SingleUnderline; break;
        }
    }
    if (next.strike != now.strike)
        next.strike ? word("strike") : word("strike", 0);
    if (next.protect != now.protect)
        next.protect ? word("protect") : word("protect", 0);
    if (next.color != now.color)
        word("cf", next.color);
    if (next.back != now.back)
        word("highlight", next.back);
    if (next.script != now.script) {
        switch (ScriptPosition(next.script)) {
        case ScriptPosition::Superscript: word("super"); break;
        case ScriptPosition::Subscript: word("sub"); break;
        case ScriptPosition::Normal: word("nosupersub"); break;
        }
    }
    if (next.offset != now.offset) {
        // Half points for every reader, and the exact twips for ours when they differ.
        const int halfPoints = int(std::lround(next.offset / 10.0));
        if (next.offset >= 0)
            word("up", halfPoints);
        else
            word("dn", -halfPoints);
        if (halfPoints * 10 != next.offset)
            word("kvoffset", next.offset);
    }
    if (next.lang != now.lang)
        word("lang", next.lang);
    writeCharEffects(next);
    now = next;
}

void Writer::writePicture(const QTextImageFormat &image)
{
    const QVariant resource = m_doc.resource(QTextDocument::ImageResource, QUrl(image.name()));
    QByteArray header = image.property(PictureHeader).toByteArray();
    QByteArray data;
    QSize natural;
    if (resource.userType() == QMetaType::QByteArray && !header.isEmpty()) {
        data = resource.toByteArray();
    } else {
        QImage picture;
        if (resource.userType() == QMetaType::QImage)
            picture = resource.value<QImage>();
        else if (resource.userType() == QMetaType::QPixmap)
            picture = resource.value<QPixmap>().toImage();
        else if (resource.userType() == QMetaType::QByteArray)
            picture.loadFromData(resource.toByteArray());
        if (picture.isNull())
            return; // nothing to write: the picture cannot be found
        QBuffer buffer(&data);
        buffer.open(QIODevice::WriteOnly);
        picture.save(&buffer, "PNG");
        natural = picture.size();
        header = "\\pngblip\\picw" + QByteArray::number(natural.width()) + "\\pich"
                 + QByteArray::number(natural.height());
    }
    m_out += "{\\pict";
    m_out += header;
    double width = image.width();
    double height = image.height();
    if ((width <= 0 || height <= 0) && natural.isValid()) {
        width = natural.width();
        height = natural.height();
    }
    if (width > 0 && height > 0) {
        m_out += "\\picwgoal" + QByteArray::number(qRound(width * kTwipsPerPixel));
        m_out += "\\pichgoal" + QByteArray::number(qRound(height * kTwipsPerPixel));
    }
    m_out += ' ';
    m_out += data.toHex();
    m_out += '}';
    m_needSpace = false;
}

} // namespace kvrtb::rtf::detail
