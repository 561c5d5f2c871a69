#include "platform/macos/AppleScripts.h"

#include "platform/macos/CocoaText.h"

namespace quorvane {

QString AppleScripts::run(const QString& program) {
    const std::lock_guard lock(mutex_);
    @autoreleasepool {
        NSAppleScript* script =
            [[[NSAppleScript alloc] initWithSource:stringOf(program)] autorelease];
        if (!script)
            throw ScriptNotCreated(QStringLiteral("AppleScript programı oluşturulamadı"));
        NSDictionary* error = nil;
        NSAppleEventDescriptor* result = [script executeAndReturnError:&error];
        if (!result)
            throw ScriptFailed(textOf([error description]).simplified());
        return textOf([result stringValue]);
    }
}

} // namespace quorvane
