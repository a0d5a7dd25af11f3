// SPDX-License-Identifier: MIT
#include "bench/PeerPropertyLists.h"

#include "bench/PeerFiles.h"

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <cstdlib>
#include <plist/plist.h>

namespace tav::bench {

namespace {

class Pool {
public:
    ~Pool() { [_pool release]; }

private:
    NSAutoreleasePool* _pool = [[NSAutoreleasePool alloc] init];
};

NSString* textOf(const std::string& text) {
    return [NSString stringWithUTF8String:text.c_str()];
}

id objectOf(const Value& value) {
    switch (value.type) {
    case ValueType::integer:
        return [NSNumber numberWithInt:value.integer];
    case ValueType::boolean:
        return [NSNumber numberWithBool:value.boolean];
    case ValueType::real:
        return [NSNumber numberWithDouble:value.real];
    case ValueType::text:
        return textOf(value.text);
    case ValueType::textArray:
        break;
    }
    NSMutableArray* const array = [NSMutableArray array];
    for (const std::string& text : value.texts)
        [array addObject:textOf(text)];
    return array;
}

NSDictionary* objectsOf(const Data& data) {
    NSMutableDictionary* const root = [NSMutableDictionary dictionaryWithCapacity:1];
    for (const Group& group : data) {
        NSMutableDictionary* const keys = [NSMutableDictionary dictionaryWithCapacity:1];
        for (const Key& key : group.keys)
            [keys setObject:objectOf(key.value) forKey:textOf(key.name)];
        [root setObject:keys forKey:textOf(group.name)];
    }
    return root;
}

Value valueOf(id object) {
    Value value;
    if ([object isKindOfClass:[NSString class]]) {
        value.type = ValueType::text;
        value.text = [object UTF8String];
    } else if ([object isKindOfClass:[NSArray class]]) {
        value.type = ValueType::textArray;
        for (NSString* text in object)
            value.texts.emplace_back([text UTF8String]);
    } else if (*[object objCType] == 'd') {
        value.type = ValueType::real;
        value.real = [object doubleValue];
    } else if (*[object objCType] == *@encode(BOOL)) {
        value.type = ValueType::boolean;
        value.boolean = [object boolValue];
    } else {
        value.integer = [object intValue];
    }
    return value;
}

NSData* writeWithGNUstep(NSDictionary* root) {
    return [NSPropertyListSerialization dataWithPropertyList:root
                                                      format:NSPropertyListXMLFormat_v1_0
                                                     options:0
                                                       error:nullptr];
}

NSDictionary* readWithGNUstep(NSData* text) {
    return [NSPropertyListSerialization propertyListWithData:text
                                                     options:NSPropertyListImmutable
                                                      format:nullptr
                                                       error:nullptr];
}

NSDictionary* readWithOurs(NSData* text) {
    return [static_cast<id>(const_cast<void*>(
        CFPropertyListCreateWithData(kCFAllocatorDefault, reinterpret_cast<CFDataRef>(text),
                                     kCFPropertyListImmutable, nullptr, nullptr))) autorelease];
}

NSDictionary* readWith(Serialization serialization, NSData* text) {
    return serialization == Serialization::GNUstep ? readWithGNUstep(text) : readWithOurs(text);
}

plist_t nodeOf(const Value& value) {
    switch (value.type) {
    case ValueType::integer:
        return plist_new_uint(static_cast<std::uint64_t>(std::int64_t{value.integer}));
    case ValueType::boolean:
        return plist_new_bool(value.boolean);
    case ValueType::real:
        return plist_new_real(value.real);
    case ValueType::text:
        return plist_new_string(value.text.c_str());
    case ValueType::textArray:
        break;
    }
    plist_t array = plist_new_array();
    for (const std::string& text : value.texts)
        plist_array_append_item(array, plist_new_string(text.c_str()));
    return array;
}

std::string textOf(plist_t node) {
    std::uint64_t length = 0;
    const char* const text = plist_get_string_ptr(node, &length);
    return std::string(text, length);
}

Value valueOf(plist_t node) {
    Value value;
    std::uint64_t integer = 0;
    std::uint8_t boolean = 0;
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN:
        value.type = ValueType::boolean;
        plist_get_bool_val(node, &boolean);
        value.boolean = boolean != 0;
        break;
    case PLIST_REAL:
        value.type = ValueType::real;
        plist_get_real_val(node, &value.real);
        break;
    case PLIST_STRING:
        value.type = ValueType::text;
        value.text = textOf(node);
        break;
    case PLIST_ARRAY:
        value.type = ValueType::textArray;
        for (std::uint32_t i = 0; i < plist_array_get_size(node); ++i)
            value.texts.push_back(textOf(plist_array_get_item(node, i)));
        break;
    default:
        plist_get_uint_val(node, &integer);
        value.integer = static_cast<int>(integer);
    }
    return value;
}

/// Calls `visit(name, node)` for each entry.
template <class Visit>
void forEach(plist_t dictionary, const Visit& visit) {
    plist_dict_iter next = nullptr;
    plist_dict_new_iter(dictionary, &next);
    for (;;) {
        char* name = nullptr;
        plist_t node = nullptr;
        plist_dict_next_item(dictionary, next, &name, &node);
        if (node == nullptr)
            break;
        visit(name, node);
        std::free(name);
    }
    std::free(next);
}

CFDataRef writeWithOurs(NSDictionary* root) {
    return CFPropertyListCreateData(kCFAllocatorDefault, root, kCFPropertyListXMLFormat_v1_0, 0,
                                    nullptr);
}

}  // namespace

