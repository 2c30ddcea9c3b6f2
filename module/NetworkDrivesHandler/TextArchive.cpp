#include "module/NetworkDrivesHandler/TextArchive.h"

#include <boost/archive/impl/basic_text_iarchive.ipp>
#include <boost/archive/impl/text_iarchive_impl.ipp>
#include <boost/archive/text_iarchive.hpp>
#include <boost/archive/text_oarchive.hpp>
#include <boost/serialization/string.hpp>
#include <locale>
#include <sstream>

#include "module/Entities/NetworkDriveInfo.h"

namespace Norvik::KOB {

namespace {

using boost::archive::archive_exception;

/// Boost's own reader allocates whatever length the archive claims for a string, and does not
/// notice if the archive ends before it. This one checks the length against the bytes that remain.
class BoundedTextArchive : public boost::archive::text_iarchive_impl<BoundedTextArchive> {
 public:
  explicit BoundedTextArchive(std::istringstream& text)
      : text_iarchive_impl<BoundedTextArchive>(text, 0), text_(text) {
    init();
  }

  using text_iarchive_impl<BoundedTextArchive>::load;
  void load(std::string& value) {
    std::size_t size = 0;
    load(size);
    text_.get();
    const auto left = text_.rdbuf()->in_avail();
    if (size != 0 && (left < 0 || size > static_cast<std::size_t>(left))) {
      throw archive_exception(archive_exception::input_stream_error);
    }
    value.resize(size);
    text_.read(value.data(), static_cast<std::streamsize>(size));
  }

 private:
  std::istringstream& text_;
};

}  // namespace

template <class Record>
std::string Serialize(const Record& record) {
  std::ostringstream text;
  // The other process may have another locale, which groups digits differently or not at all.
  text.imbue(std::locale::classic());
  boost::archive::text_oarchive(text) << record;
  return text.str();
}

template <class Record>
Record Deserialize(const std::string& archive) {
  std::istringstream text(archive);
  text.imbue(std::locale::classic());
  Record record;
  BoundedTextArchive(text) >> record;
  return record;
}

template std::string Serialize(const NetworkDriveInfo& record);
template NetworkDriveInfo Deserialize(const std::string& archive);

}  // namespace Norvik::KOB
