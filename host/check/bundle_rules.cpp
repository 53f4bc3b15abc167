#include "context/placement_rules.h"
#include "host/base/text.h"
#include "host/check/rules.h"

#include <algorithm>
#include <array>

namespace tavenhall {

namespace {

constexpr std::array<std::string_view, 8> kBundleSuffixes{".vst", ".vst3",   ".aaxplugin", ".component",
                                                          ".app", ".bundle", ".framework", ".plugin"};

// Shell metacharacters. Blanks have a diagnostic of their own.
constexpr std::string_view kShellCharacters = "\"'`$&|;<>()*?[]{}!#~\\\t\n";

// A plug-in or an application with everything inside it.
struct Item {
  std::string path;  // below the system folder
  std::string destination;
  std::vector<const TreeEntry*> inside;
};

std::string destinationOfEntry(const CheckedFolder& folder, const std::string& path) {
  return folder.folder.destination + "/" + path;
}

bool isPlaced(const std::string& destination) {
  return pluginKindOf(destination).has_value() || isApplicationDestination(destination);
}

// The outermost entries that the page treats as a plug-in or an application. The entries are sorted, so the
// content of an item follows it, though not immediately.
std::vector<Item> itemsOf(const CheckedFolder& folder) {
  std::vector<Item> items;
  for (const TreeEntry& entry : folder.tree.entries()) {
    if (entry.isHidden) {
      continue;
    }
    const std::string destination = destinationOfEntry(folder, entry.path);
    const auto outer = std::find_if(items.begin(), items.end(), [&entry](const Item& item) {
      return entry.path.starts_with(item.path + "/");
    });
    if (outer != items.end()) {
      outer->inside.push_back(&entry);
    } else if (isPlaced(destination)) {
      items.push_back({entry.path, destination, {}});
    }
  }
  return items;
}

class BundleRules {
 public:
  BundleRules(const CheckedFolder& folder, Diagnostics& diagnostics)
      : folder_(folder), diagnostics_(diagnostics) {}

  void check(const Item& item) {
    if (pluginKindOf(item.destination)) {
      checkProduct(item);
    }
    const bool isApplication = isApplicationDestination(item.destination);
    if (isApplication) {
      checkCommand(item);
    }
    checkPermissions(item, isApplication);
    checkLinks(item);
  }

 private:
  [[nodiscard]] std::string shown(const std::string& path) const { return folder_.shownRoot + "/" + path; }

  void checkProduct(const Item& item) {
    const auto product = productIn(folder_.folder.source + "/" + item.path);
    const auto own = productIn(item.path);
    if (!product) {
      diagnostics_.add("plugin-unknown", {shown(item.path)},
                       _("The path contains no product name, so the page copies over the installed plug-in and "
                         "leaves old files inside."));
    } else if (product != own) {
      diagnostics_.add(
          "product-in-path", {shown(item.path)},
          format(_("The package's own folder has the name {0} in its path, so the page takes this for "
                   "{0}'s, and removes an earlier one only of the first plug-in of its kind."),
                 {pluginNames[*product]}));
    }
  }

  void checkCommand(const Item& item) {
    const auto isSplit = [](const TreeEntry* entry) { return entry->path.find(' ') != std::string::npos; };
    const auto isRead = [](const TreeEntry* entry) { return hasShellCharacter(entry->path); };
    if (hasShellCharacter(item.destination) || std::any_of(item.inside.begin(), item.inside.end(), isRead)) {
      diagnostics_.add("app-path-shell", {shown(item.path)},
                       _("A path in the application contains a shell metacharacter, so the command that sets "
                         "its permissions does something else."));
    } else if (item.destination.find(' ') != std::string::npos) {
      diagnostics_.add("app-path-blank", {shown(item.path)},
                       _("The blank in this path breaks the command that sets the application's permissions, "
                         "so the application may not start."));
    } else if (std::any_of(item.inside.begin(), item.inside.end(), isSplit)) {
      diagnostics_.add("app-path-blank", {shown(item.path)},
                       _("Paths with blanks inside the application break their permission commands. The "
                         "command for the whole application compensates, and the log shows the failures."));
    }
  }

  void checkPermissions(const Item& item, bool isApplication) {
    const bool isOpenedLater = isApplication && item.destination.find(' ') == std::string::npos;
    const auto isProgram = [](const TreeEntry* entry) {
      return entry->kind == EntryKind::file && (entry->permissions & 0111U) != 0;
    };
    const auto programs = std::count_if(item.inside.begin(), item.inside.end(), isProgram);
    if (programs > 0 && !isOpenedLater) {
      diagnostics_.add("bundle-permissions", {shown(item.path)},
                       plural("{0} program file in the bundle will not be executable after the installation, "
                              "because the copy keeps no permissions.",
                              "{0} program files in the bundle will not be executable after the installation, "
                              "because the copy keeps no permissions.",
                              programs));
    }
  }

  void checkLinks(const Item& item) {
    const auto links = std::count_if(item.inside.begin(), item.inside.end(), [](const TreeEntry* entry) {
      return entry->kind == EntryKind::linkToFile;
    });
    if (links > 0) {
      diagnostics_.add("bundle-link", {shown(item.path)},
                       plural("{0} link in the bundle will be a copy of its target, so the bundle is larger "
                              "and its signature is invalid.",
                              "{0} links in the bundle will be copies of their targets, so the bundle is "
                              "larger and its signature is invalid.",
                              links));
    }
  }

  const CheckedFolder& folder_;
  Diagnostics& diagnostics_;
};

}  // namespace

bool hasShellCharacter(std::string_view path) noexcept {
  return path.find_first_of(kShellCharacters) != std::string::npos;
}

bool isInBundle(std::string_view path) noexcept {
  return std::any_of(kBundleSuffixes.begin(), kBundleSuffixes.end(), [path](std::string_view suffix) {
    const std::size_t found = path.find(suffix);
    return found != std::string_view::npos && path.find('/', found) == found + suffix.size();
  });
}

void checkBundles(const CheckedSet& checked, Diagnostics& diagnostics) {
  for (const CheckedFolder& folder : checked.systemFolders) {
    BundleRules rules(folder, diagnostics);
    for (const Item& item : itemsOf(folder)) {
      rules.check(item);
    }
  }
}

}  // namespace tavenhall
