#include <CoreServices/CoreServices.h>

#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "platform/FourCharacters.h"
#include "platform/SystemChanges.h"
#include "platform/compat/SentAppleEvents.h"

namespace {

using Norvik::Platform::CharactersOf;
using Norvik::Platform::FourCharacters;
using Norvik::Platform::SentAppleEvent;

constexpr DescType APPLE_EVENT_TYPE = FourCharacters("aevt");
constexpr DescType NULL_TYPE = FourCharacters("null");

/// The data that the handle of a descriptor points to.
struct Storage {
  std::string data;      ///< of an address
  SentAppleEvent event;  ///< of an event
};

struct Outgoing {
  std::mutex mutex;
  std::vector<SentAppleEvent> events;
  OSStatus answer = procNotFound;
};

Outgoing& TheOutgoing() {
  static Outgoing outgoing;
  return outgoing;
}

Storage* StorageOf(const AEDesc& descriptor) {
  return reinterpret_cast<Storage*>(descriptor.dataHandle);
}

void Fill(AEDesc& descriptor, DescType type, Storage storage) {
  auto owned = std::make_unique<Storage>(std::move(storage));
  descriptor = {type, reinterpret_cast<AEDataStorage>(owned.release())};
}

}  // namespace

OSErr AECreateDesc(DescType typeCode, const void* dataPtr, Size dataSize, AEDesc* result) {
  const std::string data(static_cast<const char*>(dataPtr), static_cast<std::size_t>(dataSize));
  Fill(*result, typeCode, {data, {}});
  return noErr;
}

OSErr AECreateAppleEvent(AEEventClass theAEEventClass, AEEventID theAEEventID,
                         const AEAddressDesc* target, AEReturnID /*returnID*/,
                         AETransactionID /*transactionID*/, AppleEvent* result) {
  const SentAppleEvent event{CharactersOf(theAEEventClass), CharactersOf(theAEEventID),
                             CharactersOf(target->descriptorType), StorageOf(*target)->data};
  Fill(*result, APPLE_EVENT_TYPE, {{}, event});
  return noErr;
}

OSStatus AESendMessage(const AppleEvent* event, AppleEvent* reply, AESendMode /*sendMode*/,
                       long /*timeOutInTicks*/) {
  *reply = {NULL_TYPE, nullptr};
  Outgoing& outgoing = TheOutgoing();
  const std::lock_guard<std::mutex> lock(outgoing.mutex);
  outgoing.events.push_back(StorageOf(*event)->event);
  return outgoing.answer;
}

OSErr AEDisposeDesc(AEDesc* theAEDesc) {
  const std::unique_ptr<Storage> owned(StorageOf(*theAEDesc));
  *theAEDesc = {NULL_TYPE, nullptr};
  return noErr;
}

namespace Norvik::Platform {

std::vector<SentAppleEvent> TakeSentAppleEvents() {
  Outgoing& outgoing = TheOutgoing();
  const std::lock_guard<std::mutex> lock(outgoing.mutex);
  return std::exchange(outgoing.events, {});
}

void SetAppleEventAnswer(std::int32_t status) {
  Outgoing& outgoing = TheOutgoing();
  const std::lock_guard<std::mutex> lock(outgoing.mutex);
  outgoing.answer = status;
}

int RealSystemChanges::AppleEventError() {
  Outgoing& outgoing = TheOutgoing();
  const std::lock_guard<std::mutex> lock(outgoing.mutex);
  return outgoing.answer;
}

}  // namespace Norvik::Platform
