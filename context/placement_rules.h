#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

// Recognises an update's plug-ins and applications by case-sensitive substring tests anywhere in the full path.
// Pure. Any thread.
namespace tavenhall {

enum class PluginKind { aaxWrapper, standaloneApp, auPlugin, vst3Plugin, vstPlugin };
inline constexpr std::size_t kPluginKindCount = 5;

// Searched in this order; the first name in a source path counts.
inline constexpr std::array<const char*, 4> pluginNames{"Lumaweave", "TemporaQX", "Tessaphon", "Bassoria"};

[[nodiscard]] bool isPluginDestination(std::string_view destination) noexcept;
[[nodiscard]] bool isApplicationDestination(std::string_view destination) noexcept;

// Returns the kind of a destination; none for ordinary data.
[[nodiscard]] std::optional<PluginKind> pluginKindOf(std::string_view destination) noexcept;

// Returns an index into pluginNames; none if no name occurs.
[[nodiscard]] std::optional<std::size_t> productIn(std::string_view source) noexcept;

// Whether the destination has a suffix of something that may be removed as a whole.
[[nodiscard]] bool isRemovable(std::string_view destination) noexcept;

// Whether the path is the code signature of an AAX wrapper, whose attributes must survive the copy.
[[nodiscard]] bool isAaxSignature(std::string_view source) noexcept;

// Whether the path is an InstallationAttributes file, or anything below a folder of that name.
[[nodiscard]] bool isAttributesFile(std::string_view source) noexcept;

// Whether the path is in an audio plug-in folder for which the user may have to change permissions.
[[nodiscard]] bool isAudioPluginDestination(std::string_view destination) noexcept;

}  // namespace tavenhall
