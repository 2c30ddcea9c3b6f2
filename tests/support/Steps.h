#pragma once

#include "support/Test.h"

namespace Norvik::Tests {

/// Base of tests whose rows in a data file have a name and steps. A step is a verb, the arguments
/// of its function and, if the function returns a value, the expected result.
class StepsTest : public testing::TestWithParam<Json> {
 protected:
  template <class Function>
  void Verb(const char* verb, Function function) {
    AddVerb(verb, std::function(std::move(function)));
  }
  /// The same for a member function of a base of the test.
  template <class Base, class Result, class... Arguments>
  void Verb(const char* verb, Result (Base::*function)(Arguments...)) {
    Verb(verb, [=](Arguments... arguments) -> Result {
      return (dynamic_cast<Base&>(*this).*function)(arguments...);
    });
  }
  void Follow() const {
    const Json& steps = GetParam()["steps"];
    for (std::size_t i = 0; i < steps.size(); ++i) {
      SCOPED_TRACE("step " + std::to_string(i + 1) + ": " + Shown(steps[i]));
      Json cells = steps[i];
      cells.erase(std::size_t(0));
      verbs_.at(steps[i][0])(cells);
    }
  }

 private:
  template <class Result, class... Arguments>
  void AddVerb(const char* verb, std::function<Result(Arguments...)> function) {
    verbs_[verb] = [=](Json cells) {
      using Tuple = std::tuple<std::decay_t<Arguments>...>;
      if constexpr (std::is_void_v<Result>) {
        std::apply(function, cells.get<Tuple>());
      } else {
        const Json wanted = cells.back();
        cells.erase(cells.size() - 1);
        EXPECT_EQ(Shown(Json(std::apply(function, cells.get<Tuple>()))), Shown(wanted));
      }
    };
  }

  std::map<std::string, std::function<void(Json)>> verbs_;
};

}  // namespace Norvik::Tests
