#include "host/server/CurlLibrary.h"

#include <dlfcn.h>
#include <stdlib.h>

#include <stdexcept>
#include <string>

namespace Norvik::Host {

namespace {

std::string LoaderReason() {
  const char* const reason = ::dlerror();
  return reason ? reason : "the loader gives no reason";
}

template <class Function>
void Find(void* library, const char* name, Function& function) {
  void* const symbol = ::dlsym(library, name);
  if (!symbol) throw std::runtime_error("libcurl lacks a function: " + LoaderReason());
  function = reinterpret_cast<Function>(symbol);
}

CurlLibrary Load() {
  void* const library = ::dlopen(CURL_FILE, RTLD_NOW | RTLD_LOCAL);
  if (!library) throw std::runtime_error("libcurl cannot be loaded: " + LoaderReason());
  CurlLibrary curl{};
  Find(library, "curl_easy_cleanup", curl.easyCleanup);
  Find(library, "curl_easy_getinfo", curl.easyGetInfo);
  Find(library, "curl_easy_init", curl.easyInit);
  Find(library, "curl_easy_perform", curl.easyPerform);
  Find(library, "curl_easy_reset", curl.easyReset);
  Find(library, "curl_easy_setopt", curl.easySetOption);
  Find(library, "curl_easy_strerror", curl.easyTextOfError);
  Find(library, "curl_getdate", curl.getDate);
  Find(library, "curl_global_init", curl.globalInit);
  Find(library, "curl_slist_append", curl.listAppend);
  Find(library, "curl_slist_free_all", curl.listFree);
  Find(library, "curl_version", curl.version);
  Find(library, "curl_version_info", curl.versionInfo);
  // The library would write the keys of all connections to a file that the environment names.
  ::unsetenv("SSLKEYLOGFILE");
  if (curl.globalInit(CURL_GLOBAL_DEFAULT) != CURLE_OK) {
    throw std::runtime_error("libcurl cannot be set up");
  }
  return curl;
}

}  // namespace

const CurlLibrary& Curl() {
  static const CurlLibrary library = Load();
  return library;
}

}  // namespace Norvik::Host
