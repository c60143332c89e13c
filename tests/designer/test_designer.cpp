// The Designer plugin: a form holding a KvRTB, loaded the way applications load .ui files.

#include "control/kvrtb.h"

#include <QBuffer>
#include <QDir>
#include <QUiLoader>
#include <QtTest>

using kvrtb::KvRTB;

namespace {

const char kForm[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0">
 <class>EditorForm</class>
 <widget class="QWidget" name="EditorForm">
  <layout class="QVBoxLayout" name="layout">
   <item>
    <widget class="kvrtb::KvRTB" name="notes">
     <property name="Text"><string>Minutes of the meeting</string></property>
     <property name="DetectHyperLinks"><bool>false</bool></property>
     <property name="AutoVMenu"><bool>false</bool></property>
     <property name="MyFirstString"><string>alpha|beta</string></property>
     <property name="RightMargin"><number>480</number></property>
     <property name="MyHLColor"><UInt>65280</UInt></property>
     <property name="Locked"><bool>true</bool></property>
    </widget>
   </item>
   <item>
    <widget class="kvrtb::KvRTB" name="plain"/>
   </item>
  </layout>
 </widget>
</ui>
)";

} // namespace

class DesignerTest : public QObject {
    Q_OBJECT

private slots:
    void formKeepsTheDesignedProperties()
    {
        QUiLoader loader;
        loader.clearPluginPaths();
        loader.addPluginPath(QStringLiteral(KVRTB_DESIGNER_PLUGIN_DIR));
        QVERIFY2(loader.availableWidgets().contains(QStringLiteral("kvrtb::KvRTB")),
                 qPrintable(loader.errorString()));

        QByteArray xml(kForm);
        QBuffer buffer(&xml);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        std::unique_ptr<QWidget> form(loader.load(&buffer));
        QVERIFY2(form, qPrintable(loader.errorString()));

        auto *notes = form->findChild<KvRTB *>(QStringLiteral("notes"));
        QVERIFY(notes);
        QCOMPARE(notes->property("Text").toString(), QStringLiteral("Minutes of the meeting"));
        QCOMPARE(notes->property("DetectHyperLinks").toBool(), false);
        QCOMPARE(notes->property("AutoVMenu").toBool(), false);
        QCOMPARE(notes->property("MyFirstString").toString(), QStringLiteral("alpha|beta"));
        QCOMPARE(notes->property("RightMargin").toInt(), 480);
        QCOMPARE(notes->property("MyHLColor").toUInt(), 65280u);
        QCOMPARE(notes->property("Locked").toBool(), true);

        // A control with nothing set on the form has every property at its default, and the
        // text a newly placed control shows.
        auto *plain = form->findChild<KvRTB *>(QStringLiteral("plain"));
        QVERIFY(plain);
        QCOMPARE(plain->property("DetectHyperLinks").toBool(), true);
        QCOMPARE(plain->property("AutoVMenu").toBool(), true);
        QCOMPARE(plain->property("MyHLColor").toUInt(), 0xFFFFu);
        QCOMPARE(plain->property("Locked").toBool(), false);
    }

    void pluginDescribesTheWidget()
    {
        QUiLoader loader;
        loader.clearPluginPaths();
        loader.addPluginPath(QStringLiteral(KVRTB_DESIGNER_PLUGIN_DIR));
        // A form naming the control class but built without the plugin path gets no control: the
        // loader reports it rather than creating something else.
        QUiLoader bare;
        bare.clearPluginPaths();
        QVERIFY(!bare.availableWidgets().contains(QStringLiteral("kvrtb::KvRTB")));

        std::unique_ptr<QWidget> widget(loader.createWidget(QStringLiteral("kvrtb::KvRTB")));
        QVERIFY(qobject_cast<KvRTB *>(widget.get()));
        // Placed on a form, a control is 1575 by 735 twips.
        QCOMPARE(widget->size(), QSize(105, 49));
    }
};

QTEST_MAIN(DesignerTest)
#include "test_designer.moc"
