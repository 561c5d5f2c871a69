// What GNUstep leaves out of Apple's NSFileManager.
#pragma GCC system_header
#include_next <Foundation/NSFileManager.h>

@interface NSFileManager (Trash)
- (BOOL)trashItemAtURL:(NSURL*)url resultingItemURL:(NSURL**)outResultingURL error:(NSError**)error;
@end
