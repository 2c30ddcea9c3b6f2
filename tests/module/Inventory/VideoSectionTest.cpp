#include "module/Inventory/VideoSection.h"

#include <gmock/gmock.h>

#include <string>

#include "common/text/Text.h"
#include "platform/ScopedHandle.h"
#include "platform/compat/LiveObjects.h"
#include "support/LogCapture.h"
#include "support/MacRecording.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::KOB;
using Norvik::Common::ToUtf8;
using Norvik::Platform::CountLiveObjects;
using Norvik::Platform::LiveObjects;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char PROFILER[] = R"(case "$1" in
SPDisplaysDataType) cat <<'END'
Graphics/Displays:

    Example Chip:

      Chipset Model: Example Chip
      Vendor: Example (0x1234)
      Vendor: Second
END
;;
SPHardwareDataType) cat <<'END'
      Boot ROM Version: 194.0.0
      EFI Driver Version: 01.02
END
;;
esac
)";

std::string Accelerator(Keys properties) {
  properties.push_back({"IOObjectInherits", Array({Text("IOAccelerator")})});
  return Entry("ExampleAccelerator", std::move(properties));
}

/// One line for each record.
std::vector<std::string> VideosOf(MacRecording& recording, const std::string& root) {
  recording.AddRegistry(root);
  recording.PutInForce();
  std::list<VideoInfo> videos;
  VideoSection().GetInfo(videos);
  recording.End();
  std::vector<std::string> lines;
  for (const VideoInfo& video : videos) {
    std::string line;
    for (const wxString& field : {video.driverName, video.name, video.chipset, video.dac,
                                  video.version, video.versionBios, video.manufacturer}) {
      line += ToUtf8(field) + "|";
    }
    lines.push_back(line + std::to_string(video.size) + "|" + std::to_string(video.date));
  }
  EXPECT_EQ(CountLiveObjects(), LiveObjects());
  return lines;
}

const Keys CHIP = {{"CFBundleIdentifier", Text("com.example.chip")},
                   {"IOProviderClass", Text("IOPCIDevice")},
                   {"VRAM,totalMB", "<integer>4096</integer>"}};

TEST(VideoSection, ReportsFillWhatTheRegistryDoesNotTellAsText) {
  const struct {
    const char* name;
    Keys parent;
    const char* line;
  } cases[] = {
      {"data, as most machines have it",
       {{"model", "<data>QUJD</data>"}, {"vendor-id", "<data>hoAAAA==</data>"}},
       "com.example.chip| Example Chip\n| Example Chip\n|IOPCIDevice| 01.02\n| 194.0.0\n|"
       " Example (0x1234)\n|4294967296|0"},
      {"texts",
       {{"model", Text("Registry Chip")}, {"vendor-id", Text("Registry")}},
       "com.example.chip|Registry Chip|Registry Chip|IOPCIDevice| 01.02\n| 194.0.0\n|"
       "Registry|4294967296|0"},
  };
  for (const auto& row : cases) {
    MacRecording recording;
    recording.AddProgram("system_profiler", PROFILER);
    EXPECT_THAT(VideosOf(recording, Entry("GPU", row.parent, {Accelerator(CHIP)})),
                ElementsAre(row.line))
        << row.name;
  }
}

TEST(VideoSection, LeavesOutWhatIsNoAccelerator) {
  const Keys unknownDriver = {{"CFBundleIdentifier", Text("com.unknown.bundle")}};
  const Keys unknownModel = {{"model", Text("Unknown Unknown")}};
  const Keys model = {{"model", Text("m")}, {"vendor-id", Text("v")}};
  MacRecording recording;
  recording.AddProgram("system_profiler", "exit 1\n");
  EXPECT_THAT(VideosOf(recording, Entry("Root", {},
                                        {Entry("GPU", model, {Accelerator(unknownDriver)}),
                                         Entry("GPU", unknownModel, {Accelerator(CHIP)}),
                                         Entry("GPU", model, {Accelerator({})}),
                                         Entry("GPU", model, {Entry("Other", CHIP)})})),
              ElementsAre("|m|m||||v|0|0"));
  EXPECT_THAT(VideosOf(recording, Entry("Root", {})), IsEmpty());
  // Without a parent and without any tool the record still stands.
  EXPECT_THAT(VideosOf(recording, Accelerator({})), ElementsAre("|||||||0|0"));
}

TEST(VideoSection, TheAidsListAndShowEveryAccelerator) {
  const Keys busy = {{"PerformanceStatistics",
                      Dictionary({{"GPU Core Utilization", "<integer>125000000</integer>"},
                                  {"vramFreeBytes", "<integer>3000</integer>"},
                                  {"vramUsedBytes", "<integer>1000</integer>"}})}};
  const Keys partly = {
      {"PerformanceStatistics", Dictionary({{"GPU Core Utilization", "<integer>5</integer>"},
                                            {"vramFreeBytes", Text("none")}})}};
  MacRecording recording;
  recording.AddRegistry(
      Entry("Root", {}, {Accelerator(busy), Accelerator(partly), Accelerator({}), Entry("P", {})}));
  recording.PutInForce();
  LogCapture log;
  testing::internal::CaptureStderr();
  unsigned int parent = IO_OBJECT_NULL;
  std::list<unsigned int> handles;
  GetGPUList(parent, handles);
  EXPECT_EQ(handles.size(), 3u);
  for (const unsigned int handle : handles) IOObjectRelease(handle);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "GPU: 12.500% VRAM: 25.000%\n");
  EXPECT_TRUE(log.Holds(7, ">>"));
  EXPECT_EQ(CountLiveObjects(), LiveObjects());
}

}  // namespace
