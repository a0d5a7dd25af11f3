// SPDX-License-Identifier: MIT
#import "CallbackArray.h"

@implementation ULACallbackArray

- (id)initWithValues:(const void**)values
               count:(NSUInteger)count
           callBacks:(const CFArrayCallBacks*)callBacks {
    self = [super init];
    if (self == nil)
        return nil;
    if (callBacks != nullptr)
        _callBacks = *callBacks;
    _values.reserve(count);
    for (NSUInteger i = 0; i < count; ++i)
        _values.push_back(_callBacks.retain ? _callBacks.retain(nullptr, values[i]) : values[i]);
    return self;
}

- (void)dealloc {
    if (_callBacks.release != nullptr) {
        for (const void* value : _values)
            _callBacks.release(nullptr, value);
    }
    [super dealloc];
}

- (NSUInteger)count {
    return _values.size();
}

- (id)objectAtIndex:(NSUInteger)index {
    if (index >= _values.size())
        [NSException raise:NSRangeException format:@"index %lu of %lu", index, _values.size()];
    return static_cast<id>(const_cast<void*>(_values[index]));
}

// Copying an immutable array keeps it; NSArray's own way would retain the values as objects.
- (id)copyWithZone:(NSZone*)zone {
    (void)zone;
    return [self retain];
}

@end
