#pragma once

// The calls for Apple Events that are used here, for systems without them. There are no receivers,
// so sending fails with `procNotFound`.

#include <stdint.h>

typedef int16_t OSErr;
typedef int32_t OSStatus;
typedef uint32_t DescType;
typedef uint32_t AEEventClass;
typedef uint32_t AEEventID;
typedef int16_t AEReturnID;
typedef int32_t AETransactionID;
typedef int32_t AESendMode;
typedef long Size;

typedef struct OpaqueAEDataStorageType* AEDataStorageType;
typedef AEDataStorageType* AEDataStorage;

typedef struct AEDesc {
  DescType descriptorType;
  AEDataStorage dataHandle;
} AEDesc;
typedef AEDesc AEAddressDesc;
typedef AEDesc AppleEvent;

enum { noErr = 0, procNotFound = -600, memFullErr = -108 };
enum { kAutoGenerateReturnID = -1, kAnyTransactionID = 0 };
enum { kAENoReply = 0x00000001 };
enum { kAEDefaultTimeout = -1 };

// The caller owns what a call creates, and releases it with `AEDisposeDesc`.

OSErr AECreateDesc(DescType typeCode, const void* dataPtr, Size dataSize, AEDesc* result);
OSErr AECreateAppleEvent(AEEventClass theAEEventClass, AEEventID theAEEventID,
                         const AEAddressDesc* target, AEReturnID returnID,
                         AETransactionID transactionID, AppleEvent* result);
OSStatus AESendMessage(const AppleEvent* event, AppleEvent* reply, AESendMode sendMode,
                       long timeOutInTicks);
/// Ignores a descriptor without data.
OSErr AEDisposeDesc(AEDesc* theAEDesc);
