#pragma once

#include <wx/string.h>

#include <cstdint>
#include <list>
#include <string>

#include "common/records/InventoryRecord.h"

namespace Norvik::Common {

/// A cache of a processor.
struct CSmbCacheInfo {
  std::string name;
  std::string type;
  std::uint64_t sizeBytes = 0;
  std::uint64_t maximumBytes = 0;
  std::uint8_t level = 0;

  static constexpr auto Fields() {
    return FieldTable(Field("name", &CSmbCacheInfo::name), Field("type", &CSmbCacheInfo::type),
                      Field("sizeBytes", &CSmbCacheInfo::sizeBytes),
                      Field("maximumBytes", &CSmbCacheInfo::maximumBytes),
                      Field("level", &CSmbCacheInfo::level));
  }
};

/// A processor package.
struct NORVIK_COMMON_API ProcessorInfo final : InventoryRecord<ProcessorInfo> {
  ProcessorInfo() = default;
  explicit ProcessorInfo(const ptree& node) { Read(node); }

  std::list<CSmbCacheInfo> caches;
  std::list<wxString> features;
  std::uint64_t cores = 0;
  std::uint64_t threads = 0;
  std::uint64_t maximumMhz = 0;
  std::uint64_t busMhz = 0;
  std::uint64_t index = 0;  ///< number of the package, from 0
  std::string socket;
  std::string manufacturer;
  wxString architecture;
  wxString partNumber;
  std::string serial;
  std::string assetTag;
  std::string model;
  std::string identifier;  ///< family, model and stepping

  static constexpr auto Fields() {
    return FieldTable(
        Records("caches", &ProcessorInfo::caches), Texts("features", &ProcessorInfo::features),
        Field("cores", &ProcessorInfo::cores), Field("threads", &ProcessorInfo::threads),
        Field("maximumMhz", &ProcessorInfo::maximumMhz), Field("busMhz", &ProcessorInfo::busMhz),
        Field("index", &ProcessorInfo::index), Field("socket", &ProcessorInfo::socket),
        Field("manufacturer", &ProcessorInfo::manufacturer),
        Field("architecture", &ProcessorInfo::architecture),
        Field("partNumber", &ProcessorInfo::partNumber), Field("serial", &ProcessorInfo::serial),
        Field("assetTag", &ProcessorInfo::assetTag), Field("model", &ProcessorInfo::model),
        Field("identifier", &ProcessorInfo::identifier));
  }
  static constexpr auto Key() { return &ProcessorInfo::index; }
  static constexpr auto Kept() {
    return FieldTable(Field("index", &ProcessorInfo::index),
                      WideText("manufacturer", &ProcessorInfo::manufacturer),
                      WideText("model", &ProcessorInfo::model));
  }
};

}  // namespace Norvik::Common
