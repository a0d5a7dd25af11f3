// SPDX-License-Identifier: MIT
#include "SystemProfiler/HardwareReport.h"

#include "SystemProfiler/GraphicsDevices.h"
#include "SystemProfiler/KernelFile.h"
#include "SystemProfiler/Processors.h"

#include <glib.h>

namespace systemprofiler {

namespace {

constexpr const char* kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                              "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                              "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                              "<plist version=\"1.0\">\n<array>\n";
constexpr const char* kEnd = "</array>\n</plist>\n";

/// Firmware may hold any bytes; those that no text can have go.
std::string escaped(const std::string& text) {
    const bool isUtf8 =
        g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '&')
            result += "&amp;";
        else if (character == '<')
            result += "&lt;";
        else if (character == '>')
            result += "&gt;";
        else if (byte >= 0x20 && byte != 0x7F && (byte < 0x80 || isUtf8))
            result += character;
    }
    return result;
}

/// What is not known has no entry.
std::string entry(const char* key, const std::string& value) {
    return value.empty()
               ? std::string()
               : std::string("<key>") + key + "</key>\n<string>" + escaped(value) + "</string>\n";
}

std::string entry(const char* key, uint64_t value) {
    return value == 0 ? std::string()
                      : std::string("<key>") + key + "</key>\n<integer>" + std::to_string(value) +
                            "</integer>\n";
}

/// What the firmware says it is.
std::string machineModel(const std::string& root) {
    const std::string name = readKernelFile(root + "/sys/class/dmi/id/product_name");
    return name.empty() ? readKernelFile(root + "/proc/device-tree/model") : name;
}

std::string processorItems(const std::string& root) {
    const Processors processors = readProcessors(root);
    return "<dict>\n" + entry("_name", "hardware_overview") + entry("cpu_type", processors.type) +
           entry("current_processor_speed", speedText(processors.speedMHz)) +
           entry("machine_model", machineModel(root)) + entry("number_cores", processors.cores) +
           entry("number_processors", processors.count) + entry("packages", processors.packages) +
           "</dict>\n";
}

std::string graphicsItems(const std::string& root) {
    std::string items;
    for (const GraphicsDevice& device : readGraphicsDevices(root))
        items += "<dict>\n" + entry("_name", device.model) +
                 entry("spdisplays_driver", device.driver) +
                 entry("spdisplays_vram", videoMemoryText(device)) +
                 entry("sppci_model", device.model) + "</dict>\n";
    return items;
}

std::string itemsOf(const std::string& dataType, const std::string& root) {
    if (dataType == "SPHardwareDataType")
        return processorItems(root);
    return dataType == "SPDisplaysDataType" ? graphicsItems(root) : std::string();
}

}  // namespace

std::string hardwareReport(const std::vector<std::string>& dataTypes, const std::string& root) {
    std::string report = kHead;
    for (const std::string& dataType : dataTypes)
        if (const std::string items = itemsOf(dataType, root); !items.empty())
            report += "<dict>\n" + entry("_dataType", dataType) + "<key>_items</key>\n<array>\n" +
                      items + "</array>\n</dict>\n";
    return report + kEnd;
}

}  // namespace systemprofiler
