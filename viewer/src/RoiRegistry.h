// The regions of interest of every camera. The viewer draws them through the
// library (DrawROI, SetROIPos, RomoveROI), which relays each operation to the
// ROI listeners; this listener keeps them and answers a draw with the new
// region's index. Called on the thread that made the library call.
#pragma once

#include <QMap>
#include <QObject>
#include <QRect>
#include <QString>

#include <mutex>

#include <ViewerBiz3/ViewerBiz3.h>

class RoiRegistry : public QObject, public ViewerBiz3::IROIDrawUpdate {
    Q_OBJECT
public:
    explicit RoiRegistry(QObject* parent = nullptr);
    ~RoiRegistry() override;

    // The regions of a camera by index, in image coordinates.
    QMap<int, QRect> Regions(const QString& camera) const;

    void OnROIDrawUpdate(std::string cameraId, int x, int y, int width, int height, int operation, int& index,
                         bool& result, int extra1, int extra2) override;

signals:
    void regionsChanged(const QString& camera);

private:
    mutable std::mutex m_mutex;
    QMap<QString, QMap<int, QRect>> m_regions;
    int m_nextIndex = 1;
};
