#include "conformance/Subject.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <langinfo.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <boost/filesystem/operations.hpp>
#include <clocale>
#include <utility>

#include "common/files/Paths.h"
#include "common/log/Logger.h"

namespace Norvik::Conformance {

using namespace Common;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

constexpr milliseconds STEP(10);
Subject* current = nullptr;

/// Takes connections and never answers. Its port is stored in `port`.
Platform::FileDescriptor SilentServer(std::uint16_t& port) {
  Platform::FileDescriptor server(::socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const general = reinterpret_cast<sockaddr*>(&address);
  if (::fcntl(server.Get(), F_SETFD, FD_CLOEXEC) != 0 || ::bind(server.Get(), general, size) != 0 ||
      ::listen(server.Get(), 64) != 0 || ::getsockname(server.Get(), general, &size) != 0) {
    throw std::runtime_error("there is no port for a server");
  }
  port = ntohs(address.sin_port);
  return server;
}

template <class Service>
std::shared_ptr<Service> Lock(const std::weak_ptr<Service>& service, const char* name) {
  auto locked = service.lock();
  Expect(locked != nullptr, std::string("the ") + name + " no longer exists");
  return locked;
}

}  // namespace

void Expect(bool isKept, const std::string& reason) {
  if (!isKept) throw Broken(reason);
}

ModuleAction Runs::Action(Work work) {
  ModuleAction action;
  action.name = "ACTION_OF_CHECK";
  action.handler = [self = shared_from_this(), work](ActionParameters&) {
    const auto began = std::chrono::system_clock::now();
    if (work) work();
    const std::lock_guard<std::mutex> lock(self->mutex_);
    self->times_.push_back(began);
    return ActionResponse();
  };
  return action;
}

int Runs::Count() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return static_cast<int>(times_.size());
}

std::vector<std::chrono::system_clock::time_point> Runs::Times() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return times_;
}

ProcessState ProcessState::Now() {
  ProcessState state;
  state.codeSet = ::nl_langinfo(CODESET);
  state.numeric = std::setlocale(LC_NUMERIC, nullptr);
  state.dataFolder = Paths(Paths::DATA, false).AppData().string();
  state.currentFolder = boost::filesystem::current_path().string();
  state.logger = Logger::GetInstance().get();
  return state;
}

std::string ProcessState::DifferenceFrom(const ProcessState& former) const {
  const auto differs = [](const char* what, const std::string& from, const std::string& to) {
    return from == to ? "" : std::string(what) + " was " + from + " and is " + to;
  };
  for (const std::string& text :
       {differs("the characters of LC_CTYPE", former.codeSet, codeSet),
        differs("LC_NUMERIC", former.numeric, numeric),
        differs("the data folder", former.dataFolder, dataFolder),
        differs("the current folder", former.currentFolder, currentFolder)}) {
    if (!text.empty()) return text;
  }
  return logger == former.logger ? "" : "the logger is another one";
}

/// The module of the host under check.
class Subject::Module final : public IModule {
 public:
  explicit Module(Subject& subject) : subject_(subject) {
    ++subject_.modules_;
    subject_.Note(subject_.duringMake);
  }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;
  ~Module() override {
    --subject_.modules_;
    subject_.Note(subject_.duringDelete);
  }

  ModuleAction GetAction(unsigned int code, const ActionParameters& parameters) override {
    ModuleAction action;
    action.handler = [](ActionParameters&) { return ActionResponse(); };
    if (subject_.makeAction) action = subject_.makeAction(code);
    action.parameters = parameters;
    return action;
  }
  std::vector<std::string> GetOutputExtensionFiles() override { return {".jsonkob", ".jsonrud"}; }
  ProductCodes GetProductCode() override { return PRODUCT_KOB; }

 private:
  Subject& subject_;
};

