#include "kvrtbdesignerplugin.h"

#include "control/kvrtb.h"

#include <QIcon>

KvRTBDesignerPlugin::KvRTBDesignerPlugin(QObject *parent) : QObject(parent) {}

QString KvRTBDesignerPlugin::name() const { return QStringLiteral("kvrtb::KvRTB"); }
QString KvRTBDesignerPlugin::group() const { return QStringLiteral("Input Widgets"); }
QString KvRTBDesignerPlugin::toolTip() const
{
    return QStringLiteral("Rich-text editing control with spelling, links and keyword colouring");
}
QString KvRTBDesignerPlugin::whatsThis() const
{
    return QStringLiteral("KvRTB: a small word processor and code editor in a box. RTF and text "
                          "documents, spell checking, automatic web and e-mail links, keyword "
                          "colouring, find and replace, a ruler, printing and its own undo.");
}
QString KvRTBDesignerPlugin::includeFile() const { return QStringLiteral("KvRichTextBox/kvrtb.h"); }
QIcon KvRTBDesignerPlugin::icon() const { return QIcon(); }
bool KvRTBDesignerPlugin::isContainer() const { return false; }

QWidget *KvRTBDesignerPlugin::createWidget(QWidget *parent)
{
    auto *control = new kvrtb::KvRTB(parent);
    control->initProperties();
    return control;
}

QString KvRTBDesignerPlugin::domXml() const
{
    // The size a newly placed control gets: 1575 by 735 twips at 96 dots per inch.
    return QStringLiteral(R"(<ui language="c++">
 <widget class="kvrtb::KvRTB" name="kvRTB">
  <property name="geometry">
   <rect><x>0</x><y>0</y><width>105</width><height>49</height></rect>
  </property>
 </widget>
</ui>
)");
}
