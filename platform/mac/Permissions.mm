#include "platform/Permissions.h"

#import <CoreLocation/CoreLocation.h>
#include <CoreServices/CoreServices.h>

#include "platform/FourCharacters.h"

namespace Norvik::Platform {

Permission LocationPermission() {
  @autoreleasepool {
    if (![CLLocationManager locationServicesEnabled]) return Permission::REFUSED;
    switch ([[[CLLocationManager alloc] init] authorizationStatus]) {
      case kCLAuthorizationStatusNotDetermined:
        return Permission::NOT_ASKED;
      case kCLAuthorizationStatusRestricted:
      case kCLAuthorizationStatusDenied:
        return Permission::REFUSED;
      case kCLAuthorizationStatusAuthorizedAlways:
        return Permission::GRANTED;
      default:
        return Permission::UNKNOWN;
    }
  }
}

Permission AppleEventPermission() {
  constexpr char RECEIVER[] = "com.apple.loginwindow";
  constexpr OSStatus REFUSED = -1743;
  constexpr OSStatus NOT_ASKED = -1744;
  AEDesc receiver{};
  if (::AECreateDesc(FourCharacters("bund"), RECEIVER, sizeof(RECEIVER) - 1, &receiver) != noErr) {
    return Permission::UNKNOWN;
  }
  const OSStatus status = ::AEDeterminePermissionToAutomateTarget(&receiver, FourCharacters("****"),
                                                                  FourCharacters("****"), false);
  ::AEDisposeDesc(&receiver);
  if (status == noErr) return Permission::GRANTED;
  if (status == REFUSED) return Permission::REFUSED;
  return status == NOT_ASKED ? Permission::NOT_ASKED : Permission::UNKNOWN;
}

}  // namespace Norvik::Platform