void* FunctionOf(const boost::filesystem::path& library, const char* name) {
  const auto reason = [] {
    const char* const text = ::dlerror();
    return std::string(text ? text : "the loader gives no reason");
  };
  // An absolute path, so that the loader searches no other folder.
  const std::string file = boost::filesystem::absolute(library).string();
  void* const handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) throw Unusable("cannot load " + file + ": " + reason());
  void* const function = ::dlsym(handle, name);
  if (!function) throw Unusable(file + " has no function " + name + ": " + reason());
  return function;
}

Subject::Subject(SubjectOptions options) : options_(std::move(options)) {
  reinterpret_cast<decltype(&SetNorvikModuleMaker)>(
      FunctionOf(options_.probe, "SetNorvikModuleMaker"))(&Subject::MakeProbe);
  adapter_.reset(reinterpret_cast<decltype(&MakeNorvikHostAdapter)>(
      FunctionOf(options_.adapter, "MakeNorvikHostAdapter"))());
  if (!adapter_) throw Unusable(options_.adapter.string() + " makes no adapter");
  start_.dataFolder = options_.dataFolder;
  start_.moduleFile = options_.probe;
  start_.serverAddress = "127.0.0.1";
  server_ = SilentServer(start_.serverPort);
  current = this;
}

Subject::~Subject() { current = nullptr; }

IModule* Subject::MakeProbe(const std::weak_ptr<ModuleDependencies>& dependencies) {
  Subject& subject = *current;
  subject.dependencies_ = dependencies;
  subject.given_ = *std::shared_ptr<ModuleDependencies>(dependencies);
  subject.atMake_ = ProcessState::Now();
  struct stat folder {};
  subject.folderMode_ = boost::none;
  if (::stat(subject.options_.dataFolder.c_str(), &folder) == 0) {
    subject.folderMode_ = folder.st_mode & 07777u;
  }
  return std::make_unique<Module>(subject).release();
}

void Subject::Note(const std::function<void()>& work) {
  try {
    if (work) work();
  } catch (...) {
    noted_ = std::current_exception();
  }
}

void Subject::RethrowNoted() {
  if (const auto noted = std::exchange(noted_, nullptr)) std::rethrow_exception(noted);
}

void Subject::Start() {
  const int before = modules_;
  adapter_->Start(start_);
  RethrowNoted();
  Expect(modules_ > before, "the host has started without a module");
}

void Subject::Stop() {
  adapter_->Stop();
  RethrowNoted();
}

void Subject::Restart() {
  Stop();
  Start();
}

void Subject::Wait(milliseconds time) {
  for (const auto end = steady_clock::now() + time; steady_clock::now() < end;) {
    adapter_->Wait(STEP);
  }
}

bool Subject::Within(const std::function<bool()>& condition) {
  const auto end = steady_clock::now() + options_.patience;
  while (!condition()) {
    if (steady_clock::now() > end) return false;
    adapter_->Wait(STEP);
  }
  return true;
}

std::string Subject::WithinText() const {
  return "within " + std::to_string(options_.patience.count()) + " seconds";
}

std::shared_ptr<IActionSystem> Subject::Actions() const {
  return Lock(given_.actionSystem, "action system");
}
std::shared_ptr<IIdentificationSystem> Subject::Identification() const {
  return Lock(given_.identification, "identification system");
}
std::shared_ptr<ICommunicationSystem> Subject::Communications() const {
  return Lock(given_.communications, "communication system");
}
std::shared_ptr<IDataBase> Subject::DataBase() const { return Lock(given_.dataBase, "database"); }

std::vector<std::string> Subject::ServicesThat(bool exist) const {
  const std::pair<const char*, bool> services[] = {
      {"the dependencies", !dependencies_.expired()},
      {"the action system", !given_.actionSystem.expired()},
      {"the identification system", !given_.identification.expired()},
      {"the communication system", !given_.communications.expired()},
      {"the database", !given_.dataBase.expired()}};
  std::vector<std::string> names;
  for (const auto& [name, exists] : services) {
    if (exists == exist) names.emplace_back(name);
  }
  return names;
}

}  // namespace Norvik::Conformance
