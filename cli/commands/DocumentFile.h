#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "cli/commands/CommandLine.h"

namespace Norvik::Cli {

// Files that hold a document. On a failure, these throw a subclass of `std::exception` whose text
// names the file. The result is the document's text, unchecked.

/// Whether it is a file as the outbox has them.
bool IsSealed(const boost::filesystem::path& file);

/// Where to look for the key of a sealed file: what --keys names; without that and --data, the key
/// folders of the data folder that the file is in and of the default one.
std::vector<boost::filesystem::path> KeyPlaces(const boost::filesystem::path& file,
                                               const CommandLine& line);

/// The document in a file of the outbox or in a plain file, of up to 1 GiB, or pipe. A file of the
/// outbox is decrypted and unpacked in a private temporary folder, with the keys of
/// `KeyPlaces`.
std::string ReadDocument(const boost::filesystem::path& file, const CommandLine& line);

/// Throws `UsageError` if the file that an option names is a link, a folder, a device or a pipe,
/// which a document would replace.
void CheckOutput(const char* option, const boost::filesystem::path& file);

}  // namespace Norvik::Cli
