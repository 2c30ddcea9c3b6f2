#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

namespace Norvik::Cli {

// Files that hold a document. A failure raises a subclass of `std::exception` whose text names the
// file.

/// The document in a file of the outbox.
/// @param keys the folder with this machine's private key
std::string ReadSealedDocument(const boost::filesystem::path& file,
                               const boost::filesystem::path& keys);

/// The document in a file of the outbox or in a plain one.
std::string ReadDocument(const boost::filesystem::path& file, const boost::filesystem::path& keys);

}  // namespace Norvik::Cli
