// SPDX-License-Identifier: MIT
#include "ImageCapture/GphotoLibrary.h"

#include "CoreServices/Patience.h"

#include <gphoto2/gphoto2-context.h>

namespace imagecapture {

namespace {

constexpr std::chrono::seconds kPortPatience{5};

PortList readPorts() {
    GPPortInfoList* list = nullptr;
    if (gp_port_info_list_new(&list) < GP_OK)
        return nullptr;
    PortList ports(list, [](GPPortInfoList* old) { gp_port_info_list_free(old); });
    return gp_port_info_list_load(list) < GP_OK ? nullptr : ports;
}

}  // namespace

// Never destroyed: cameras may be used until the very end.
GphotoLibrary& GphotoLibrary::instance() {
    static auto* library = new GphotoLibrary;
    return *library;
}

CameraAbilitiesList* GphotoLibrary::drivers() {
    if (_drivers != nullptr || gp_abilities_list_new(&_drivers) < GP_OK)
        return _drivers;
    GPContext* context = gp_context_new();
    if (gp_abilities_list_load(_drivers, context) < GP_OK) {
        gp_abilities_list_free(_drivers);
        _drivers = nullptr;
    }
    gp_context_unref(context);
    return _drivers;
}

bool GphotoLibrary::findDriver(const std::string& model, CameraAbilities& abilities) {
    if (drivers() == nullptr)
        return false;
    int index = gp_abilities_list_lookup_model(_drivers, model.c_str());
    return index >= GP_OK && gp_abilities_list_get_abilities(_drivers, index, &abilities) >= GP_OK;
}

PortList currentPorts() {
    return coreservices::askPatiently<PortList>("gphoto2 ports", kPortPatience, readPorts)
        .value_or(nullptr);
}

}  // namespace imagecapture
