#include "host/check/check.h"

#include "host/check/rules.h"

namespace tavenhall {

CheckResult checkSet(const CheckRequest& request) {
  CheckResult result{openCheckedSet(request), {}};
  for (const auto rule :
       {checkSettings, checkAttributesFile, checkKeys, checkValues, checkSizes, checkMachine, checkDiscs,
        checkDataFolders, checkBoundary, checkFiles, checkLibraries, checkBundles}) {
    rule(result.checked, result.diagnostics);
  }
  result.diagnostics.sort();
  return result;
}

}  // namespace tavenhall
