// SPDX-License-Identifier: MIT
// Conversions between the library's texts and the platform's, for Objective-C++. Texts are UTF-8
// and valid, objects not null; results are autoreleased.
// Thread: any.
#pragma once

#include "ula/FastString.h"

#import <Foundation/Foundation.h>

#include <set>
#include <string>
#include <vector>

@interface NSString (ObjCHelper)

- (std::string)toStdString;
- (tav::ula::FastString)toUTF8String;

/// A text ends at its first zero byte.
+ (NSString*)fromStdString:(const std::string&)text;
/// Allocates nothing but the object: a text without a zero byte at its end is terminated in the
/// thread's scratch pad.
+ (NSString*)fromUTF8String:(const tav::ula::FastString&)text;

/// The order in which the Finder lists names: letters whatever their case and composition, digits
/// by the number they stand for.
- (NSComparisonResult)compareLikeFinder:(NSString*)other;

@end

@interface NSArray (ObjCHelper)

- (std::vector<std::string>)toStdStringArray;
- (std::vector<tav::ula::FastString>)toUtf8StringArray;
- (std::set<std::string>)toStdStringSet;

+ (NSArray*)fromStdStringArray:(const std::vector<std::string>&)texts;
+ (NSArray*)fromUTF8StringArray:(const std::vector<tav::ula::FastString>&)texts;
+ (NSArray*)fromStdStringSet:(const std::set<std::string>&)texts;

@end
