#pragma once

#include "macos/StandInPhotos.h"

#import <Photos/Photos.h>

#include <Block.h>

/// What the parts of the stand-in PhotoKit share.
namespace quorvane::test {

inline StandInPhotos& photos() {
    return StandInPhotos::shared();
}

inline NSString* stringOf(const std::string& text) {
    return [NSString stringWithUTF8String:text.c_str()];
}

inline NSString* stringOf(const std::optional<std::string>& text) {
    return text ? stringOf(*text) : nil;
}

/// Runs on the library's thread what ends with a handler of this kind.
template <typename Handler, typename Work>
void answerLater(Handler handler, Work work) {
    auto kept = Block_copy(handler);
    photos().post([kept, work] {
        @autoreleasepool {
            work(kept);
        }
        Block_release(kept);
    });
}

/// With nothing to say, where the library is in that mood.
NSError* errorOf(NSString* domain, NSInteger code);

} // namespace quorvane::test

@interface PHFetchResult (StandIn)
- (PHFetchResult*)again; ///< what there is now
@end

@interface PHAsset (StandIn)
- (const quorvane::test::StandInPhotos::Row&)row;
@end
