#import <Foundation/Foundation.h>

namespace {

/// Runs a command of AppleScript in the Finder. False if the script fails, with the reason in the
/// system's log. Kept for operations that have no other interface; nothing uses it at present.
[[maybe_unused]] bool runScript(NSString* source) {
  @autoreleasepool {
    NSString* const text =
        [NSString stringWithFormat:@"tell application \"Finder\" to %@", source ? source : @""];
    NSAppleScript* const script = [[NSAppleScript alloc] initWithSource:text];
    NSDictionary* error = nil;
    if (script && [script executeAndReturnError:&error]) return true;
    NSLog(@"%@", error);
    return false;
  }
}

}  // namespace
