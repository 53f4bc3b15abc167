#pragma once

namespace tavenhall {

// A program may be started without some of its standard streams. Puts nothing in their places, so that no
// file that is opened later is taken for one: there is nothing to read, errors go nowhere, and writing the
// output fails. Before anything is opened.
void fillStandardStreams();

// Has all that was printed on standard output arrived? Throws UsageError where it has not, as on a full disk.
void requireOutputWritten();

}  // namespace tavenhall
