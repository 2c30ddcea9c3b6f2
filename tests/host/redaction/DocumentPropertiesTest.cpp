#include "host/redaction/DocumentProperties.h"

#include <gmock/gmock.h>

#include "support/Test.h"

namespace {

using namespace Norvik::Tests;

constexpr const char* SCHEMAS[] = {"inventory", "incremental-inventory", "file-inventory"};

class Schemas {
 public:
  Schemas() {
    for (const char* name : SCHEMAS) {
      schemas_[name] = PlainJson::parse(
          ContentOf(NORVIK_SOURCE_DIR "/docs/schema/" + std::string(name) + ".schema.json"));
    }
  }

  /// The properties that hold values, as "section.key".
  std::set<std::string> Properties() const {
    std::set<std::string> found;
    for (const char* name : SCHEMAS) Walk(name, schemas_.at(name), "", "", found);
    return found;
  }

 private:
  void Walk(const std::string& schema, const PlainJson& node, const std::string& section,
            const std::string& key, std::set<std::string>& found) const {
    if (node.contains("$ref")) {
      const std::string target = node["$ref"];
      const auto hash = target.find('#');
      const std::string other = hash == 0 ? schema : target.substr(18, hash - 18);
      Walk(other, schemas_.at(other).at(PlainJson::json_pointer(target.substr(hash + 1))), section,
           key, found);
    } else if (node.contains("items")) {
      Walk(schema, node["items"], section, key, found);
    } else if (node.contains("properties")) {
      for (const auto& [name, child] : node["properties"].items()) {
        Walk(schema, child, key, name, found);
      }
    } else {
      found.insert(section + "." + key);
    }
  }

  std::map<std::string, PlainJson> schemas_;
};

TEST(DocumentProperties, EachPropertyOfTheSchemasIsSensitiveOrHarmless) {
  const auto properties = Schemas().Properties();
  EXPECT_GT(properties.size(), 200u);
  for (const std::string& property : properties) {
    const auto dot = property.find('.');
    EXPECT_TRUE(Norvik::Host::KindOfProperty(property.substr(0, dot), property.substr(dot + 1)))
        << property << " is in no row of the table";
  }
}

}  // namespace
