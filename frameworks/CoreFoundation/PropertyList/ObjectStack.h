// SPDX-License-Identifier: MIT
#pragma once

#include "ObjectFactory.h"

#include <cstddef>
#include <vector>

namespace cf::plist {

/// The members of the containers that a reader is in the middle of. What is left at the end, as
/// after a mistake in the list, is released.
class ObjectStack {
public:
    explicit ObjectStack(ObjectFactory& factory) : _factory(factory) {}
    ~ObjectStack() {
        for (const Object object : _objects)
            _factory.release(object);
    }
    ObjectStack(const ObjectStack&) = delete;
    ObjectStack& operator=(const ObjectStack&) = delete;

    std::size_t size() const { return _objects.size(); }
    /// Adopts the object. Fails: false for null.
    bool push(Object object) {
        if (object != nullptr)
            _objects.push_back(object);
        return object != nullptr;
    }
    /// Containers of what was pushed since the stack had the size `begin`.
    Object takeArray(std::size_t begin) {
        const Object made = _factory.array(std::span(_objects).subspan(begin));
        _objects.resize(begin);
        return made;
    }
    Object takeDictionary(std::size_t begin) {
        const Object made = _factory.dictionary(std::span(_objects).subspan(begin));
        _objects.resize(begin);
        return made;
    }

private:
    ObjectFactory& _factory;
    std::vector<Object> _objects;
};

}  // namespace cf::plist
