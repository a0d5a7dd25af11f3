// SPDX-License-Identifier: MIT
// GNUstep takes the modification date for the creation date, which Linux did not tell in its time.
#include "Foundation/BirthTime.h"
#include "Foundation/ReplaceMethod.h"

using foundation::birthTimeOf;
using foundation::Links;

/// GNUstep's attributes of an item, with another creation date. They stay as lazy as they are: what
/// is not asked for is not computed.
@interface ULABornFileAttributes : NSDictionary {
    NSDictionary* _attributes;
    NSDate* _creationDate;
}
- (id)initWithAttributes:(NSDictionary*)attributes creationDate:(NSDate*)date;
@end

@implementation ULABornFileAttributes

- (id)initWithAttributes:(NSDictionary*)attributes creationDate:(NSDate*)date {
    self = [super init];
    if (self != nil) {
        _attributes = [attributes retain];
        _creationDate = [date retain];
    }
    return self;
}

- (void)dealloc {
    [_attributes release];
    [_creationDate release];
    [super dealloc];
}

- (NSUInteger)count {
    return [_attributes count];
}

- (id)objectForKey:(id)key {
    return [NSFileCreationDate isEqual:key] ? _creationDate : [_attributes objectForKey:key];
}

- (NSEnumerator*)keyEnumerator {
    return [_attributes keyEnumerator];
}

// One key after the other: the attributes do not change.
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id*)objects
                                    count:(NSUInteger)count {
    if (state->state == 0) {
        state->state = 1;
        state->mutationsPtr = &state->extra[0];
        state->extra[1] = reinterpret_cast<unsigned long>([self keyEnumerator]);
    }
    id const key = count > 0 ? [reinterpret_cast<NSEnumerator*>(state->extra[1]) nextObject] : nil;
    objects[0] = key;
    state->itemsPtr = objects;
    return key != nil ? 1 : 0;
}

@end

namespace {

// Cut to microseconds: as a number a date has no room for more, and must not round up to the next
// second.
NSDate* dateOf(const timespec& time) {
    const double fraction = static_cast<double>(time.tv_nsec / 1000) / 1e6;
    return
        [NSDate dateWithTimeIntervalSince1970:static_cast<NSTimeInterval>(time.tv_sec) + fraction];
}

NSDictionary* withBirthTime(NSDictionary* attributes, NSFileManager* files, NSString* path,
                            Links links) {
    if (attributes == nil || [attributes isKindOfClass:[ULABornFileAttributes class]])
        return attributes;
    const auto birthTime = birthTimeOf([files fileSystemRepresentationWithPath:path], links);
    if (!birthTime)
        return attributes;
    return [[[ULABornFileAttributes alloc] initWithAttributes:attributes
                                                 creationDate:dateOf(*birthTime)] autorelease];
}

}  // namespace

@interface NSFileManager (ULABirthTime)
- (NSDictionary*)ula_fileAttributesAtPath:(NSString*)path traverseLink:(BOOL)follow;
- (NSDictionary*)ula_attributesOfItemAtPath:(NSString*)path error:(NSError**)error;
@end

@implementation NSFileManager (ULABirthTime)

+ (void)load {
    Class files = [NSFileManager class];
    foundation::exchangeInstanceMethods(files, @selector(fileAttributesAtPath:traverseLink:),
                                        @selector(ula_fileAttributesAtPath:traverseLink:));
    foundation::exchangeInstanceMethods(files, @selector(attributesOfItemAtPath:error:),
                                        @selector(ula_attributesOfItemAtPath:error:));
}

- (NSDictionary*)ula_fileAttributesAtPath:(NSString*)path traverseLink:(BOOL)follow {
    return withBirthTime([self ula_fileAttributesAtPath:path traverseLink:follow], self, path,
                         follow ? Links::Follow : Links::Keep);
}

- (NSDictionary*)ula_attributesOfItemAtPath:(NSString*)path error:(NSError**)error {
    return withBirthTime([self ula_attributesOfItemAtPath:path error:error], self, path,
                         Links::Keep);
}

@end
