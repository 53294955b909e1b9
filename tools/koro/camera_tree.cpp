#include "tools/koro/camera_tree.h"

#include <koro/gentl_values.h>

#include <iterator>

namespace koro::tool
{

bool CameraRecord::LooksUsable() const
{
    return !accessStatus || *accessStatus == KORO_DEVICE_ACCESS_STATUS_READWRITE ||
           *accessStatus == KORO_DEVICE_ACCESS_STATUS_UNKNOWN;
}

size_t ProducerRecord::NumUsableCameras() const
{
    size_t count = 0;
    for (const InterfaceRecord& oneInterface : interfaces)
    {
        for (const CameraRecord& camera : oneInterface.cameras)
        {
            if (camera.LooksUsable()) ++count;
        }
    }
    return count;
}

std::string AccessStatusName(int32_t status)
{
    static const char* const names[] = {"Unknown", "ReadWrite",     "ReadOnly",    "NoAccess",
                                        "Busy",    "OpenReadWrite", "OpenReadOnly"};
    if (status >= 0 && static_cast<size_t>(status) < std::size(names)) return names[status];
    return std::to_string(status);
}

} // namespace koro::tool