std::string textWithGNUstep(const Data& data) {
    const Pool pool;
    NSData* const text = writeWithGNUstep(objectsOf(data));
    return std::string(static_cast<const char*>([text bytes]), [text length]);
}

StdStore loadWithGNUstep(const std::string& path) {
    const Pool pool;
    StdStore store;
    NSDictionary* const root = readWithGNUstep([NSData dataWithContentsOfFile:textOf(path)]);
    for (NSString* name in root) {
        auto& keys = store[[name UTF8String]];
        NSDictionary* const group = [root objectForKey:name];
        for (NSString* key in group)
            keys[[key UTF8String]] = valueOf([group objectForKey:key]);
    }
    return store;
}

std::string textWithLibplist(const Data& data) {
    plist_t root = plist_new_dict();
    for (const Group& group : data) {
        plist_t keys = plist_new_dict();
        for (const Key& key : group.keys)
            plist_dict_set_item(keys, key.name.c_str(), nodeOf(key.value));
        plist_dict_set_item(root, group.name.c_str(), keys);
    }
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(root, &bytes, &length);
    std::string text(bytes, length);
    std::free(bytes);
    plist_free(root);
    return text;
}

StdStore loadWithLibplist(const std::string& path) {
    const std::string text = readFile(path);
    plist_t root = nullptr;
    plist_from_memory(text.data(), static_cast<std::uint32_t>(text.size()), &root);
    StdStore store;
    forEach(root, [&](const char* name, plist_t group) {
        auto& keys = store[name];
        forEach(group, [&](const char* key, plist_t node) { keys[key] = valueOf(node); });
    });
    plist_free(root);
    return store;
}

PropertyList::PropertyList(const Data& data) {
    const Pool pool;
    NSDictionary* const root = objectsOf(data);
    _root = [root retain];
    _text = [writeWithGNUstep(root) retain];
}

PropertyList::~PropertyList() {
    [static_cast<id>(_root) release];
    [static_cast<id>(_text) release];
}

std::size_t PropertyList::write(Serialization serialization) const {
    const Pool pool;
    if (serialization == Serialization::GNUstep)
        return [writeWithGNUstep(static_cast<NSDictionary*>(_root)) length];
    const CFDataRef text = writeWithOurs(static_cast<NSDictionary*>(_root));
    const CFIndex length = CFDataGetLength(text);
    CFRelease(text);
    return static_cast<std::size_t>(length);
}

bool PropertyList::read(Serialization serialization) const {
    const Pool pool;
    NSDictionary* const root = readWith(serialization, static_cast<NSData*>(_text));
    return [root count] == [static_cast<NSDictionary*>(_root) count];
}

bool PropertyList::readsTheSame(Serialization serialization) const {
    const Pool pool;
    NSDictionary* const root = readWith(serialization, static_cast<NSData*>(_text));
    return [root isEqual:static_cast<id>(_root)];
}

}  // namespace tav::bench
