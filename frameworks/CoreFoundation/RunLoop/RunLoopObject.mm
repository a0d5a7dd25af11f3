// SPDX-License-Identifier: MIT
#include "RunLoopObject.h"

#include "CoreFoundation/ThreadSanitizer.h"
#include "RunLoop.h"
#include "Source.h"
#include "Timer.h"

#import <Foundation/Foundation.h>

#include <optional>

// The CF objects: they only hold the C++ objects and count their references.
@interface ULACountedObject : NSObject
@end

@implementation ULACountedObject

- (void)dealloc {
    cf::ends(self);
    [super dealloc];
}

@end

@interface ULARunLoop : ULACountedObject {
@public
    std::optional<cf::RunLoop> _loop;
}
@end

@implementation ULARunLoop
@end

@interface ULARunLoopSource : ULACountedObject {
@public
    std::optional<cf::Source> _source;
}
@end

@implementation ULARunLoopSource

- (BOOL)isEqual:(id)other {
    if (self == other || ![other isKindOfClass:[ULARunLoopSource class]])
        return self == other;
    const CFRunLoopSourceContext& mine = _source->context();
    const CFRunLoopSourceContext& theirs =
        static_cast<ULARunLoopSource*>(other)->_source->context();
    return mine.equal != nullptr && mine.equal == theirs.equal &&
           mine.equal(mine.info, theirs.info);
}

- (NSUInteger)hash {
    const CFRunLoopSourceContext& mine = _source->context();
    return mine.hash != nullptr ? mine.hash(mine.info) : [super hash];
}

@end

@interface ULARunLoopTimer : ULACountedObject {
@public
    std::optional<cf::Timer> _timer;
}
@end

@implementation ULARunLoopTimer
@end

namespace cf {

RunLoop& loopOf(CFRunLoopRef reference) {
    return *reinterpret_cast<ULARunLoop*>(reference)->_loop;
}

Source& sourceOf(CFRunLoopSourceRef reference) {
    return *reinterpret_cast<ULARunLoopSource*>(reference)->_source;
}

Timer& timerOf(CFRunLoopTimerRef reference) {
    return *reinterpret_cast<ULARunLoopTimer*>(reference)->_timer;
}

RunLoop& newRunLoop() {
    auto* object = [[ULARunLoop alloc] init];
    return object->_loop.emplace(reinterpret_cast<CFRunLoopRef>(object));
}

CFRunLoopSourceRef newSource(CFIndex order, const CFRunLoopSourceContext& context) {
    auto* object = [[ULARunLoopSource alloc] init];
    auto reference = reinterpret_cast<CFRunLoopSourceRef>(object);
    object->_source.emplace(reference, order, context);
    return reference;
}

CFRunLoopTimerRef newTimer(CFAbsoluteTime fireDate, CFTimeInterval intervalSeconds,
                           CFRunLoopTimerCallBack callout, const CFRunLoopTimerContext& context) {
    auto* object = [[ULARunLoopTimer alloc] init];
    auto reference = reinterpret_cast<CFRunLoopTimerRef>(object);
    object->_timer.emplace(reference, fireDate, intervalSeconds, callout, context);
    return reference;
}

}  // namespace cf
