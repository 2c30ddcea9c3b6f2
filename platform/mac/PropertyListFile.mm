#import <Foundation/Foundation.h>

#include "platform/PropertyListFile.h"

namespace Norvik::Platform {

namespace {

std::string TextOf(id value) {
  if (![value isKindOfClass:[NSString class]]) return {};
  const char* const text = [static_cast<NSString*>(value) UTF8String];
  return text ? text : "";
}

NSString* StringFrom(const std::string& text) {
  return [NSString stringWithUTF8String:text.c_str()];
}

}  // namespace

struct PropertyListFile::Implementation {
  NSDictionary* root = nil;

  id At(const std::string& key) const { return [root objectForKey:StringFrom(key)]; }
};

PropertyListFile::PropertyListFile(const std::string& path)
    : implementation_(std::make_unique<Implementation>()) {
  @autoreleasepool {
    NSString* const file = StringFrom(path);
    if (file) implementation_->root = [NSDictionary dictionaryWithContentsOfFile:file];
  }
}

PropertyListFile::~PropertyListFile() = default;

bool PropertyListFile::Has(const std::string& key) const {
  @autoreleasepool {
    return implementation_->At(key) != nil;
  }
}

std::string PropertyListFile::Text(const std::string& key) const {
  @autoreleasepool {
    return TextOf(implementation_->At(key));
  }
}

std::string PropertyListFile::FirstText(const std::string& key) const {
  @autoreleasepool {
    const id value = implementation_->At(key);
    if (![value isKindOfClass:[NSArray class]]) return {};
    return TextOf([static_cast<NSArray*>(value) firstObject]);
  }
}

}  // namespace Norvik::Platform
