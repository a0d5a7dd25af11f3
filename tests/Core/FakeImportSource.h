// SPDX-License-Identifier: MIT
#pragma once

#include "ula/src/Core/ImportSource.h"

#include <algorithm>
#include <functional>
#include <map>
#include <vector>

namespace tav::test {

/// A device of a test's own: folders of items, files with contents.
class FakeImportSource : public ula::ImportSource {
public:
    struct Facts {
        std::map<std::uint32_t, std::vector<ula::ImportSourceItem>> folders;
        std::map<std::uint32_t, std::string> contents;
        std::map<std::uint32_t, bool> unreadable;
        bool isGone = false;
        int counted = 0;  ///< how many folders were asked for
        std::function<void(std::uint64_t offset)> onRead;
    };

    explicit FakeImportSource(Facts& facts) : _facts(facts) {}

    std::uint32_t top() override { return 1; }
    bool count(std::uint32_t folder, std::uint32_t& result) override {
        ++_facts.counted;
        result = static_cast<std::uint32_t>(_facts.folders[folder].size());
        return !_facts.isGone && !_facts.unreadable[folder];
    }
    bool item(std::uint32_t folder, std::uint32_t index, ula::ImportSourceItem& result) override {
        result = _facts.folders[folder].at(index);
        return true;
    }
    bool read(std::uint32_t file, std::uint64_t offset, std::size_t size,
              std::string_view& bytes) override {
        if (_facts.onRead)
            _facts.onRead(offset);
        const std::string& all = _facts.contents[file];
        // What was read before is gone.
        _last = {};
        const auto piece =
            std::string_view(all).substr(std::min<std::size_t>(offset, all.size()), size);
        _last.assign(piece.begin(), piece.end());
        bytes = std::string_view(_last.data(), _last.size());
        return !_facts.isGone && !_facts.unreadable[file];
    }
    std::string problem() override { return _facts.isGone ? "it has gone" : "it is worn out"; }
    bool isGone() override { return _facts.isGone; }

private:
    Facts& _facts;
    std::vector<char> _last;
};

}  // namespace tav::test
