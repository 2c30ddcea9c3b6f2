#pragma once

#include <string>

namespace Norvik::KOB {

/// A record as a Boost text archive, the form in which it is sent between processes. Both functions
/// are instantiated for `NetworkDriveInfo` only.
template <class Record>
std::string Serialize(const Record& record);

/// The record in an archive. Throws `boost::archive::archive_exception` if the text is not an
/// archive. Needs no more memory than the text itself, whatever lengths the text claims.
template <class Record>
Record Deserialize(const std::string& archive);

}  // namespace Norvik::KOB
