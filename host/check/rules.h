#pragma once

#include "host/check/diagnostics.h"
#include "host/set/checked_set.h"

// What can be wrong with a set, one function a topic, each in a file of its name. They only look.
namespace tavenhall {

// attributes_rules: the file's place and bytes
void checkAttributesFile(const CheckedSet& checked, Diagnostics& diagnostics);

// key_rules: how its lines and keys are written
void checkKeys(const CheckedSet& checked, Diagnostics& diagnostics);

// value_rules: what the keys that count say
void checkValues(const CheckedSet& checked, Diagnostics& diagnostics);

// volume_rules: how the settings go together, the sizes and editions
void checkSettings(const CheckedSet& checked, Diagnostics& diagnostics);
void checkSizes(const CheckedSet& checked, Diagnostics& diagnostics);
void checkMachine(const CheckedSet& checked, Diagnostics& diagnostics);

// disc_rules: the discs and the data folders on them or beside the package
void checkDiscs(const CheckedSet& checked, Diagnostics& diagnostics);
void checkDataFolders(const CheckedSet& checked, Diagnostics& diagnostics);

// file_rules: what the copy makes of each file
void checkFiles(const CheckedSet& checked, Diagnostics& diagnostics);

// library_rules: the libraries of an update
void checkLibraries(const CheckedSet& checked, Diagnostics& diagnostics);

// bundle_rules: the plug-ins and applications of an update
void checkBundles(const CheckedSet& checked, Diagnostics& diagnostics);

}  // namespace tavenhall
