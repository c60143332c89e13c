#pragma once

#include <QtUiPlugin/QDesignerCustomWidgetInterface>

/// \brief Makes `kvrtb::KvRTB` a widget of Qt Designer's widget box (group "Input Widgets").
///
/// A control placed on a form starts with every persisted property at its default
/// (`initProperties()`); the properties that a host persists are the control's designable
/// Q_PROPERTYs, so Designer's property editor shows and saves exactly those. Forms that use the
/// control include <KvRichTextBox/kvrtb.h>.
class KvRTBDesignerPlugin : public QObject, public QDesignerCustomWidgetInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetInterface")
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    explicit KvRTBDesignerPlugin(QObject *parent = nullptr);

    QString name() const override;
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QString includeFile() const override;
    QIcon icon() const override;
    bool isContainer() const override;
    QWidget *createWidget(QWidget *parent) override;
    QString domXml() const override;
};
