#include "host/author/set_images.h"
#include "host/author/split.h"
#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/stop_request.h"
#include "host/base/text.h"
#include "host/cli/command_line.h"
#include "host/cli/reading_progress.h"
#include "host/cli/verify_text.h"
#include "host/manifest/set_manifest.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <sys/stat.h>
#include <vector>

// The command that puts a library on discs.
namespace tavenhall {

namespace {

struct SplitArguments {
  SplitRequest request;
  std::string size;
  std::string reserve;
  std::string images;
  bool isCopied = false;
  bool isLinked = false;
  bool isDryRun = false;
};

// The names at the top of a disc's data folder: "Factory, User and 3 more".
std::string contentText(const Split& split, const Split::SplitDisc& disc) {
  constexpr std::size_t kShown = 4;
  std::set<std::string> names;
  for (const LibraryEntry& entry : disc.entries) {
    const std::string below = entry.path.substr(split.library.place.size() + 1);
    names.insert(below.substr(0, below.find('/')));
  }
  std::string text;
  std::size_t shown = 0;
  for (const std::string& name : names) {
    if (shown++ == kShown) {
      break;
    }
    text += (text.empty() ? "" : ", ") + printableLine(name);
  }
  return names.size() <= kShown
             ? text
             : text + ", " + format(_("and {0} more"), {std::to_string(names.size() - kShown)});
}

void printLayout(const Split& split, const DiscMedium& medium) {
  std::puts(plural("{0} disc ({1}), {2} in {3}:", "{0} discs ({1}), {2} in {3}:",
                   static_cast<std::int64_t>(split.discs.size()),
                   {medium.name, sizeText(split.library.bytes), printableLine(split.library.place)})
                .c_str());
  for (const Split::SplitDisc& disc : split.discs) {
    constexpr std::int64_t kPercent = 100;
    const auto files = std::count_if(disc.entries.begin(), disc.entries.end(),
                                     [](const LibraryEntry& entry) { return !entry.isFolder; });
    std::puts(("  " + disc.folder.filename().string()).c_str());
    std::puts(
        ("    " + plural("{0} file, {1}", "{0} files, {1}", files, {sizeText(disc.bytes)}) + "; " +
         format(_("{0}% of the room is used"), {std::to_string(disc.bytesOnDisc * kPercent / split.room)}) +
         ": " + contentText(split, disc))
            .c_str());
  }
  if (!split.library.leftOut.empty()) {
    std::puts(format(_("Left out, since it is beside the data folder: {0}"),
                     {printableLine(CLI::detail::join(split.library.leftOut, ", "))})
                  .c_str());
  }
  if (!split.dividedFolders.empty()) {
    std::puts(plural("{0} folder that would fit on a disc is divided, since that saves discs.",
                     "{0} folders that would fit on a disc are divided, since that saves discs.",
                     static_cast<std::int64_t>(split.dividedFolders.size()))
                  .c_str());
  }
}

// Whether hard links are possible between the two.
bool isOneDisk(const std::filesystem::path& library, const std::filesystem::path& set) {
  struct stat ofLibrary {};
  struct stat ofSet {};
  return stat(library.c_str(), &ofLibrary) == 0 && stat(set.c_str(), &ofSet) == 0 &&
         ofLibrary.st_dev == ofSet.st_dev;
}

void requireSpace(const Split& split, bool isCopied, bool hasImages) {
  std::int64_t largest = 0;
  std::int64_t needed = isCopied ? split.library.bytes : 0;
  for (const Split::SplitDisc& disc : split.discs) {
    largest = std::max(largest, disc.bytesOnDisc);
    needed += hasImages && !isCopied ? disc.bytesOnDisc : 0;
  }
  needed += hasImages && isCopied ? largest : 0;
  const std::optional<std::int64_t> free = freeBytesAt(split.set.string());
  if (free && *free < needed) {
    throw UsageError(format(_("{0} are needed in {1}, but {2} are free"),
                            {sizeText(needed), split.set.string(), sizeText(*free)}));
  }
}

void makeImages(const Split& split, const DiscMedium& medium, ImageKind kind, const StopRequest& stop) {
  std::int64_t bytes = 0;
  for (const Split::SplitDisc& disc : split.discs) {
    bytes += disc.bytesOnDisc;
  }
  std::vector<std::filesystem::path> images;
  {
    ReadingProgress progress(bytes);
    for (const Split::SplitDisc& disc : split.discs) {
      images.push_back(
          makeDiscImage(disc.folder, kind, medium.capacity, [&progress, &stop](std::int64_t added) {
            stop.throwIfCome();
            progress.add(added);
          }));
    }
  }
  printWritten(images);
}

Split planOrExplain(const SplitRequest& request) {
  try {
    return planSplit(request);
  } catch (const CannotSplit& error) {
    for (const std::string& problem : error.problems()) {
      std::fprintf(stderr, "%s\n", printableText(problem).c_str());
    }
    throw;
  }
}

SplitMethod methodOf(const SplitArguments& arguments) {
  return arguments.isCopied   ? SplitMethod::copy
         : arguments.isLinked ? SplitMethod::link
                              : SplitMethod::linkOrCopy;
}

ExitStatus splitLibrary(const SplitArguments& arguments) {
  SplitRequest request = arguments.request;
  request.medium = discMedium(arguments.size);
  request.reserve = arguments.reserve.empty() ? 0 : bytesFromText(arguments.reserve);
  const SplitLock lock(request.set);
  const Split split = planOrExplain(request);
  printLayout(split, request.medium);
  if (arguments.isDryRun) {
    return ExitStatus::success;
  }
  const bool isLinked = !arguments.isCopied && isOneDisk(split.library.folder, split.set);
  requireSpace(split, !isLinked, !arguments.images.empty());
  const StopRequest stop;
  try {
    ReadingProgress progress(split.library.bytes);
    makeDiscs(split, methodOf(arguments), [&progress, &stop](std::int64_t bytes) {
      stop.throwIfCome();
      progress.add(bytes);
    });
  } catch (const Stopped&) {
    throw UsageError(_("stopped; the set is as it was"), ExitStatus::failure);
  }
  const CheckedSet set = openCheckedSet({split.set, request.product, "Full", {}});
  SetFiles files = filesOfSet(set);
  if (files.bytes != split.library.bytes) {
    throw UsageError(
        format(_("the page would install {0} of the set, but the library has {1}; see tavinstall check"),
               {groupedNumber(files.bytes), groupedNumber(split.library.bytes)}),
        ExitStatus::failure);
  }
  try {
    if (request.hasManifest) {
      printWritten(writeManifestsWithProgress(set, files, &stop));
    }
    if (!arguments.images.empty()) {
      makeImages(split, request.medium, arguments.images == "iso" ? ImageKind::iso : ImageKind::squashfs, stop);
    }
  } catch (const Stopped&) {
    throw UsageError(_("stopped; the discs are complete, but a manifest or an image is missing"),
                     ExitStatus::failure);
  }
  std::puts(format(_("The set is complete: the page would install {0}. Next: {1}"),
                   {plural("{0} file, {1}", "{0} files, {1}", static_cast<std::int64_t>(files.sources.size()),
                           {sizeText(files.bytes)}),
                    "tavinstall check " + printableLine(split.set.string())})
                .c_str());
  return ExitStatus::success;
}

}  // namespace

void addSplitCommand(CommandLine& commandLine) {
  const auto arguments = std::make_shared<SplitArguments>();
  CLI::App* command = commandLine.program.add_subcommand("split", _("Put a library on the discs of a set"));
  command->add_option("LIBRARY", arguments->request.library, _("Folder with the library's files"))->required();
  command->add_option("SET", arguments->request.set, _("Set for discs, as new makes it"))->required();
  command
      ->add_option("--disc-size", arguments->size, _("dvd5, dvd9, bd25, bd50, usb:64g, or a number of bytes"))
      ->required()
      ->type_name("SIZE");
  command->add_option("--reserve", arguments->reserve, _("Leave so many bytes free on each disc (1g, 200m)"))
      ->type_name("SIZE");
  addProductOption(*command, arguments->request.product);
  command
      ->add_option("--full-only", arguments->request.fullOnly,
                   _("File or folder of the library that only the Full edition has; may be repeated"))
      ->allow_extra_args(false)
      ->type_name("PATH");
  CLI::Option* copy = command->add_flag("--copy", arguments->isCopied, _("Copy the files"));
  command->add_flag("--link", arguments->isLinked, _("Make hard links; by default only where possible"))
      ->excludes(copy);
  command
      ->add_option("--images", arguments->images,
                   _("Make an image of each disc: iso (to burn) or squashfs (to rehearse)"))
      ->check(oneOf({"iso", "squashfs"}))
      ->type_name("KIND");
  command->add_flag("--manifest", arguments->request.hasManifest,
                    _("Write the digests of all files, as manifest does"));
  command->add_flag("--dry-run", arguments->isDryRun, _("Show the layout; write nothing"));
  command->callback(
      [&commandLine, arguments] { commandLine.chosen = [arguments] { return splitLibrary(*arguments); }; });
}

}  // namespace tavenhall
