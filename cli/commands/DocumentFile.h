#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

namespace Norvik::Cli {

// Files that hold a document. On a failure, these throw a subclass of `std::exception` whose text
// names the file. The result is the document's text, unchecked.

/// The document in a file of the outbox, which is decrypted and unpacked in a private temporary
/// folder.
/// @param keys the folder with this machine's private key
std::string ReadSealedDocument(const boost::filesystem::path& file,
                               const boost::filesystem::path& keys);

/// The document in a file of the outbox or in a plain file, of up to 1 GiB, or pipe.
std::string ReadDocument(const boost::filesystem::path& file, const boost::filesystem::path& keys);

}  // namespace Norvik::Cli
