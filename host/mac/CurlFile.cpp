#include "host/server/CurlLibrary.h"

namespace Norvik::Host {

const char* const CURL_FILE = "/usr/lib/libcurl.4.dylib";

}  // namespace Norvik::Host
