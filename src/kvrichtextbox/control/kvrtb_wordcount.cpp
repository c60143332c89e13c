// The word-count members: the dialog and the statistics behind it.

#include "control/kvrtb.h"

#include "core/controlcore.h"
#include "wordcount/countwordsfrm.h"
#include "wordcount/wordcount.h"

namespace kvrtb {

void KvRTB::ShowWordCount()
{
    WordCount area(core());
    CountWordsFrm dialog(area, this);
    dialog.exec();
}

QVariantMap KvRTB::GetWordCountStatistics()
{
    const DocumentStatistics stats = WordCount(core()).statistics();
    QVariantMap map;
    const auto add = [&map](const QString &prefix, const TextStatistics &s) {
        map.insert(prefix + QStringLiteral("Words"), s.words);
        map.insert(prefix + QStringLiteral("Characters"), s.characters);
        map.insert(prefix + QStringLiteral("CharactersNoSpaces"), s.charactersNoSpaces);
        map.insert(prefix + QStringLiteral("Sentences"), s.sentences);
        map.insert(prefix + QStringLiteral("Paragraphs"), s.paragraphs);
        map.insert(prefix + QStringLiteral("Lines"), s.lines);
        map.insert(prefix + QStringLiteral("ReadingSeconds"), s.readingSeconds);
    };
    add(QString(), stats.document);
    add(QStringLiteral("Selection"), stats.selection);
    return map;
}

} // namespace kvrtb
