#pragma once

#include "platform/installer_pane.h"

#include <filesystem>
#include <string>
#include <vector>

// What the rest of an installer does before the page is shown. Call these before any thread is started.
namespace tavenhall {

// The package's full path, as the page reads it. Throws UsageError where there is no such package, or where its
// path is too long for the page or holds a line break.
[[nodiscard]] std::filesystem::path packageLocation(const std::filesystem::path& package);

// Writes kLocationFile and, unless `installType` is empty, kInstallTypeFile, each as a new file, and creates
// Library/Caches and Library/Application Support in the home. The central data folder is not created: it comes
// with the package's own small files. Throws UsageError where something cannot be written, or where another
// user's file cannot be replaced.
void runPreInstallStep(const std::filesystem::path& package, const std::string& installType);

// Keeps other users from putting a choice of edition where the page looks for one, between the time when that
// place was examined and the time when the page reads it. Where there is no choice file, a link to itself takes
// its place, which the page finds like a missing file, and which nobody else can remove from a sticky folder.
// The engine removes it when the page has been entered; the destructor does otherwise.
class InstallTypePlace {
 public:
  InstallTypePlace() noexcept;
  InstallTypePlace(const InstallTypePlace&) = delete;
  InstallTypePlace& operator=(const InstallTypePlace&) = delete;
  ~InstallTypePlace();

  // Removes such a link of this user's, if there is one.
  static void clear() noexcept;
};

// Prevents two installs at a time from writing the same files or the same log. The locks are held until
// destruction or the end of the process.
//
// They are on folders themselves, so no file is made for them and none is left behind: on the user's
// Application Support folder, and on the data folders in it, also where those are links to folders that another
// user or another home has, too. Commands that the page runs do not hold them.
class InstallLock {
 public:
  // `mayMakeFolder`: make the folder where it is missing, as the pre-install step would do next. Throws
  // UsageError when another install has one of the locks. Without a folder there is nothing that two installs
  // could both write to; where the file system knows no such locks, installing is better than refusing.
  explicit InstallLock(bool mayMakeFolder);
  InstallLock(const InstallLock&) = delete;
  InstallLock& operator=(const InstallLock&) = delete;
  ~InstallLock();

 private:
  void add(const std::string& folder, const std::string& refusal);
  void close() noexcept;

  std::vector<int> folders_;
};

// The folder whose lock every install of this user takes; empty without a home. It may not exist.
[[nodiscard]] std::string installLockFolder();

// Whether an install of this user runs. Reads only; an InstallLock that is taken in the same moment waits for
// it.
[[nodiscard]] bool installRuns();

// Throws UsageError unless the folder has a plug-in's program.
void requireBundle(const std::filesystem::path& bundle);

// Loads the program of a plug-in bundle for the life of the process and returns its page factory. Throws
// UsageError.
[[nodiscard]] PageFactory loadBundle(const std::filesystem::path& bundle);

}  // namespace tavenhall
