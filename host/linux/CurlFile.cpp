#include "host/server/CurlLibrary.h"

namespace Norvik::Host {

const char* const CURL_FILE = "libcurl.so.4";

}  // namespace Norvik::Host
