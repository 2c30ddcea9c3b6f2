#pragma once

#include <list>
#include <string>

#include "common/inventory/ISection.h"
#include "module/Entities/KeyboardInfo.h"

namespace Norvik::KOB {

/// Keyboards, from the reports of the USB and Bluetooth buses. All of them get the layout that the
/// user has chosen. If a source fails, `GetInfo` logs that and goes on with the next one.
class KeyboardSection final : public Common::ISection<std::list<KeyboardInfo>> {
 public:
  void GetInfo(std::list<KeyboardInfo>& result) override;

  /// Appends keyboards one level below a bus: neither those of the bus itself nor those connected
  /// through a hub.
  void GetUSBInfo(std::list<KeyboardInfo>& result);
  void GetBluetoothInfo(std::list<KeyboardInfo>& result);
  void GetSPIInfo(std::list<KeyboardInfo>& result);
  /// Name of the chosen layout in UTF-8; empty if the user has chosen none.
  std::string GetLayout();
};

/// The layout in the output of `defaults` for the input sources; empty without one.
std::string ReadKeyboardLayout(const std::string& inputSources);

}  // namespace Norvik::KOB
