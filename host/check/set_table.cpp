#include "host/check/diagnostic_table.h"

#include "host/base/text.h"

// Those of discs, folders, files and machines.
namespace tavenhall {

namespace {

constexpr DiagnosticKind kDiscsKinds[] = {
    {"disc-missing", Severity::error, false, N_("Add the disc, or correct NumberOfVolumes."),
     "The page asks for a disc that is not in the set.",
     "NumberOfVolumes = 3\ndiscs/1 Tavenhall Lumaweave\ndiscs/2 Tavenhall Lumaweave",
     "NumberOfVolumes = 2\ndiscs/1 Tavenhall Lumaweave\ndiscs/2 Tavenhall Lumaweave"},
    {"disc-name", Severity::error, false, N_("Rename the disc."),
     "The page looks for the disc under another name.", "discs/1 Tessaphon A", "discs/1 Tavenhall Tessaphon A"},
    {"disc-surplus", Severity::warning, true, N_("Add the disc, or correct NumberOfVolumes."),
     "There are more discs than `NumberOfVolumes`.",
     "NumberOfVolumes = 1\ndiscs/1 Tavenhall Lumaweave\ndiscs/2 Tavenhall Lumaweave",
     "NumberOfVolumes = 2\ndiscs/1 Tavenhall Lumaweave\ndiscs/2 Tavenhall Lumaweave"},
    {"disc-not-numbered", Severity::warning, false,
     N_("Name it by a number, a blank and the volume's name, or remove it."),
     "An entry of `discs` is not a folder or image whose name consists of a unique number, a blank, "
     "and the volume's name.",
     "discs/Tavenhall Lumaweave", "discs/1 Tavenhall Lumaweave"},
    {"discs-unused", Severity::warning, false, N_("Set the Mode to InstallFromVolumes, or remove the discs."),
     "There are discs, but the mode does not use them.", "Mode = DataUpdater\ndiscs/1 Tavenhall Lumaweave",
     "Mode = InstallFromVolumes\ndiscs/1 Tavenhall Lumaweave"},
    {"optional-disc-unreachable", Severity::error, false, N_("Put its data on another disc."),
     "The page has prompts with a Skip button for the Outrider discs (Northfield, Copper Lanes, "
     "Glass Rivers, Slow Bloom, Tin Parade), and no product reaches them.",
     "discs/2 Northfield DOVA Outrider", "discs/2 Tavenhall Tempora QX"},
    {"image-not-read", Severity::note, false, N_("Install squashfs-tools, or make the image again."),
     "The content of the image was not checked: `unsquashfs` is not installed, or the file is not an "
     "image.",
     "discs/1 Tavenhall Lumaweave.iso (a text)", "discs/1 Tavenhall Lumaweave.iso (an ISO 9660 image)"},
    {"disc-too-large", Severity::error, false, N_("Divide the library again, with tavinstall split."),
     "The content of a disc, with what its file system takes, is more than the `discSize` in "
     "`rehearsal.json`, which `tavinstall split` writes.",
     "\"discSize\": \"dvd5\", and 5 GB on disc 1", "\"discSize\": \"dvd5\", and 4.6 GB on disc 1"},
};

constexpr DiagnosticKind kDataFoldersKinds[] = {
    {"data-folder-missing", Severity::error, false, N_("Put the data folder there, spelt exactly so."),
     "A source has neither the data folder nor `Mac OSX` with it. With discs, the page asks for the "
     "disc again and again. Otherwise it shows \"Files to be installed not found.\" and ends. The "
     "names are case-sensitive.",
     "discs/1 Tavenhall Tessaphon A/Tanvo", "discs/1 Tavenhall Tessaphon A/TANVO"},
    {"data-folder-empty", Severity::warning, false, N_("Put files into the folder, or remove it."),
     "The data folder contains nothing that the page installs.", "discs/1 Tavenhall Lumaweave/DOVA/",
     "discs/1 Tavenhall Lumaweave/DOVA/Factory/one.db"},
    {"both-folders", Severity::warning, false, N_("Remove one of the two folders."),
     "Both data folders exist. The page does not use the one in `Mac OSX`.",
     "discs/1 Tavenhall Lumaweave/DOVA\ndiscs/1 Tavenhall Lumaweave/Mac OSX/DOVA",
     "discs/1 Tavenhall Lumaweave/DOVA"},
    {"nothing-to-install", Severity::error, false, N_("Put the update's data beside the package."),
     "An updater without content. The page would report success.", "Mode = TavenhallUpdater\nUpdate.pkg",
     "Mode = TavenhallUpdater\nUpdate.pkg\nFirst/TANVO/Tessaphon/one.db"},
};

constexpr DiagnosticKind kFilesKinds[] = {
    {"hidden-file", Severity::warning, false, N_("Rename it if it is to be installed."),
     "The page installs no file or folder whose name begins with a full stop, at any depth.",
     "discs/1 Tavenhall Lumaweave/DOVA/.kit.db", "discs/1 Tavenhall Lumaweave/DOVA/kit.db"},
    {"hidden-litter", Severity::note, false, N_("Remove the hidden files."),
     "The same, for files such as `.DS_Store` that nobody needs.",
     "discs/1 Tavenhall Lumaweave/DOVA/.DS_Store\ndiscs/1 Tavenhall Lumaweave/DOVA/one.db",
     "discs/1 Tavenhall Lumaweave/DOVA/one.db"},
    {"file-skipped", Severity::warning, false, N_("Rename it if it is to be installed."),
     "A file whose path contains `.InstallationAttributes.dat` anywhere, such as `Copy "
     "of.InstallationAttributes.dat`, is not installed.",
     "discs/1 Tavenhall Lumaweave/DOVA/Copy of.InstallationAttributes.dat",
     "discs/1 Tavenhall Lumaweave/DOVA/Attributes copy.dat"},
    {"link-copied", Severity::warning, false, N_("Put what the link leads to in its place."),
     "A link to a file is installed as a copy of the file.",
     "discs/1 Tavenhall Lumaweave/DOVA/kit.db -> other.db", "discs/1 Tavenhall Lumaweave/DOVA/kit.db"},
    {"link-to-folder", Severity::error, false, N_("Put what the link leads to in its place."),
     "A link to a folder is installed as an empty file, and the page reports a failure.",
     "discs/1 Tavenhall Lumaweave/DOVA/Kits -> Factory", "discs/1 Tavenhall Lumaweave/DOVA/Kits/one.db"},
    {"link-broken", Severity::error, false, N_("Put what the link leads to in its place."),
     "The target of a link does not exist, which fails the install. On a disc image the target must "
     "be on the same image.",
     "discs/1 Tavenhall Lumaweave/DOVA/kit.db -> gone.db", "discs/1 Tavenhall Lumaweave/DOVA/kit.db"},
    {"special-file", Severity::error, false, N_("Remove it from the set."),
     "A pipe, a socket or a device, which fails the install.",
     "discs/1 Tavenhall Lumaweave/DOVA/pipe (made by mkfifo)", "discs/1 Tavenhall Lumaweave/DOVA/kit.db"},
    {"not-readable", Severity::error, false, N_("Let everybody read it: chmod a+rX."),
     "No permission bit allows reading, or the check itself cannot list the folder. A file fails the "
     "install. The content of a folder is silently left out.",
     "-w------- one.db", "-rw-r--r-- one.db"},
    {"path-too-long", Severity::error, false, N_("Shorten the names in the path."),
     "The path of a source or a destination has more than 1023 bytes, on which the installer aborts. "
     "The check assumes that the name of the user's home has 20 bytes.",
     "discs/1 Tavenhall Lumaweave/DOVA/(1,000 letters).db", "discs/1 Tavenhall Lumaweave/DOVA/(50 letters).db"},
    {"case-clash", Severity::error, false, N_("Rename one of the two."),
     "Two names, on one volume or two, differ only in case. Most users' disks can store only one of "
     "the two files.",
     "Kits/Piano.db\nkits/piano.db", "Kits/Piano.db\nKits/Piano 2.db"},
    {"file-differs", Severity::error, false, N_("Keep one of the two files, or give both the same contents."),
     "Two discs have a file of the same path with different contents. The later one replaces the "
     "earlier one. In an image, only sizes are compared.",
     "discs/1 Tavenhall Lumaweave/DOVA/kit.db (one content)\ndiscs/2 Tavenhall Lumaweave/DOVA/kit.db (another)",
     "discs/1 Tavenhall Lumaweave/DOVA/kit.db"},
    {"composition-clash", Severity::error, false, N_("Rename one of the two."),
     "Two names differ only in how a letter is composed, such as an accent that follows its letter. "
     "A Mac shows them alike and keeps one of the two files.",
     "Café.db (an e and an accent)\nCafé.db (one letter)", "Café.db\nCafé 2.db"},
    {"name-not-utf8", Severity::error, false, N_("Rename it in UTF-8."),
     "A name is not UTF-8. Macs refuse such names, and discs cannot hold them.", "Caf\\xE9.db", "Café.db"},
    {"mode-bits-lost", Severity::warning, false,
     N_("Set the modes in a script after the installation, if they are needed."),
     "The copy keeps no setuid, setgid or sticky bit, and others may read a file that only its owner "
     "could read.",
     "-rwsr-xr-x helper", "-rwxr-xr-x helper"},
};

constexpr DiagnosticKind kUpdatesKinds[] = {
    {"too-many-libraries", Severity::error, false, N_("Divide the update in several."),
     "The page handles at most 50 libraries; each Mirel Pack counts as one.", "Second/TANVO/ with 60 folders",
     "Second/TANVO/ with 50 folders"},
    {"library-not-listed", Severity::warning, false, N_("Add the folder to the second component."),
     "The second component has no folder for a library of the first component, so the page does not "
     "detect its edition.",
     "First/TANVO/Tessaphon\nFirst/TANVO/Night Keys\nSecond/TANVO/Tessaphon",
     "First/TANVO/Tessaphon\nFirst/TANVO/Night Keys\nSecond/TANVO/Tessaphon\nSecond/TANVO/Night Keys"},
    {"folder-left-out", Severity::warning, false, N_("Move it into a library's folder, or remove it."),
     "The second component has an entry that is not a library of the list, so the page skips it. The "
     "list is the content of its `TANVO` folder, also for `DOVA`.",
     "Second/DOVA/Extras, without Second/TANVO/Extras", "Second/DOVA/Extras\nSecond/TANVO/Extras"},
    {"library-not-a-folder", Severity::warning, false, N_("Move it into a library's folder, or remove it."),
     "A file is among the libraries, and the page treats it as a library.", "Second/TANVO/readme.txt",
     "Second/TANVO/Tessaphon/readme.txt"},
    {"mirel-pack-unseen", Severity::warning, false, N_("Use exactly these folders, with a database in each."),
     "The page cannot detect the edition of a pack and assumes Full. It opens `Mirel "
     "Packs/NAME/Soundsources/Factory/NAME Library` and the first folder that the system lists "
     "there. In that folder it looks for a `.db` file: one below 1000 bytes is the stub of a Lite "
     "edition. So use exactly these names, and put a database into each of these folders.",
     "Mirel Packs/Velmora/Factory/a.db", "Mirel Packs/Velmora/Soundsources/Factory/Velmora Library/Keys/a.db"},
    {"plugin-unknown", Severity::warning, false, N_("Put the product's name into the path."),
     "The path of a plug-in or application contains none of the names Lumaweave, TemporaQX, "
     "Tessaphon and Bassoria. The page does not remove an earlier version first.",
     "Library/Audio/Plug-Ins/VST3/Night.vst3", "Library/Audio/Plug-Ins/VST3/Tessaphon.vst3"},
    {"product-in-path", Severity::warning, false, N_("Rename the folder."),
     "The path of the package's folder contains a product's name, so the page treats every plug-in "
     "as that product's. It removes only the first plug-in of each kind before it copies. Rename the "
     "folder.",
     "Tessaphon Update/Update.pkg", "Update/Update.pkg"},
    {"app-path-blank", Severity::warning, false, N_("Rename it without such characters."),
     "An application's path has a blank, which splits the command that opens its permissions: `sudo "
     "chmod -R 777 /Applications//My App.app`.",
     "Applications/My App.app", "Applications/MyApp.app"},
    {"app-path-shell", Severity::error, false, N_("Rename it without such characters."),
     "An application's path has a shell metacharacter, in `Applications` beside the package or in a "
     "folder of that name in an update's data.",
     "Applications/Tool;1.app", "Applications/Tool1.app"},
    {"signature-path-shell", Severity::error, false, N_("Rename it without such characters."),
     "The path of a plug-in's signature, or the path of the package above it, has a character that "
     "the shell reads between double quotes: `$`, a backquote, `\"` or a backslash.",
     "Library/Audio/Plug-Ins/VST3/Tessaphon $1.vst3", "Library/Audio/Plug-Ins/VST3/Tessaphon.vst3"},
    {"bundle-permissions", Severity::note, false,
     N_("Set the modes in a script after the installation, if they are needed."),
     "The copy keeps no permission bits, so programs in a bundle are not executable afterwards. "
     "Plug-ins work without that permission; helper programs in them do not.",
     "Tessaphon.component/Contents/helper (-rwxr-xr-x)", "a script of the package that makes it executable"},
    {"bundle-link", Severity::warning, false,
     N_("Put files in the place of the links before the bundle is signed."),
     "The copy keeps no links, so a bundle with links becomes larger, and its signature becomes "
     "invalid.",
     "Tessaphon.component/Contents/Current -> 1.0", "Tessaphon.component/Contents/Current/Tessaphon"},
};

constexpr DiagnosticKind kMachineKinds[] = {
    {"choice-file-stale", Severity::warning, false, N_("Remove the file, or use --install-type."),
     "`/tmp/TavInstallType` exists from an earlier install. It decides between Lite and Full until a "
     "package writes it again. Remove it, or use `--install-type`.",
     "/tmp/TavInstallType, from yesterday", "tavinstall check SET --install-type Full"},
    {"central-folder-missing", Severity::error, false, N_("Let the package lay down the folder."),
     "With `--installed`: the user has no data folder to install to. The package's own small files "
     "must contain it.",
     "~/Library/Application Support/Tavenhall", "~/Library/Application Support/Tavenhall/TANVO"},
};

constexpr DiagnosticKind kSetKinds[] = {
    {"outside-set", Severity::error, false, N_("Put it into the set, on the disc that needs it."),
     "A link is absolute, or leads out of the set or off its disc; or the package, the attributes "
     "file or the folder that `RelativePath` names is not in the set's folder. The user of the "
     "installer gets only the set. `tavinstall rehearse` refuses such a set unless you use "
     "`--allow-outside`.",
     "discs/1 Tavenhall Lumaweave/DOVA/kit.db -> /Users/me/kit.db", "discs/1 Tavenhall Lumaweave/DOVA/kit.db"},
    {"package-path", Severity::error, false, N_("Move the set to a shorter path without such characters."),
     "The package's path has a backslash or a line break, or more than 1022 bytes.",
     "Sets\\Lumaweave/Installer.pkg", "Sets/Lumaweave/Installer.pkg"},
    {"product-assumed", Severity::note, false, N_("Name the product with --product or in rehearsal.json."),
     "Neither `--product` nor `rehearsal.json` says which product it is.", "tavinstall check SET",
     "tavinstall check SET --product Lumaweave"},
};

}  // namespace

std::vector<DiagnosticTopic> setTopics() {
  return {
      {"Discs", "", kDiscsKinds},     {"Data folders", "", kDataFoldersKinds},   {"Files", "", kFilesKinds},
      {"Updates", "", kUpdatesKinds}, {"The user's machine", "", kMachineKinds}, {"The set", "", kSetKinds},
  };
}

}  // namespace tavenhall
