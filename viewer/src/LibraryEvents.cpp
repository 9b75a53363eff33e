#include "LibraryEvents.h"

namespace {

QStringList ToStringList(const std::vector<std::string>& texts)
{
    QStringList list;
    list.reserve(static_cast<int>(texts.size()));
    for (const std::string& text : texts) {
        list << QString::fromStdString(text);
    }
    return list;
}

} // namespace

using namespace ViewerBiz3;

LibraryEvents::LibraryEvents(QObject* parent) : QObject(parent) {}

LibraryEvents::~LibraryEvents()
{
    if (!m_registered) {
        return;
    }
    UnRegisterTLTypeUpdateListerner(this);
    UnRegisterDeviceListUpdateListener(this);
    UnRegisterFocusUpdateListener(this);
    UnRegisterLayoutUpdateListener(this);
    UnRegisterImageModeUpdateListener(this);
    UnRegisterSLImageShowModeUpdateListener(this);
    UnRegisterAcqStatisticUpdateListener(this);
    UnRegisterLoggerUpdateListener(this);
    UnRegisterLangUpdateListener(this);
    UnRegisterCameraIdUpdateListener(this);
}

void LibraryEvents::Register()
{
    RegisterTLTypeUpdateListener(this);
    RegisterDeviceListUpdateListener(this);
    RegisterFocusUpdateListener(this);
    RegisterLayoutUpdateListener(this);
    RegisterImageModeUpdateListener(this);
    RegisterSLImageShowModeUpdateListener(this);
    RegisterAcqStatisticUpdateListener(this);
    RegisterLoggerUpdateListener(this);
    RegisterLangUpdateListener(this);
    RegisterCameraIdUpdateListener(this);
    m_registered = true;
}

void LibraryEvents::OnTLTypeUpdate(unsigned long long mask)
{
    emit transportTypesChanged(mask);
}

void LibraryEvents::OnDeviceListUpdate(int kind, std::vector<std::string> first, std::vector<std::string> second)
{
    if (kind == 0) {
        emit deviceListChanged(ToStringList(first), ToStringList(second));
    } else if (!first.empty() && !second.empty()) {
        emit deviceChanged(QString::fromStdString(first.front()), QString::fromStdString(second.front()));
    }
}

void LibraryEvents::OnFocusUpdate(FOCUS_TYPE type, std::string deviceId)
{
    emit focusChanged(type, QString::fromStdString(deviceId));
}

void LibraryEvents::OnLayoutUpdate(LAYOUT_TYPE layout)
{
    emit layoutChanged(layout);
}

void LibraryEvents::OnImageModeUpdate(std::string cameraKey, int imageMode)
{
    emit imageModeChanged(QString::fromStdString(cameraKey), imageMode);
}

void LibraryEvents::OnSLImageShowModeUpdate(std::string cameraId, int showMode)
{
    emit showModeChanged(QString::fromStdString(cameraId), showMode);
}

void LibraryEvents::OnAcqStatisticUpdate(std::string cameraName, bool)
{
    emit statisticsChanged(QString::fromStdString(cameraName));
}

void LibraryEvents::OnLoggerUpdate(std::string source, std::string level, std::string message)
{
    emit logLine(QString::fromStdString(source), QString::fromStdString(level), QString::fromStdString(message));
}

void LibraryEvents::OnLangUpdate(std::string language)
{
    emit languageChanged(QString::fromStdString(language));
}

void LibraryEvents::OnCameraIdUpdate(std::string oldId, std::string newName)
{
    emit cameraRenamed(QString::fromStdString(oldId), QString::fromStdString(newName));
}
