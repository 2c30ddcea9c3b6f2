#import <Foundation/Foundation.h>

#include "platform/SystemLog.h"

namespace Norvik::Platform {

void WriteSystemLog(const std::string& line) {
  @autoreleasepool {
    NSString* const text = [NSString stringWithUTF8String:line.c_str()];
    NSLog(@"%@", text ? text : @"");
  }
}

}  // namespace Norvik::Platform
