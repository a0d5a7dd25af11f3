// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/filesystem/DurableFile.h"
#include "ula/foundation/xml/XmlOutput.h"

namespace tav::xml {

/// The text of a document on its way to a file, which it replaces whole or not at all.
/// Thread: one thread uses one object.
/// Fails: everything throws `XmlException`; without `commit` nothing changes on disk.
class TAV_FOUNDATION_API XmlFile {
public:
    XmlFile(const String& path, filesystem::DurableFileOptions options);

    XmlOutput& output() { return _output; }
    /// To be called once, last.
    void commit();

private:
    void write(std::string_view text);

    filesystem::DurableFile _file;
    XmlOutput _output;
};

}  // namespace tav::xml
