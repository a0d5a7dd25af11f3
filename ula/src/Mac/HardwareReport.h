// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

namespace tav::ula {

/// The first item of the system's report on a data type ("SPHardwareDataType"). Autoreleased.
/// Fails: nil, not logged, when there is no report, or it has not been written when the program
/// that writes it has just been started: nobody waits for it.
NSDictionary* hardwareReport(NSString* dataType);

}  // namespace tav::ula
