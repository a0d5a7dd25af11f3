// SPDX-License-Identifier: MIT
#include "FoundationObjects.h"

#include <algorithm>
#include <functional>

namespace cf::plist {

namespace {

id objectOf(Object object) {
    return static_cast<id>(object);
}

NSString* makeString(std::string_view text) {
    return [[NSString alloc] initWithBytes:text.data()
                                    length:text.size()
                                  encoding:NSUTF8StringEncoding];
}

}  // namespace

FoundationObjects::~FoundationObjects() {
    for (const RecentKey& key : _recentKeys)
        [key.object release];
}

Object FoundationObjects::string(std::string_view text) {
    return makeString(text);
}

Object FoundationObjects::key(std::string_view text) {
    RecentKey& recent = _recentKeys[std::hash<std::string_view>()(text) % _recentKeys.size()];
    if (recent.object != nil && std::string_view(recent.bytes.data(), recent.length) == text)
        return [recent.object retain];
    NSString* const made = makeString(text);
    if (text.size() > recent.bytes.size())
        return made;
    [recent.object release];
    recent.object = [made retain];
    recent.length = text.size();
    std::copy(text.begin(), text.end(), recent.bytes.begin());
    return made;
}

Object FoundationObjects::boolean(bool value) {
    return [[NSNumber alloc] initWithBool:value];
}

Object FoundationObjects::integer(std::int64_t value) {
    return [[NSNumber alloc] initWithLongLong:value];
}

Object FoundationObjects::unsignedInteger(std::uint64_t value) {
    return [[NSNumber alloc] initWithUnsignedLongLong:value];
}

Object FoundationObjects::real(double value) {
    return [[NSNumber alloc] initWithDouble:value];
}

Object FoundationObjects::shortReal(float value) {
    return [[NSNumber alloc] initWithFloat:value];
}

Object FoundationObjects::date(double time) {
    return [[NSDate alloc] initWithTimeIntervalSinceReferenceDate:time];
}

Object FoundationObjects::data(std::string_view bytes) {
    return [[NSData alloc] initWithBytes:bytes.data() length:bytes.size()];
}

Object FoundationObjects::array(std::span<const Object> members) {
    _values.clear();
    for (const Object member : members)
        _values.push_back(objectOf(member));
    NSArray* const made = [[NSArray alloc] initWithObjects:_values.data() count:_values.size()];
    for (const id value : _values)
        [value release];
    return made;
}

Object FoundationObjects::dictionary(std::span<const Object> pairs) {
    _keys.clear();
    _values.clear();
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
        _keys.push_back(objectOf(pairs[i]));
        _values.push_back(objectOf(pairs[i + 1]));
    }
    NSDictionary* const made = [[NSDictionary alloc] initWithObjects:_values.data()
                                                             forKeys:_keys.data()
                                                               count:_keys.size()];
    for (const Object object : pairs)
        [objectOf(object) release];
    return made;
}

Object FoundationObjects::retain(Object object) {
    return [objectOf(object) retain];
}

void FoundationObjects::release(Object object) {
    [objectOf(object) release];
}

}  // namespace cf::plist
