// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/filesystem/DurableFile.h"
#include "ula/foundation/xml/XmlWriter.h"

namespace tav::xml {

/// An XML document written straight to a file, which it replaces whole or not at all.
/// Thread: one thread uses one object.
/// Fails: everything throws `XmlException`; without `commit` nothing changes on disk.
class TAV_FOUNDATION_API XmlFile {
public:
    XmlFile(const String& path, bool indent, filesystem::DurableFileOptions options);

    XmlWriter& writer() { return _writer; }
    /// To be called once, last, with every element ended.
    void commit();

private:
    void write(std::string_view text);

    filesystem::DurableFile _file;
    XmlWriter _writer;
};

}  // namespace tav::xml
