// Asks for a GigE camera's new address, mask and gateway, and whether the
// camera keeps them after a power cycle (persistent) or only until then.
#pragma once

#include <QDialog>

class QCheckBox;
class QLineEdit;

class IpDialog : public QDialog {
    Q_OBJECT
public:
    IpDialog(const QString& camera, const QString& ip, const QString& mask, const QString& gateway,
             QWidget* parent = nullptr);

    QString Ip() const;
    QString Mask() const;
    QString Gateway() const;
    bool Persistent() const;

private:
    QLineEdit* m_ip;
    QLineEdit* m_mask;
    QLineEdit* m_gateway;
    QCheckBox* m_persistent;
};
