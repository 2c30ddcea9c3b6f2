#pragma once

#include <iosfwd>
#include <string>

#include "cli/commands/CommandLine.h"

namespace Norvik::Cli {

/// The full document of a new inventory of this machine. It is taken in a private temporary folder,
/// with the identity, the configuration and the database of the data folder, and leaves nothing.
/// What went wrong is reported to `errors`. Throws a subclass of `std::exception` if there is no
/// document.
std::string TakeLiveDocument(const CommandLine& line, std::ostream& errors);

/// The last full document in a folder `previous`; an empty path without one.
boost::filesystem::path LastDocumentIn(const boost::filesystem::path& folder);

}  // namespace Norvik::Cli
