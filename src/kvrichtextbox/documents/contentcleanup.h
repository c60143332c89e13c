#pragma once

#include <QList>
#include <QRegularExpression>
#include <QString>

namespace kvrtb {

class ControlCore;

/// \brief The clean-up passes that remove content the control does not want in a document:
/// pictures (while `AllowImages` is off), markup tags, and characters that are not text.
///
/// The pure parts work on strings and are tested on their own; `run` and
/// `removeUnusableCharacters` apply them to the control's editor.
class ContentCleanup {
public:
    /// A stretch of the plain text: start position and length.
    struct Span {
        int start = 0;
        int length = 0;
        bool operator==(const Span &other) const { return start == other.start && length == other.length; }
    };

    /// The picture-group pattern: any non-space run before, the group from "{\pict" up to the
    /// first "}", and any non-space run after. It is written without repeated groups
    /// ("[\s\S]*?" for "(.|\n)*?", "\S*" for "(\S)*"): the regular-expression engine gives up
    /// silently on a repeated group spanning a picture of some hundred kilobytes, while these
    /// forms match on inputs of any size with the same result.
    static const QRegularExpression &picturePattern();
    /// Markup tags: "<" and ">" around at least two characters that are neither, within one
    /// paragraph (a tag never spans a paragraph break).
    static const QRegularExpression &tagPattern();

    /// True when \a rtf holds a picture group ("{\pict\").
    static bool containsPicture(const QString &rtf);
    /// True when \a rtf holds table rows ("\trowd").
    static bool containsTable(const QString &rtf);
    /// \a rtf without the stretches `picturePattern` matches; \a removed receives their number.
    static QString removePictures(const QString &rtf, int *removed = nullptr);
    /// The stretches of \a text that `tagPattern` matches, in order.
    static QList<Span> tagSpans(const QString &text);
    /// \a length characters of the dictionary's neutral filler (repeated when longer than it).
    static QString filler(int length);
    /// True for a character the final pass removes: controls other than tab, line feed and
    /// carriage return, stray byte-order marks, unpaired surrogates, the replacement character,
    /// and — when pictures are not allowed — the object placeholders that stand for pictures.
    static bool isUnusable(QChar c, bool allowImages);
    /// The stretches of \a text made of unusable characters (surrogate pairs are kept).
    static QList<Span> unusableSpans(const QString &text, bool allowImages);

    explicit ContentCleanup(ControlCore &core) : m_core(core) {}

    /// Runs the passes on the editor's document with the display frozen: the picture pass
    /// (with the "Invalid Image" box when pictures are removed), the tag pass and the final
    /// pass; then puts the caret back, shifted by what was removed before it.
    void run();
    /// The final pass alone: removes unusable characters from the whole document, keeping the
    /// caret where it was relative to the text. Run after a paste.
    void removeUnusableCharacters();

private:
    void picturePass();
    void tagPass();

    ControlCore &m_core;
};

} // namespace kvrtb
