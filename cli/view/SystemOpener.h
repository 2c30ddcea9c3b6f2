#pragma once

#include <boost/filesystem/path.hpp>

namespace Norvik::Cli {

/// Opens a file with the program that the user has chosen for its kind. No shell sees its name.
/// Returns when the opener has ended. Throws `std::runtime_error`, with the file's name in its
/// text.
void OpenWithSystem(const boost::filesystem::path& file);

/// The system's program for that.
extern const char* const SYSTEM_OPENER;

}  // namespace Norvik::Cli
