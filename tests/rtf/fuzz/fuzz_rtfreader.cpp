// libFuzzer target: the RTF reader must accept any bytes without crashing, hanging or leaking,
// and what the writer makes of the result must read again.

#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"

#include <QGuiApplication>
#include <QTextDocument>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_rtfreader";
    static char *argv[] = {name, nullptr};
    static QGuiApplication *app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QGuiApplication(argc, argv);
    }();
    Q_UNUSED(app)
    QByteArray input = "{\\rtf1 ";
    input.append(reinterpret_cast<const char *>(data), qsizetype(size));
    QTextDocument doc;
    if (!kvrtb::rtf::readRtf(doc, input).ok)
        __builtin_trap();
    const QByteArray written = kvrtb::rtf::writeRtf(doc);
    QTextDocument again;
    if (!kvrtb::rtf::readRtf(again, written).ok)
        __builtin_trap();
    return 0;
}
