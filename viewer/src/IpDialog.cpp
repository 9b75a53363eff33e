#include "IpDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>

namespace {

QLineEdit* AddressEdit(const QString& text, QWidget* parent)
{
    auto* edit = new QLineEdit(text, parent);
    static const QRegularExpression address(R"(^((25[0-5]|2[0-4]\d|1?\d?\d)\.){3}(25[0-5]|2[0-4]\d|1?\d?\d)$)");
    edit->setValidator(new QRegularExpressionValidator(address, edit));
    return edit;
}

} // namespace

IpDialog::IpDialog(const QString& camera, const QString& ip, const QString& mask, const QString& gateway,
                   QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(QString("Network settings of %1").arg(camera));
    auto* form = new QFormLayout(this);
    m_ip = AddressEdit(ip, this);
    m_mask = AddressEdit(mask, this);
    m_gateway = AddressEdit(gateway, this);
    m_persistent = new QCheckBox("Keep after a power cycle (persistent)", this);
    form->addRow("IP address", m_ip);
    form->addRow("Subnet mask", m_mask);
    form->addRow("Gateway", m_gateway);
    form->addRow(QString(), m_persistent);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    const auto validate = [this, buttons] {
        buttons->button(QDialogButtonBox::Ok)
            ->setEnabled(m_ip->hasAcceptableInput() && m_mask->hasAcceptableInput() && m_gateway->hasAcceptableInput());
    };
    for (QLineEdit* edit : {m_ip, m_mask, m_gateway}) {
        connect(edit, &QLineEdit::textChanged, this, validate);
    }
    validate();
}

QString IpDialog::Ip() const
{
    return m_ip->text();
}

QString IpDialog::Mask() const
{
    return m_mask->text();
}

QString IpDialog::Gateway() const
{
    return m_gateway->text();
}

bool IpDialog::Persistent() const
{
    return m_persistent->isChecked();
}
