// The agent's own host, assembled as its service does it.
#include <fstream>

#include "conformance/hosts/Hosts.h"
#include "host/assembly/AgentHost.h"

namespace Norvik::Conformance {

namespace {

class AgentHostAdapter final : public HostAdapter {
 public:
  void Start(const HostStart& start) override {
    Host::AgentOptions options;
    options.dataFolder = start.dataFolder;
    options.moduleFile = start.moduleFile;
    options.configurationFile = start.dataFolder.parent_path() / "server.json";
    std::ofstream(options.configurationFile.string())
        << R"({"server": {"address": ")" << start.serverAddress << R"(", "port": )"
        << start.serverPort << "}}";
    host_ = std::make_unique<Host::AgentHost>(options);
    host_->ResumePeriodicActions();
    host_->Server()->Start();
  }
  void Stop() override {
    if (host_) host_->Server()->Stop();
    host_.reset();
  }

 private:
  std::unique_ptr<Host::AgentHost> host_;
};

}  // namespace

std::unique_ptr<HostAdapter> MakeAgentHostAdapter() { return std::make_unique<AgentHostAdapter>(); }

}  // namespace Norvik::Conformance
