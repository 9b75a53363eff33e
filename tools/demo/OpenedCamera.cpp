#include "OpenedCamera.h"

#include <utility>

#include <ViewerBiz3/ViewerBiz3.h>

OpenedCamera::OpenedCamera(std::string id) : m_id(std::move(id)), m_result(ViewerBiz3::OpenCamera(m_id)) {}

OpenedCamera::~OpenedCamera()
{
    if (m_result == 0) {
        ViewerBiz3::CloseCamera(m_id);
    }
}
