// The property grid of the focused camera, built from its feature node map
// (GetAttrNodeMap) along the category tree under "Root". Features above the
// chosen visibility level are left out. After every write all values are read
// again, since one feature often changes others (ranges, availability); a
// refused write shows the library's message under the grid.
#pragma once

#include <QString>
#include <QWidget>

#include <vector>

#include <ViewerBiz3/GenApi/GenApi.h>

class FeatureEditor;
class QComboBox;
class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

class FeatureTree : public QWidget {
    Q_OBJECT
public:
    explicit FeatureTree(QWidget* parent = nullptr);

    const QString& Camera() const { return m_camera; }
    // The editor widget of a feature, or null.
    QWidget* EditorOf(const QString& feature) const;
    QString LastMessage() const;

public slots:
    // Shows the camera's features if it is open, else says how to see them.
    void ShowCamera(const QString& camera);
    void RefreshValues();

signals:
    void message(const QString& text);

private:
    void Rebuild();
    void AddCategory(GenApi::ICategory& category, QTreeWidgetItem* parent, int depth);
    void AddFeature(GenApi::INode& node, QTreeWidgetItem* parent);
    void OnRefused(const QString& feature, const QString& text);

    QString m_camera;
    GenApi::INodeMap* m_nodeMap = nullptr;
    QComboBox* m_visibility;
    QTreeWidget* m_tree;
    QLabel* m_message;
    std::vector<FeatureEditor*> m_editors;
};
