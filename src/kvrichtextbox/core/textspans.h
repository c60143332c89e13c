#pragma once

#include "core/editorsurface.h"

#include <QList>

#include <algorithm>

namespace kvrtb {

/// \brief Moves \a spans (sorted by start, non-overlapping) for an edit at \a position that
/// removed \a removed characters and added \a added.
///
/// Spans that end at or before the edit stay, spans that start at or after the removed stretch
/// move by the change in length, and spans the edit cut into are handed to \a touched (called
/// with each, in order) and dropped. Works in place: in a long document a keystroke moves
/// thousands of spans. Returns true when a span was dropped or the edit added text right at the
/// end of a span (a painted selection over that span would have grown with the text).
template <typename Touched>
bool moveTextSpans(QList<EditorSurface::TextSpan> &spans, int position, int removed, int added, Touched touched)
{
    using Span = EditorSurface::TextSpan;
    const auto first = std::lower_bound(spans.begin(), spans.end(), position,
                                        [](const Span &span, int at) { return span.end() <= at; });
    const bool extended = added > 0 && first != spans.begin() && (first - 1)->end() == position;
    auto last = first;
    for (; last != spans.end() && last->start < position + removed; ++last)
        touched(*last);
    const int delta = added - removed;
    if (delta != 0) {
        for (auto it = last; it != spans.end(); ++it)
            it->start += delta;
    }
    const bool dropped = last != first;
    spans.erase(first, last);
    return dropped || extended;
}

/// The same, for spans whose dropping needs no notice.
inline bool moveTextSpans(QList<EditorSurface::TextSpan> &spans, int position, int removed, int added)
{
    return moveTextSpans(spans, position, removed, added, [](const EditorSurface::TextSpan &) {});
}

} // namespace kvrtb
