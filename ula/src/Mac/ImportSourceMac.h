// SPDX-License-Identifier: MIT
#pragma once

#include "ula/src/Core/ImportSource.h"
#include "ula/src/Mac/CFOwner.h"

#include <ImageCapture/ImageCapture.h>

namespace tav::ula {

/// A device of the platform's image capture.
class ImportSourceMac : public ImportSource {
public:
    explicit ImportSourceMac(ICAObject device);

    std::uint32_t top() override { return _device; }
    bool count(std::uint32_t folder, std::uint32_t& result) override;
    bool item(std::uint32_t folder, std::uint32_t index, ImportSourceItem& result) override;
    bool read(std::uint32_t file, std::uint64_t offset, std::size_t size,
              std::string_view& bytes) override;
    std::string problem() override;
    bool isGone() override;

private:
    bool succeeded(ICAError error);

    ICAObject _device;
    ICAObject _deviceList = 0;
    ICAError _error = 0;
    CFOwner<CFDataRef> _data;  ///< what was read last
};

}  // namespace tav::ula
