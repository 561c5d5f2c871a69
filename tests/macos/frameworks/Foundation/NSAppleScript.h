// What GNUstep leaves out of Apple's NSAppleScript and NSAppleEventDescriptor.
#pragma GCC system_header
#import <Foundation/NSAppleEventDescriptor.h>
#include_next <Foundation/NSAppleScript.h>

@class NSDictionary, NSString;

@interface NSAppleEventDescriptor (AppleEvents)
- (NSString*)stringValue;
@end

@interface NSAppleScript (AppleEvents)
- (instancetype)initWithSource:(NSString*)source;
- (NSAppleEventDescriptor*)executeAndReturnError:(NSDictionary**)errorInfo;
@end
