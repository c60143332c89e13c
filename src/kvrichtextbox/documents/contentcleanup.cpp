#include "documents/contentcleanup.h"

#include "core/controlcore.h"
#include "editing/displayfreeze.h"
#include "spelling/dictionary.h"

#include <algorithm>

namespace kvrtb {

namespace {

const QString kInvalidImageTitle = QStringLiteral("Invalid Image");
const QString kInvalidImageText = QStringLiteral("Unable to load image. Try again without image for best results.");

} // namespace

const QRegularExpression &ContentCleanup::picturePattern()
{
    // Same matches as (\S)*(\{\\pict)(.|\n)*?(\})(\S)* (whose groups are never read).
    thread_local const QRegularExpression pattern(QStringLiteral(R"(\S*\{\\pict[\s\S]*?\}\S*)"),
                                                  QRegularExpression::CaseInsensitiveOption);
    return pattern;
}

const QRegularExpression &ContentCleanup::tagPattern()
{
    // A tag lies within one paragraph: a "<" in one paragraph and a ">" some paragraphs later
    // ("P<0.05" ... "(>140 cm)") enclose the user's text, not markup.
    thread_local const QRegularExpression pattern(QStringLiteral("<[^<>\n]{2,}>"),
                                                  QRegularExpression::CaseInsensitiveOption);
    return pattern;
}

bool ContentCleanup::containsPicture(const QString &rtf)
{
    return rtf.contains(QLatin1String("{\\pict\\"));
}

bool ContentCleanup::containsTable(const QString &rtf)
{
    return rtf.contains(QLatin1String("\\trowd"));
}

QString ContentCleanup::removePictures(const QString &rtf, int *removed)
{
    QString result;
    result.reserve(rtf.size());
    int count = 0;
    qsizetype last = 0;
    auto it = picturePattern().globalMatch(rtf);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        result += QStringView(rtf).mid(last, match.capturedStart() - last);
        last = match.capturedEnd();
        ++count;
    }
    result += QStringView(rtf).mid(last);
    if (removed)
        *removed = count;
    return result;
}

QList<ContentCleanup::Span> ContentCleanup::tagSpans(const QString &text)
{
    QList<Span> spans;
    auto it = tagPattern().globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        spans.append({int(match.capturedStart()), int(match.capturedLength())});
    }
    return spans;
}

QString ContentCleanup::filler(int length)
{
    QString text;
    if (length <= 0)
        return text;
    text.reserve(length);
    while (text.size() < length)
        text += Dictionary::FillerText(int(std::min<qsizetype>(length - text.size(), Dictionary::kFillerLength)));
    return text;
}

bool ContentCleanup::isUnusable(QChar c, bool allowImages)
{
    const char16_t u = c.unicode();
    if (u == u'\t' || u == u'\n' || u == u'\r')
        return false;
    if (u < 0x20 || u == 0x7F)
        return true;
    if (u == 0xFEFF || u == 0xFFFD || u == 0xFFFE || u == 0xFFFF)
        return true;
    if (u == 0xFFFC)
        return !allowImages;
    return false;
}

QList<ContentCleanup::Span> ContentCleanup::unusableSpans(const QString &text, bool allowImages)
{
    QList<Span> spans;
    const qsizetype n = text.size();
    auto unusableAt = [&](qsizetype i) {
        const QChar c = text[i];
        if (c.isHighSurrogate())
            return !(i + 1 < n && text[i + 1].isLowSurrogate());
        if (c.isLowSurrogate())
            return !(i > 0 && text[i - 1].isHighSurrogate());
        return isUnusable(c, allowImages);
    };
    for (qsizetype i = 0; i < n; ++i) {
        if (!unusableAt(i))
            continue;
        if (!spans.isEmpty() && spans.last().start + spans.last().length == i)
            ++spans.last().length;
        else
            spans.append({int(i), 1});
    }
    return spans;
}

void ContentCleanup::picturePass()
{
    EditorSurface &surface = m_core.surface();
    // Tables stay: the editor shows them, and their rows hold the user's text.
    if (m_core.properties().AllowImages)
        return;
    const QString rtf = surface.rtf();
    if (!containsPicture(rtf))
        return;
    m_core.services().messageBox(kInvalidImageText, MessageButtons::OK, MessageIcon::Information,
                                 kInvalidImageTitle);
    int removed = 0;
    const QString cleaned = removePictures(rtf, &removed);
    // Should the editor refuse what is left, the picture placeholders still go in the final
    // pass, so no picture survives either way.
    if (removed > 0)
        surface.setRtf(cleaned);
}

void ContentCleanup::tagPass()
{
    EditorSurface &surface = m_core.surface();
    const QList<Span> spans = tagSpans(surface.text());
    for (const Span &span : spans) {
        surface.setSelection(span.start, span.length);
        surface.replaceSelection(filler(span.length));
    }
}

void ContentCleanup::run()
{
    EditorSurface &surface = m_core.surface();
    QuietSelection quiet(m_core);
    DisplayFreeze freeze(m_core);
    const int oldLength = surface.textLength();
    const int oldStart = surface.selStart();
    picturePass();
    tagPass();
    const QList<Span> spans = unusableSpans(surface.text(), m_core.properties().AllowImages);
    for (auto it = spans.crbegin(); it != spans.crend(); ++it) {
        surface.setSelection(it->start, it->length);
        surface.replaceSelection(QString());
    }
    const int caret = oldStart - (oldLength - surface.textLength());
    surface.setSelStart(std::max(caret, 0));
}

void ContentCleanup::removeUnusableCharacters()
{
    EditorSurface &surface = m_core.surface();
    const QList<Span> spans = unusableSpans(surface.text(), m_core.properties().AllowImages);
    if (spans.isEmpty())
        return;
    QuietSelection quiet(m_core);
    SurfaceFreeze freeze(surface);
    int caret = surface.selStart();
    const int caretBefore = caret;
    for (auto it = spans.crbegin(); it != spans.crend(); ++it) {
        surface.setSelection(it->start, it->length);
        surface.replaceSelection(QString());
        if (it->start < caretBefore)
            caret -= std::min(it->length, caretBefore - it->start);
    }
    surface.setSelStart(caret);
}

} // namespace kvrtb
