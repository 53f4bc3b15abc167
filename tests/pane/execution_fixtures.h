#pragma once

#include "tests/support/files.h"

#include <gtest/gtest.h>

// The suites of the part of the page that carries an install out; each is spread over several files.
namespace tavenhall::test {

class ExecutionTest : public testing::Test {
 protected:
  ExecutionTest() { makeFolder("/Users/tester/Library/Caches"); }  // where the log goes
};

class InstallDriver : public ExecutionTest {};
class VolumeLoop : public ExecutionTest {};
class VolumeCopy : public ExecutionTest {};
class CopyEngine : public ExecutionTest {};
class PluginPlacement : public ExecutionTest {};

}  // namespace tavenhall::test
