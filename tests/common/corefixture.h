#pragma once

#include "core/controlcore.h"
#include "core/controlevents.h"
#include "core/recordingplatformservices.h"

#include <QStringList>
#include <QTest>
#include <QWidget>

namespace kvrtb::test {

/// Control events recorded by name, in the order they are raised.
class RecordingEvents : public ControlEvents {
public:
    QStringList names;
    void begin() override { names << QStringLiteral("Begin"); }
    void finish() override { names << QStringLiteral("Finish"); }
    void ready() override { names << QStringLiteral("Ready"); }
    void updateParentMenu() override { names << QStringLiteral("UpdateParentMenu"); }
    void propertyChanged(const QString &key) override { names << QStringLiteral("Changed:") + key; }
};

/// A control without its widget: the core with recording services and events, so that an
/// area's logic runs headless and its dialogs and events can be checked.
struct CoreFixture {
    RecordingPlatformServices services;
    RecordingEvents events;
    ControlCore core{nullptr, services, events};

    EditorSurface &surface() { return core.surface(); }

    /// The message boxes shown so far.
    QList<RecordingPlatformServices::Call> boxes() const { return services.callsOf(QStringLiteral("messageBox")); }

    /// Shows the editor at a fixed size, for what depends on lines and scrolling.
    void show(int width = 400, int height = 200)
    {
        surface().widget()->resize(width, height);
        surface().widget()->show();
        QVERIFY(QTest::qWaitForWindowExposed(surface().widget()));
    }
};

} // namespace kvrtb::test
