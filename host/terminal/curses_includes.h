#pragma once

// Curses without its macros, whose names (clear, move, timeout) are words that everybody uses.
#define NCURSES_NOMACROS 1
#ifndef NCURSES_WIDECHAR
#define NCURSES_WIDECHAR 1
#endif
#include <curses.h>
#include <panel.h>
