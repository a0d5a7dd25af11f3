// SPDX-License-Identifier: MIT
#include "ImageCapture/Gphoto.h"
#include "ImageCapture/GphotoLibrary.h"
#include "ImageCapture/GphotoOwners.h"

namespace imagecapture {

namespace {

void addUsb(CameraList* list, std::vector<DetectedCamera>& cameras) {
    for (int i = 0; i < gp_list_count(list); ++i) {
        const char *model = nullptr, *port = nullptr;
        gp_list_get_name(list, i, &model);
        gp_list_get_value(list, i, &port);
        // Mounted cards are found, too, but not by all their names.
        if (model != nullptr && port != nullptr && std::string(port).starts_with("usb:"))
            cameras.push_back({model, port});
    }
}

}  // namespace

std::vector<DetectedCamera> detectUsbCameras() {
    std::lock_guard lock(GphotoLibrary::instance().lock());
    CameraAbilitiesList* drivers = GphotoLibrary::instance().drivers();
    PortList ports = currentPorts();
    CameraList* made = nullptr;
    if (drivers == nullptr || ports == nullptr || gp_list_new(&made) < GP_OK)
        return {};
    const ListOwner list(made);
    GPContext* context = gp_context_new();
    std::vector<DetectedCamera> cameras;
    if (gp_abilities_list_detect(drivers, ports.get(), made, context) >= GP_OK)
        addUsb(made, cameras);
    gp_context_unref(context);
    return cameras;
}

}  // namespace imagecapture
