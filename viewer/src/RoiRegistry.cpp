#include "RoiRegistry.h"

RoiRegistry::RoiRegistry(QObject* parent) : QObject(parent)
{
    ViewerBiz3::RegisterROIUpdateListener(this);
}

RoiRegistry::~RoiRegistry()
{
    ViewerBiz3::UnRegisterROIUpdateListener(this);
}

QMap<int, QRect> RoiRegistry::Regions(const QString& camera) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_regions.value(camera);
}

void RoiRegistry::OnROIDrawUpdate(std::string cameraId, int x, int y, int width, int height, int operation, int& index,
                                  bool& result, int, int)
{
    const QString camera = QString::fromStdString(cameraId);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        QMap<int, QRect>& regions = m_regions[camera];
        switch (operation) {
        case 0:
            index = m_nextIndex++;
            regions.insert(index, QRect(x, y, width, height));
            result = true;
            break;
        case 1:
            result = regions.contains(index);
            if (result) {
                regions[index] = QRect(x, y, width, height);
            }
            break;
        case 2:
            result = regions.remove(index) > 0;
            break;
        default:
            return;
        }
    }
    emit regionsChanged(camera);
}
