// Document figures: loading and saving a 2 MB text file and its RTF through the control's
// LoadFile and SaveFile (linking off), the clean-up passes on it, and removing a 1 MB picture
// from RTF with the picture pattern.

#include "core/controlcore.h"
#include "core/controlevents.h"
#include "core/recordingplatformservices.h"
#include "documents/contentcleanup.h"
#include "documents/documents.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <cstdio>

using namespace kvrtb;

namespace {

QByteArray makeText(int bytes)
{
    static const char *const words[] = {"alpha", "beta", "gamma", "delta", "<tag x>", "zeta", "caf\xC3\xA9",
                                        "iota", "kappa", "lambda", "omicron", "sigma"};
    QRandomGenerator random(42);
    QByteArray text;
    text.reserve(bytes + 100);
    int line = 0;
    while (text.size() < bytes) {
        const QByteArray word(words[random.bounded(12)]);
        text += word;
        line += int(word.size());
        if (line > 60 + int(random.bounded(40))) {
            text += "\r\n";
            line = 0;
        } else {
            text += ' ';
        }
    }
    return text;
}

template <typename F>
double timeMs(F &&f)
{
    QElapsedTimer timer;
    timer.start();
    f();
    return double(timer.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir dir;
    RecordingPlatformServices services;
    ControlEvents events;
    ControlCore core(nullptr, services, events);
    core.properties().DetectHyperLinks = false;
    Documents &docs = core.documents();

    const QString text = dir.filePath(QStringLiteral("big.txt"));
    QFile out(text);
    if (!out.open(QIODevice::WriteOnly) || out.write(makeText(2 * 1024 * 1024)) < 0)
        return 1;
    out.close();

    bool ok = false;
    std::printf("LoadFile text 2 MB:          %8.1f ms\n", timeMs([&] { docs.LoadFile(text, 1, nullptr, &ok); }));
    std::printf("SaveFile text 2 MB:          %8.1f ms\n",
                timeMs([&] { ok = docs.SaveFile(dir.filePath(QStringLiteral("copy.txt")), 1) && ok; }));
    const QString rtf = dir.filePath(QStringLiteral("big.rtf"));
    std::printf("SaveFile RTF:                %8.1f ms\n", timeMs([&] { ok = docs.SaveFile(rtf, 0) && ok; }));
    std::printf("LoadFile RTF with clean-up:  %8.1f ms\n", timeMs([&] { docs.LoadFile(rtf, 0, nullptr, &ok); }));
    core.properties().RemoveUnUsableData = false;
    std::printf("LoadFile RTF, no clean-up:   %8.1f ms\n", timeMs([&] { docs.LoadFile(rtf, 0, nullptr, &ok); }));

    QString picture = QStringLiteral("{\\rtf1 before\\par\n{\\pict\\pngblip ");
    QRandomGenerator random(7);
    for (int i = 0; i < 1024 * 1024; ++i)
        picture += QLatin1Char("0123456789abcdef"[random.bounded(16)]) + QString(i % 128 == 127 ? "\n" : "");
    picture += QStringLiteral("}\n\\par after}");
    int removed = 0;
    const double pictureMs = timeMs([&] { ContentCleanup::removePictures(picture, &removed); });
    std::printf("remove 1 MB picture:         %8.1f ms (%d removed)\n", pictureMs, removed);
    return ok ? 0 : 1;
}
