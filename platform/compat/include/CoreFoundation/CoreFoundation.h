#pragma once

// The calls of Core Foundation that are used here, for systems without it. In all of these headers
// they are functions of C++, so a library of another program that exports Apple's names stays apart
// from them.

#include <stdint.h>

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int32_t SInt32;
typedef uint32_t UInt32;
typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef uint32_t CFStringEncoding;
typedef CFIndex CFNumberType;
typedef CFIndex CFPropertyListFormat;
typedef CFIndex CFURLPathStyle;

typedef const void* CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFData* CFDataRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef struct __CFError* CFErrorRef;
typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFURL* CFURLRef;

#define CF_NOESCAPE
typedef void (*CFDictionaryApplierFunction)(const void* key, const void* value, void* context);

enum { kCFStringEncodingUTF8 = 0x08000100 };
enum { kCFNumberSInt64Type = 4 };
enum { kCFPropertyListImmutable = 0 };
enum { kCFURLPOSIXPathStyle = 0 };

extern const CFAllocatorRef kCFAllocatorDefault __asm__("NorvikCfAllocatorDefault");

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);

CFTypeID CFArrayGetTypeID(void);
CFTypeID CFBooleanGetTypeID(void);
CFTypeID CFDataGetTypeID(void);
CFTypeID CFDictionaryGetTypeID(void);
CFTypeID CFNumberGetTypeID(void);
CFTypeID CFStringGetTypeID(void);

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding);
/// In UTF-16 units.
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
/// False if the text and its NUL do not fit.
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding);

/// False if the value does not fit into the type; the nearest one is stored then.
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);
Boolean CFNumberIsFloatType(CFNumberRef number);

Boolean CFBooleanGetValue(CFBooleanRef boolean);

CFIndex CFArrayGetCount(CFArrayRef array);
/// The array owns the value.
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
const UInt8* CFDataGetBytePtr(CFDataRef data);
CFIndex CFDataGetLength(CFDataRef data);

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
/// Null if the key is missing. The dictionary owns the value.
const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
/// Calls the function for each entry. Key and value are valid during the call.
void CFDictionaryApplyFunction(CFDictionaryRef dictionary, CFDictionaryApplierFunction applier,
                               void* context);

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path,
                                       CFURLPathStyle style, Boolean isFolder);
/// False if the path and its NUL do not fit.
Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolve, UInt8* buffer,
                                         CFIndex size);

CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data,
                                               CFOptionFlags options, CFPropertyListFormat* format,
                                               CFErrorRef* error);
