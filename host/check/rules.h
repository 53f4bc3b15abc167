#pragma once

#include "host/check/remarks.h"
#include "host/set/checked_set.h"

// What can be wrong with a set, one function a topic, each in a file of its name. They only look.
namespace tavenhall {

// attributes_rules: the file's place and bytes
void checkAttributesFile(const CheckedSet& checked, Remarks& remarks);

// key_rules: how its lines and keys are written
void checkKeys(const CheckedSet& checked, Remarks& remarks);

// value_rules: what the keys that count say
void checkValues(const CheckedSet& checked, Remarks& remarks);

// volume_rules: how the settings go together, the sizes and editions
void checkSettings(const CheckedSet& checked, Remarks& remarks);
void checkSizes(const CheckedSet& checked, Remarks& remarks);
void checkMachine(const CheckedSet& checked, Remarks& remarks);

// disc_rules: the discs and the data folders on them or beside the package
void checkDiscs(const CheckedSet& checked, Remarks& remarks);
void checkDataFolders(const CheckedSet& checked, Remarks& remarks);

// file_rules: what the copy makes of each file
void checkFiles(const CheckedSet& checked, Remarks& remarks);

// library_rules: the libraries of an update
void checkLibraries(const CheckedSet& checked, Remarks& remarks);

// bundle_rules: the plug-ins and applications of an update
void checkBundles(const CheckedSet& checked, Remarks& remarks);

}  // namespace tavenhall
