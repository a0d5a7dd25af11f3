// SPDX-License-Identifier: MIT
#pragma once

#include "bench/PeerStore.h"

#include <string>

/// Property lists in XML by others. What each loads is a store of its own values.
namespace tav::bench {

std::string textWithLibplist(const Data& data);
StdStore loadWithLibplist(const std::string& path);

/// Through Foundation's objects and GNUstep's own reader and writer.
std::string textWithGNUstep(const Data& data);
StdStore loadWithGNUstep(const std::string& path);

/// The same objects each time, through one reader or writer or the other.
enum class Serialization { Ours, GNUstep };
class PropertyList {
public:
    explicit PropertyList(const Data& data);
    ~PropertyList();
    PropertyList(const PropertyList&) = delete;
    PropertyList& operator=(const PropertyList&) = delete;

    /// The length of the text.
    std::size_t write(Serialization serialization) const;
    /// From a text of it. False unless it is the same list.
    bool read(Serialization serialization) const;
    bool readsTheSame(Serialization serialization) const;

private:
    void* _root;
    void* _text;
};

}  // namespace tav::bench
