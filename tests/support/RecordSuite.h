#pragma once

#include <boost/core/demangle.hpp>

#include "support/RecordFiller.h"

/// Tests for every record type. A record is tested by adding it to the list of types.
namespace tests {

struct RecordName {
  template <class T>
  static std::string GetName(int /*index*/) {
    const std::string name = boost::core::demangle(typeid(T).name());
    return name.substr(name.rfind(':') + 1);
  }
};

template <class T>
class RecordSuite : public testing::Test {
  const ScopedLocale utf8_{"C.UTF-8"};
};
TYPED_TEST_SUITE_P(RecordSuite);

TYPED_TEST_P(RecordSuite, ARecordComesBackFromItsText) {
  for (const TypeParam& record : {TypeParam(), Filled<TypeParam>()}) {
    const auto back = ReadBack<TypeParam>(JsonText(record));
    EXPECT_EQ(JsonText(back), JsonText(record));
    EXPECT_TRUE(back == record);
    EXPECT_FALSE(back != record);
  }
}

TYPED_TEST_P(RecordSuite, AChangeOfAnyFieldIsADifferenceAndIsWritten) {
  const auto record = Filled<TypeParam>();
  ForEachChange<TypeParam>([&](const std::string& key, const TypeParam& changed) {
    EXPECT_TRUE(changed != record) << key;
    EXPECT_FALSE(changed == record) << key;
    EXPECT_NE(JsonText(changed), JsonText(record)) << key;
  });
}

REGISTER_TYPED_TEST_SUITE_P(RecordSuite, ARecordComesBackFromItsText,
                            AChangeOfAnyFieldIsADifferenceAndIsWritten);

}  // namespace tests
