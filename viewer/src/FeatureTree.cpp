#include "FeatureTree.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <ViewerBiz3/ViewerBiz3.h>

#include "FeatureEditor.h"

namespace {

constexpr int MaximumCategoryDepth = 8; // a cyclic description must not recurse forever

QString Text(const GenICam::gcstring& text)
{
    return QString::fromStdString(text.str());
}

} // namespace

FeatureTree::FeatureTree(QWidget* parent) : QWidget(parent)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(4, 4, 4, 4);
    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel("Visibility"));
    m_visibility = new QComboBox;
    m_visibility->addItems({"Beginner", "Expert", "Guru"});
    // The library keeps the level in its settings for the next start.
    bool known = false;
    const int level =
        QString::fromStdString(ViewerBiz3::GetParamterInfo(ViewerBiz3::PARAM_ATTRIBUTE_VISUAL_LEVEL)).toInt(&known);
    m_visibility->setCurrentIndex(known && level >= GenApi::Beginner && level <= GenApi::Guru ? level : GenApi::Expert);
    top->addWidget(m_visibility, 1);
    column->addLayout(top);
    m_tree = new QTreeWidget;
    m_tree->setObjectName("featureTree");
    m_tree->setHeaderLabels({"Feature", "Value"});
    m_tree->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_tree->header()->setStretchLastSection(true);
    m_tree->setAlternatingRowColors(true);
    column->addWidget(m_tree, 1);
    m_message = new QLabel;
    m_message->setObjectName("featureMessage");
    m_message->setWordWrap(true);
    m_message->setStyleSheet("color: #f07a5a;");
    column->addWidget(m_message);
    connect(m_visibility, &QComboBox::currentIndexChanged, this, [this](int level) {
        ViewerBiz3::SetParamterInfo(ViewerBiz3::PARAM_ATTRIBUTE_VISUAL_LEVEL, std::to_string(level));
        Rebuild();
    });
    ShowCamera(QString());
}

QWidget* FeatureTree::EditorOf(const QString& feature) const
{
    for (FeatureEditor* editor : m_editors) {
        if (editor->Name() == feature) {
            return editor->Widget();
        }
    }
    return nullptr;
}

QString FeatureTree::LastMessage() const
{
    return m_message->text();
}

void FeatureTree::ShowCamera(const QString& camera)
{
    m_camera = camera;
    m_nodeMap = camera.isEmpty()
                    ? nullptr
                    : static_cast<GenApi::INodeMap*>(ViewerBiz3::GetAttrNodeMap(
                          ViewerBiz3::FOCUS_CAMERA_FEATURES, camera.toStdString(), ViewerBiz3::NODEMAP_MODULE3));
    Rebuild();
}

void FeatureTree::Rebuild()
{
    m_tree->clear();
    for (FeatureEditor* editor : m_editors) {
        delete editor;
    }
    m_editors.clear();
    m_message->clear();
    GenApi::CCategoryPtr root = m_nodeMap != nullptr ? m_nodeMap->GetNode("Root") : nullptr;
    if (!root.IsValid()) {
        auto* hint = new QTreeWidgetItem(
            m_tree, {m_camera.isEmpty() ? "Focus a view with a camera" : "Open " + m_camera + " to see its features"});
        hint->setFlags(Qt::NoItemFlags);
        return;
    }
    AddCategory(*root, nullptr, 0);
    m_tree->expandToDepth(0);
}

void FeatureTree::AddCategory(GenApi::ICategory& category, QTreeWidgetItem* parent, int depth)
{
    GenApi::FeatureList_t features;
    category.GetFeatures(features);
    for (GenApi::IValue* value : features) {
        GenApi::INode* node = value != nullptr ? value->GetNode() : nullptr;
        if (node == nullptr || node->GetVisibility() > m_visibility->currentIndex() || !GenApi::IsImplemented(node)) {
            continue;
        }
        GenApi::CCategoryPtr subCategory(node);
        if (!subCategory.IsValid()) {
            AddFeature(*node, parent);
            continue;
        }
        if (depth >= MaximumCategoryDepth) {
            continue;
        }
        auto* item = parent != nullptr ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(m_tree);
        item->setText(0, Text(node->GetDisplayName()));
        QFont bold = item->font(0);
        bold.setBold(true);
        item->setFont(0, bold);
        item->setFirstColumnSpanned(true);
        AddCategory(*subCategory, item, depth + 1);
        if (item->childCount() == 0) {
            delete item;
        }
    }
}

void FeatureTree::AddFeature(GenApi::INode& node, QTreeWidgetItem* parent)
{
    auto* item = parent != nullptr ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(m_tree);
    item->setText(0, Text(node.GetDisplayName()));
    item->setToolTip(0, Text(node.GetName()));
    auto* editor = new FeatureEditor(node, this);
    m_tree->setItemWidget(item, 1, editor->Widget());
    connect(editor, &FeatureEditor::written, this, [this] {
        m_message->clear();
        RefreshValues();
    });
    connect(editor, &FeatureEditor::refused, this, &FeatureTree::OnRefused);
    m_editors.push_back(editor);
}

void FeatureTree::RefreshValues()
{
    for (FeatureEditor* editor : m_editors) {
        editor->Refresh();
    }
}

void FeatureTree::OnRefused(const QString& feature, const QString& text)
{
    const QString line = QString("%1 was not written: %2").arg(feature, text);
    m_message->setText(line);
    emit message(line);
    RefreshValues();
}
