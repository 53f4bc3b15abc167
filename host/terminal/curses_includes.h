#pragma once

// Curses without its macros, because they have common names: clear, move, timeout.
#define NCURSES_NOMACROS 1
#ifndef NCURSES_WIDECHAR
#define NCURSES_WIDECHAR 1
#endif
#include <curses.h>
#include <panel.h>
