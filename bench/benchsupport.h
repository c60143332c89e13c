#pragma once

// What the benchmarks share: a control without its window, and timing in milliseconds.

#include "core/controlcore.h"
#include "core/controlevents.h"
#include "core/recordingplatformservices.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QWidget>

namespace kvrtb::bench {

/// Milliseconds since \a timer started.
inline double ms(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

/// The application a benchmark runs in: on the offscreen platform unless the caller chose one.
struct BenchApplication {
    static int &prepared(int &argc)
    {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        return argc;
    }
    BenchApplication(int &argc, char **argv) : app(prepared(argc), argv) {}
    QApplication app;
};

/// A control without its window: the core with recording services, its editor 800 by 600.
struct BenchControl {
    RecordingPlatformServices services;
    ControlEvents events;
    ControlCore core{nullptr, services, events};
    BenchControl() { core.surface().widget()->resize(800, 600); }
};

} // namespace kvrtb::bench
