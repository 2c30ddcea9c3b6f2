// Promises about what lives how long.
#include <atomic>
#include <boost/algorithm/string/join.hpp>
#include <memory>

#include "common/database/DataBase.h"
#include "conformance/Promises.h"

namespace Norvik::Conformance {

namespace {

using namespace Common;
using std::chrono::seconds;

constexpr unsigned int CODE = 60'002;

void ExpectAll(const Subject& subject, const char* when) {
  const auto missing = subject.ServicesThat(false);
  Expect(missing.empty(), boost::algorithm::join(missing, ", ") +
                              (missing.size() == 1 ? " does" : " do") + " not exist " + when);
}

void ServicesAreGiven(Subject& subject) {
  subject.duringMake = [&] { ExpectAll(subject, "when the module is made"); };
  subject.Restart();
}

void ModuleAccepts(Subject& subject) {
  using Entry = IModule* (*)(const std::weak_ptr<ModuleDependencies>&);
  const auto entry =
      reinterpret_cast<Entry>(FunctionOf(subject.Options().module, "GetAgentModuleObject"));
  try {
    const std::unique_ptr<IModule> module(entry(subject.Dependencies()));
    Expect(module != nullptr, "the entry function returns no object");
  } catch (const std::bad_weak_ptr&) {
    throw Broken("the entry function throws std::bad_weak_ptr: a service is missing");
  }
}

void ServicesLive(Subject& subject) {
  const auto missing = std::make_shared<std::atomic<std::size_t>>(0);
  const auto runs = Runs::Make();
  ExpectAll(subject, "after the module is made");
  subject.Actions()->QueueAction(
      runs->Action([&subject, missing] { *missing = subject.ServicesThat(false).size(); }));
  Expect(subject.Within([&] { return runs->Count() == 1; }), "the action did not run");
  Expect(*missing == 0, "services do not exist inside a handler");
  subject.Wait(seconds(2));
  ExpectAll(subject, "two seconds after the module was made");
}

void ModuleGoesFirst(Subject& subject) {
  subject.duringDelete = [&] { ExpectAll(subject, "while the module is deleted"); };
  subject.Stop();
  Expect(subject.Modules() == 0, "the host has ended and not deleted the module");
}

void EndWaits(Subject& subject) {
  struct Progress {
    std::atomic<bool> begun{false};
    std::atomic<bool> ended{false};
  };
  const auto progress = std::make_shared<Progress>();
  subject.Actions()->QueueAction(Runs::Make()->Action([progress] {
    progress->begun = true;
    std::this_thread::sleep_for(seconds(2));
    progress->ended = true;
  }));
  Expect(subject.Within([&] { return progress->begun.load(); }), "the action did not run");
  subject.duringDelete = [progress] {
    Expect(progress->ended, "the module is deleted while a handler runs");
  };
  subject.Stop();
}

void ServicesEnd(Subject& subject) {
  subject.Stop();
  const auto left = subject.ServicesThat(true);
  Expect(left.empty(),
         "after the end of the host there still is " + boost::algorithm::join(left, ", "));
}

/// Notes whether the database exists when the action system drops what has not run.
struct Sentinel {
  std::weak_ptr<IDataBase> dataBase;
  std::shared_ptr<std::atomic<bool>> late;

  Sentinel(std::weak_ptr<IDataBase> watched, std::shared_ptr<std::atomic<bool>> result)
      : dataBase(std::move(watched)), late(std::move(result)) {}
  Sentinel(const Sentinel&) = delete;
  Sentinel& operator=(const Sentinel&) = delete;
  ~Sentinel() { *late = dataBase.expired() || !CanBeRead(); }

  static bool CanBeRead() {
    try {
      return V2::DataBase::ExistTable("DATA");
    } catch (const std::exception&) {
      return false;
    }
  }
};

void DataBaseGoesLast(Subject& subject) {
  const auto late = std::make_shared<std::atomic<bool>>(false);
  {
    const auto sentinel = std::make_shared<Sentinel>(subject.Given().dataBase, late);
    subject.Actions()->RunOneShot(CODE, Runs::Make()->Action([sentinel] {}), seconds(3600));
  }
  bool wasThere = true;  // also if the module is never deleted: that is another promise
  subject.duringDelete = [&] { wasThere = Sentinel::CanBeRead(); };
  subject.Stop();
  Expect(wasThere, "the database is gone before the module");
  Expect(!*late, "the database is gone before the action system");
}

}  // namespace

std::vector<Promise> LifetimePromises() {
  return {
      {"services-given", "All services exist when the module is made.", ServicesAreGiven},
      {"module-accepts", "`libNorvikKOB` makes its object with the host's dependencies.",
       ModuleAccepts},
      {"services-live", "All services exist as long as the module.", ServicesLive},
      {"stop-waits", "The module is not deleted while a handler runs.", EndWaits},
      {"module-first", "The module is deleted before the services.", ModuleGoesFirst},
      {"database-last", "The database is deleted after the action system.", DataBaseGoesLast},
      {"services-end", "No service lives on after the end of the host.", ServicesEnd},
  };
}

}  // namespace Norvik::Conformance
