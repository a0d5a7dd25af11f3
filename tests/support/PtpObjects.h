// SPDX-License-Identifier: MIT
// The files of a folder as the objects of a camera, with the data sets of ISO 15740.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace tav::test {

/// Numbers and texts, one behind the other, little-endian.
class PtpData {
public:
    PtpData& number(std::uint64_t value, std::size_t size);
    PtpData& array(const std::vector<std::uint32_t>& values, std::size_t size);
    /// A text of UTF-8, without characters beyond the basic plane.
    PtpData& text(const std::string& utf8);
    const std::string& bytes() const { return _bytes; }

private:
    std::string _bytes;
};

struct PtpObject {
    std::uint32_t parent = 0;
    std::string name;
    std::filesystem::path path;
    bool isFolder = false;
};

class PtpObjects {
public:
    static constexpr std::uint32_t kStore = 0x00010001;

    explicit PtpObjects(const std::filesystem::path& folder) { add(0, folder); }

    /// What the camera says that the file is called. "100TEST/a.jpg"
    void rename(const std::string& path, const std::string& name);
    /// The handles of what lies in an object; 0: everything there is, 0xFFFFFFFF: at the top.
    std::vector<std::uint32_t> handlesIn(std::uint32_t parent) const;
    bool has(std::uint32_t handle) const { return _objects.contains(handle); }
    bool isFolder(std::uint32_t handle) const { return _objects.at(handle).isFolder; }
    /// Object info, with another size than it has if that is not negative.
    std::string info(std::uint32_t handle, std::int64_t toldSize) const;
    std::string contents(std::uint32_t handle) const;

private:
    void add(std::uint32_t parent, const std::filesystem::path& folder);

    std::map<std::uint32_t, PtpObject> _objects;
    std::uint32_t _next = 1;
};

}  // namespace tav::test
