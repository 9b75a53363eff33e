// The editor of one feature in the property grid, chosen by the node's type:
// a spin box with range and increment for integers and floats, a combo box of
// the available entries for enumerations, a check box for booleans, a button
// for commands, a line edit for strings and a label for anything else.
// Writes go straight to the node; a refused write reports the node's message.
#pragma once

#include <QObject>
#include <QString>

#include <ViewerBiz3/GenApi/GenApi.h>

class QWidget;

class FeatureEditor : public QObject {
    Q_OBJECT
public:
    FeatureEditor(GenApi::INode& node, QObject* parent = nullptr);

    QWidget* Widget() const { return m_widget; }
    GenApi::INode& Node() const { return m_node; }
    QString Name() const;
    // Shows the node's current value, range and access (read-only, unavailable).
    void Refresh();

signals:
    void written(const QString& feature);
    void refused(const QString& feature, const QString& message);

private:
    QWidget* CreateWidget();
    QWidget* CreateIntegerEditor();
    QWidget* CreateFloatEditor();
    QWidget* CreateEnumerationEditor();
    QWidget* CreateBooleanEditor();
    QWidget* CreateCommandEditor();
    QWidget* CreateStringEditor();
    void RefreshWidget();
    // Runs a write and reports how it went.
    template <class Write>
    void Apply(Write write);

    GenApi::INode& m_node;
    GenApi::EInterfaceType m_type;
    QWidget* m_widget;
};
