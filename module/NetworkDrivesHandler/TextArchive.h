#pragma once

#include <string>

namespace Norvik::KOB {

/// A record as a text archive of Boost, the form in which it travels between processes. The sources
/// hold these two for `NetworkDriveInfo`.
template <class Record>
std::string Serialize(const Record& record);

/// The record of an archive. Raises `boost::archive::archive_exception` for a text that is none.
/// Needs no more memory than the text itself, whatever lengths it claims.
template <class Record>
Record Deserialize(const std::string& archive);

}  // namespace Norvik::KOB
