// SPDX-License-Identifier: MIT
#pragma once

#include "ula/PTPImporter.h"
#include "ula/src/Mac/objcImporter.h"

namespace tav::ula {

/// The platform's image capture.
class PTPImporterMac : public PTPImporter {
public:
    PTPImporterMac();
    /// Leaves the platform's registration and what knows the devices behind, on purpose: the only
    /// object lives as long as the process.
    ~PTPImporterMac() override;

    void downloadFiles(const std::string& deviceId, const std::vector<std::string>& fileNames,
                       const std::string& location) override;
    std::vector<std::string> getDevices() override;

    /// For the platform's notification.
    void handleAdded(int device);
    void handleRemoved(int device);

private:
    objcImporter* _importer;
};

}  // namespace tav::ula
