// The control's life cycle in a loop: create, place (init properties), show, resize with and
// without the ruler strip, write its properties, destroy. Prints the time per control and the
// resident memory before and after, which must not grow with the number of controls.

#include "control/kvrtb.h"
#include "control/propertybag.h"
#include "core/recordingplatformservices.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>

#include <cstdio>

namespace {

qint64 residentKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

double cycle(kvrtb::PlatformServices &services, QWidget &host, int times)
{
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < times; ++i) {
        auto *control = new kvrtb::KvRTB(services, &host);
        control->initProperties();
        control->show();
        control->resize(200 + i % 100, 100 + i % 60);
        control->setDisplayRuler(i % 2 == 0);
        control->resize(300, 200);
        kvrtb::MemoryPropertyBag bag;
        control->writeProperties(bag);
        delete control;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return double(timer.nsecsElapsed()) / 1e6 / times;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    kvrtb::RecordingPlatformServices services;
    QWidget host;
    host.resize(640, 480);
    host.show();

    cycle(services, host, 200); // fonts, styles and caches settle first
    const qint64 before = residentKilobytes();
    std::printf("%-34s %10s %12s\n", "rounds", "ms/control", "VmRSS kB");
    std::printf("%-34s %10s %12lld\n", "after warm-up (200)", "-", before);
    long total = 0;
    for (int rounds : {1000, 1000, 1000}) {
        const double perControl = cycle(services, host, rounds);
        total += rounds;
        std::printf("%-34s %10.3f %12lld\n", qPrintable(QStringLiteral("create/show/resize/destroy, %1").arg(total)),
                    perControl, residentKilobytes());
    }
    std::printf("growth over %ld controls: %lld kB\n", total, residentKilobytes() - before);
    return 0;
}
