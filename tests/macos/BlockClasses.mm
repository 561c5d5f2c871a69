// The GNU runtime knows blocks as memory only. Their classes get the content of a class of ours, so
// that a block can be retained, copied and put into an array.
#include "macos/StandInPhotos.h"

#import <Foundation/Foundation.h>

#include <Block.h>
#include <objc/runtime.h>

#include <algorithm>

extern "C" {
extern void* _NSConcreteStackBlock[32];
extern void* _NSConcreteMallocBlock[32];
extern void* _NSConcreteGlobalBlock[32];
}

@interface QuorvaneBlock : NSObject
@end

@implementation QuorvaneBlock
- (id)copy {
    return static_cast<id>(_Block_copy(self));
}
- (id)copyWithZone:(NSZone*)zone {
    return static_cast<id>(_Block_copy(self));
}
- (id)retain {
    return static_cast<id>(_Block_copy(self));
}
- (oneway void)release {
    _Block_release(self);
}
@end

namespace quorvane::test {

void installBlockClasses() {
    constexpr std::size_t wordsOfAClass = 17;
    @autoreleasepool {
        [QuorvaneBlock class]; // resolved now
        auto* words = reinterpret_cast<void**>([QuorvaneBlock class]);
        for (void** place : {_NSConcreteStackBlock, _NSConcreteMallocBlock, _NSConcreteGlobalBlock})
            std::copy_n(words, wordsOfAClass, place);
    }
}

} // namespace quorvane::test
