#include "context/placement_rules.h"

#include "context/contains.h"

namespace tavenhall {

namespace {

constexpr std::size_t kShortestPluginDestination = 31;  // bytes

struct KindTest {
  PluginKind kind;
  const char* folder;
  const char* suffix;
};

// In the order of testing. A VST3 path also contains the VST folder, so it must come first.
constexpr std::array<KindTest, kPluginKindCount> kKindTests{{
    {PluginKind::aaxWrapper, "/Application Support/Avid/Audio/Plug-Ins", ".aaxplugin"},
    {PluginKind::standaloneApp, "/Applications/", ".app"},
    {PluginKind::auPlugin, "/Plug-Ins/Components", ".component"},
    {PluginKind::vst3Plugin, "/Plug-Ins/VST3", ".vst3"},
    {PluginKind::vstPlugin, "/Plug-Ins/VST", ".vst"},
}};

// Required order. ".vst" matches whatever ".vst3" matches, so the second never decides.
constexpr std::array<const char*, 5> kRemovableSuffixes{".vst", ".vst3", ".aaxplugin", ".component", ".app"};

}  // namespace

bool isPluginDestination(std::string_view destination) noexcept {
  return destination.size() >= kShortestPluginDestination && contains(destination, "/Plug-Ins/");
}

bool isApplicationDestination(std::string_view destination) noexcept {
  return contains(destination, "/Applications/") && contains(destination, ".app");
}

std::optional<PluginKind> pluginKindOf(std::string_view destination) noexcept {
  for (const KindTest& test : kKindTests) {
    if (contains(destination, test.folder) && contains(destination, test.suffix)) {
      return test.kind;
    }
  }
  return std::nullopt;
}

std::optional<std::size_t> productIn(std::string_view source) noexcept {
  for (std::size_t i = 0; i < pluginNames.size(); ++i) {
    if (contains(source, pluginNames[i])) {
      return i;
    }
  }
  return std::nullopt;
}

bool isRemovable(std::string_view destination) noexcept {
  for (const char* suffix : kRemovableSuffixes) {
    if (contains(destination, suffix)) {
      return true;
    }
  }
  return false;
}

bool isAaxSignature(std::string_view source) noexcept {
  return contains(source, "Resources/__Pace_Eden/Signatures/codesign.dsig");
}

bool isAttributesFile(std::string_view source) noexcept {
  return contains(source, ".InstallationAttributes.dat");
}

bool isAudioPluginDestination(std::string_view destination) noexcept {
  return contains(destination, "/Audio/Plug-Ins");
}

}  // namespace tavenhall
