// SPDX-License-Identifier: MIT
#pragma once

#include "ObjectFactory.h"

#import <Foundation/Foundation.h>
#include <array>
#include <vector>

namespace cf::plist {

/// Makes Foundation's objects, the immutable ones.
class FoundationObjects : public ObjectFactory {
public:
    FoundationObjects() = default;
    ~FoundationObjects() override;
    FoundationObjects(const FoundationObjects&) = delete;
    FoundationObjects& operator=(const FoundationObjects&) = delete;

    Object string(std::string_view text) override;
    Object key(std::string_view text) override;
    Object boolean(bool value) override;
    Object integer(std::int64_t value) override;
    Object unsignedInteger(std::uint64_t value) override;
    Object real(double value) override;
    Object shortReal(float value) override;
    Object date(double time) override;
    Object data(std::string_view bytes) override;
    Object array(std::span<const Object> members) override;
    Object dictionary(std::span<const Object> pairs) override;
    Object retain(Object object) override;
    void release(Object object) override;

private:
    /// A key that was made lately. Groups of settings tend to have the same ones.
    struct RecentKey {
        NSString* object = nil;
        std::size_t length = 0;
        std::array<char, 48> bytes;
    };

    std::array<RecentKey, 512> _recentKeys;
    std::vector<id> _keys;
    std::vector<id> _values;
};

}  // namespace cf::plist
