// SPDX-License-Identifier: MIT
#import "ObjectiveCTry.h"

#import <Foundation/Foundation.h>

void* ULAObjectiveCTry(void (*function)(void*), void* context) {
    @try {
        function(context);
    } @catch (NSException* exception) {
        return [[exception retain] autorelease];
    }
    return nil;
}
