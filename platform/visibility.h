#pragma once

// Marks what the plug-in bundle exports; all else is compiled hidden.
#define TAVENHALL_EXPORT __attribute__((visibility("default")))
