// Lets norvik-host-conformance check this host. docs/embedding.md says which promises it keeps.
#include <thread>

#include "MinimalHost.h"
#include "conformance/HostAdapter.h"

namespace {

using namespace Norvik::Conformance;

class Adapter final : public HostAdapter {
 public:
  void Start(const HostStart& start) override {
    host_ = std::make_unique<MinimalHost::Host>(start.dataFolder, start.moduleFile);
  }
  void Stop() override { host_.reset(); }
  void Wait(std::chrono::milliseconds time) override {
    if (host_) host_->GetActions().RunWaiting();
    std::this_thread::sleep_for(time);
  }

 private:
  std::unique_ptr<MinimalHost::Host> host_;
};

}  // namespace

HostAdapter* MakeNorvikHostAdapter() { return new Adapter; }
