#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

// How an update's plug-ins and applications are recognised: case-sensitive substring tests anywhere in the
// full path. Pure, like the install rules. Any thread.
namespace tavenhall {

enum class PluginKind { aaxWrapper, standaloneApp, auPlugin, vst3Plugin, vstPlugin };
inline constexpr std::size_t kPluginKindCount = 5;

// Searched in this order; the first name that occurs in a source path counts.
inline constexpr std::array<const char*, 4> pluginNames{"Lumaweave", "TemporaQX", "Tessaphon", "Bassoria"};

[[nodiscard]] bool isPluginDestination(std::string_view destination) noexcept;
[[nodiscard]] bool isApplicationDestination(std::string_view destination) noexcept;

// The kind of a destination; none for ordinary data.
[[nodiscard]] std::optional<PluginKind> pluginKindOf(std::string_view destination) noexcept;

// Index into pluginNames; none where no name occurs.
[[nodiscard]] std::optional<std::size_t> productIn(std::string_view source) noexcept;

// Does the destination bear a suffix of something that may be removed as a whole?
[[nodiscard]] bool isRemovable(std::string_view destination) noexcept;

// The code signature of an AAX wrapper, whose attributes must survive the copy.
[[nodiscard]] bool isAaxSignature(std::string_view source) noexcept;

// An InstallationAttributes file, or anything below a folder of that name.
[[nodiscard]] bool isAttributesFile(std::string_view source) noexcept;

// Part of the audio plug-in folders that the user may have to open up by hand.
[[nodiscard]] bool isAudioPluginDestination(std::string_view destination) noexcept;

}  // namespace tavenhall
