#import <CoreLocation/CoreLocation.h>
#import <Foundation/Foundation.h>

#include "platform/Location.h"

#include "platform/mac/LastFix.h"

namespace Norvik::Platform {

namespace {

std::optional<LocationFix>& TheLastFix() {
  static std::optional<LocationFix> fix;
  return fix;
}

}  // namespace

std::optional<LocationFix> LastFix() { return TheLastFix(); }

struct LocationService::Implementation {
  /// The manager keeps no reference to it. It implements nothing, since positions are polled.
  NSObject* delegate = nil;
  CLLocationManager* manager = nil;
};

bool LocationService::IsEnabled() {
  @autoreleasepool {
    return [CLLocationManager locationServicesEnabled];
  }
}

LocationService::LocationService() : implementation_(std::make_unique<Implementation>()) {
  @autoreleasepool {
    implementation_->delegate = [[NSObject alloc] init];
    implementation_->manager = [[CLLocationManager alloc] init];
  }
}

LocationService::~LocationService() {
  @autoreleasepool {
    implementation_.reset();
  }
}

void LocationService::Start() {
  @autoreleasepool {
    CLLocationManager* const manager = implementation_->manager;
    [manager setDelegate:static_cast<id<CLLocationManagerDelegate>>(implementation_->delegate)];
    [manager setDesiredAccuracy:kCLLocationAccuracyBest];
    [manager startUpdatingLocation];
  }
}

std::optional<LocationFix> LocationService::CurrentFix() const {
  @autoreleasepool {
    CLLocation* const location = [implementation_->manager location];
    if (!location) return {};
    const CLLocationCoordinate2D coordinate = [location coordinate];
    TheLastFix() = LocationFix{coordinate.latitude, coordinate.longitude, [location altitude],
                               [location speed]};
    return TheLastFix();
  }
}

void LocationService::Stop() {
  @autoreleasepool {
    [implementation_->manager stopUpdatingLocation];
  }
}

}  // namespace Norvik::Platform
