#include "FeatureEditor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

QString Text(const GenICam::gcstring& text)
{
    return QString::fromStdString(text.str());
}

bool FitsInt(int64_t value)
{
    return value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max();
}

} // namespace

FeatureEditor::FeatureEditor(GenApi::INode& node, QObject* parent)
    : QObject(parent), m_node(node), m_type(node.GetPrincipalInterfaceType()), m_widget(CreateWidget())
{
    m_widget->setObjectName("feature:" + Name());
    m_widget->setToolTip(Text(node.GetToolTip()).isEmpty() ? Text(node.GetDescription()) : Text(node.GetToolTip()));
    Refresh();
}

QString FeatureEditor::Name() const
{
    return Text(m_node.GetName());
}

template <class Write>
void FeatureEditor::Apply(Write write)
{
    try {
        write();
        emit written(Name());
    } catch (const GenICam::GenericException& error) {
        emit refused(Name(), QString::fromUtf8(error.GetDescription()));
    }
}

QWidget* FeatureEditor::CreateWidget()
{
    switch (m_type) {
    case GenApi::intfIInteger:
        return CreateIntegerEditor();
    case GenApi::intfIFloat:
        return CreateFloatEditor();
    case GenApi::intfIEnumeration:
        return CreateEnumerationEditor();
    case GenApi::intfIBoolean:
        return CreateBooleanEditor();
    case GenApi::intfICommand:
        return CreateCommandEditor();
    case GenApi::intfIString:
        return CreateStringEditor();
    default:
        return new QLabel;
    }
}

QWidget* FeatureEditor::CreateIntegerEditor()
{
    GenApi::CIntegerPtr node(&m_node);
    if (!FitsInt(node->GetMin()) || !FitsInt(node->GetMax())) {
        auto* edit = new QLineEdit;
        connect(edit, &QLineEdit::editingFinished, this,
                [this, edit, node] { Apply([&] { node->FromString(edit->text().toStdString()); }); });
        return edit;
    }
    auto* spin = new QSpinBox;
    spin->setKeyboardTracking(false);
    spin->setSuffix(Text(node->GetUnit()).isEmpty() ? QString() : " " + Text(node->GetUnit()));
    connect(spin, &QSpinBox::valueChanged, this, [this, node](int value) { Apply([&] { node->SetValue(value); }); });
    return spin;
}

QWidget* FeatureEditor::CreateFloatEditor()
{
    GenApi::CFloatPtr node(&m_node);
    auto* spin = new QDoubleSpinBox;
    spin->setKeyboardTracking(false);
    spin->setSuffix(Text(node->GetUnit()).isEmpty() ? QString() : " " + Text(node->GetUnit()));
    connect(spin, &QDoubleSpinBox::valueChanged, this,
            [this, node](double value) { Apply([&] { node->SetValue(value); }); });
    return spin;
}

QWidget* FeatureEditor::CreateEnumerationEditor()
{
    GenApi::CEnumerationPtr node(&m_node);
    auto* box = new QComboBox;
    connect(box, &QComboBox::activated, this,
            [this, box, node](int index) { Apply([&] { node->FromString(box->itemText(index).toStdString()); }); });
    return box;
}

QWidget* FeatureEditor::CreateBooleanEditor()
{
    GenApi::CBooleanPtr node(&m_node);
    auto* box = new QCheckBox;
    connect(box, &QCheckBox::clicked, this, [this, node](bool checked) { Apply([&] { node->SetValue(checked); }); });
    return box;
}

QWidget* FeatureEditor::CreateCommandEditor()
{
    GenApi::CCommandPtr node(&m_node);
    auto* button = new QPushButton("Execute");
    connect(button, &QPushButton::clicked, this, [this, node] { Apply([&] { node->Execute(); }); });
    return button;
}

QWidget* FeatureEditor::CreateStringEditor()
{
    GenApi::CStringPtr node(&m_node);
    auto* edit = new QLineEdit;
    connect(edit, &QLineEdit::editingFinished, this, [this, edit, node] {
        if (edit->isModified()) {
            Apply([&] { node->SetValue(edit->text().toStdString()); });
        }
    });
    return edit;
}

void FeatureEditor::Refresh()
{
    const bool available = GenApi::IsAvailable(&m_node);
    m_widget->setEnabled(available && GenApi::IsWritable(&m_node));
    if (!GenApi::IsReadable(&m_node)) {
        if (auto* label = qobject_cast<QLabel*>(m_widget)) {
            label->setText(available ? QString() : "(unavailable)");
        }
        return;
    }
    try {
        RefreshWidget();
    } catch (const GenICam::GenericException& error) {
        m_widget->setEnabled(false);
        m_widget->setToolTip(QString::fromUtf8(error.GetDescription()));
    }
}

void FeatureEditor::RefreshWidget()
{
    const QSignalBlocker blocker(m_widget);
    if (auto* spin = qobject_cast<QSpinBox*>(m_widget)) {
        GenApi::CIntegerPtr node(&m_node);
        spin->setRange(int(node->GetMin()), int(node->GetMax()));
        spin->setSingleStep(int(std::max<int64_t>(1, node->GetInc())));
        spin->setValue(int(node->GetValue()));
    } else if (auto* doubleSpin = qobject_cast<QDoubleSpinBox*>(m_widget)) {
        GenApi::CFloatPtr node(&m_node);
        const double step = node->HasInc() && node->GetInc() > 0 ? node->GetInc() : 0;
        doubleSpin->setDecimals(step > 0 ? std::clamp(int(std::ceil(-std::log10(step))), 0, 6) : 3);
        doubleSpin->setRange(node->GetMin(), node->GetMax());
        doubleSpin->setSingleStep(step > 0 ? step : std::max(0.001, (node->GetMax() - node->GetMin()) / 100));
        doubleSpin->setValue(node->GetValue());
    } else if (auto* box = qobject_cast<QComboBox*>(m_widget)) {
        GenApi::CEnumerationPtr node(&m_node);
        GenApi::StringList_t entries;
        node->GetSymbolics(entries);
        box->clear();
        for (const GenICam::gcstring& entry : entries) {
            box->addItem(Text(entry));
        }
        box->setCurrentText(Text(node->ToString()));
    } else if (auto* check = qobject_cast<QCheckBox*>(m_widget)) {
        check->setChecked(GenApi::CBooleanPtr(&m_node)->GetValue());
    } else if (auto* edit = qobject_cast<QLineEdit*>(m_widget)) {
        edit->setText(Text(GenApi::CValuePtr(&m_node)->ToString()));
    } else if (auto* label = qobject_cast<QLabel*>(m_widget)) {
        GenApi::CValuePtr value(&m_node);
        label->setText(value.IsValid() ? Text(value->ToString()) : QString());
    }
}
