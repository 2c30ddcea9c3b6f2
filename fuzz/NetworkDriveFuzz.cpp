#include <boost/archive/archive_exception.hpp>

#include "Fuzz.h"
#include "module/Entities/NetworkDriveInfo.h"
#include "module/NetworkDrivesHandler/TextArchive.h"

/// Reads the input as the archive of a drive, which any user's process can send to the service.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace Norvik::KOB;
  try {
    const auto drive = Deserialize<NetworkDriveInfo>(std::string(data, data + size));
    const auto again = Deserialize<NetworkDriveInfo>(Serialize(drive));
    if (again != drive || again.id != drive.id) std::abort();
  } catch (const boost::archive::archive_exception&) {
  }
  return 0;
}
