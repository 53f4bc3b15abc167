#include "host/terminal/screen.h"

#include "host/base/display_text.h"
#include "host/base/text.h"
#include "host/base/unicode.h"
#include "host/terminal/palette.h"
#include "host/terminal/terminal_device.h"
#include "platform/host_system.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tavenhall {

namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
struct DeleteWindow {
  void operator()(WINDOW* window) const { delwin(window); }
};
struct DeletePanel {
  void operator()(PANEL* panel) const { del_panel(panel); }
};

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number_ >= 0) {
      close(number_);
    }
  }

  [[nodiscard]] int get() const { return number_; }

 private:
  int number_;
};

// A window of curses in the stack of panels; it goes before its window does.
class StackedWindow {
 public:
  explicit StackedWindow(Rect place)
      : place_(place),
        window_(newwin(place.rows, place.columns, place.row, place.column)),
        panel_(window_ ? new_panel(window_.get()) : nullptr) {}

  [[nodiscard]] Rect place() const { return place_; }
  [[nodiscard]] WINDOW* window() const { return window_.get(); }

 private:
  Rect place_;
  std::unique_ptr<WINDOW, DeleteWindow> window_;
  std::unique_ptr<PANEL, DeletePanel> panel_;
};

// Opens the terminal again with O_NONBLOCK, so that other users of the terminal are not affected. Curses then
// blocks neither on output nor on the rest of a mouse report. If opening is not permitted (after su), returns
// the standard stream itself.
int openTerminal(int standardStream) {
  constexpr int kFlags = O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;
  std::array<char, 256> name{};
  int terminal = ttyname_r(standardStream, name.data(), name.size()) == 0 ? open(name.data(), kFlags) : -1;
  if (terminal < 0) {
    terminal = open("/dev/tty", kFlags);
  }
  return terminal >= 0 ? terminal : fcntl(standardStream, F_DUPFD_CLOEXEC, 0);
}

// No clicks: if they are requested, curses replaces a press and a release that arrive together by a click, even
// with a mouseinterval() of 0.
constexpr mmask_t kMouseEvents = BUTTON1_PRESSED | BUTTON1_RELEASED | BUTTON2_PRESSED | BUTTON2_RELEASED |
                                 BUTTON3_PRESSED | BUTTON3_RELEASED | BUTTON4_PRESSED | BUTTON4_RELEASED |
                                 BUTTON5_PRESSED | BUTTON5_RELEASED;

std::optional<Input> mouseInput(const MEVENT& event) {
  const auto input = [&event](Input::Kind kind) { return Input{kind, 0, event.y, event.x}; };
  if ((event.bstate & BUTTON1_PRESSED) != 0) {
    return input(Input::Kind::click);
  }
  if ((event.bstate & BUTTON4_PRESSED) != 0) {
    return input(Input::Kind::wheelUp);
  }
  if ((event.bstate & BUTTON5_PRESSED) != 0) {
    return input(Input::Kind::wheelDown);
  }
  return std::nullopt;
}

// The mouse events since the last call, oldest first; curses returns the newest first.
std::vector<Input> mouseInputs() {
  std::vector<Input> inputs;
  for (MEVENT event{}; getmouse(&event) == OK;) {
    if (const auto input = mouseInput(event)) {
      inputs.insert(inputs.begin(), *input);
    }
  }
  return inputs;
}

}  // namespace

struct Screen::State {
  // In this order: what comes later goes first.
  const Descriptor output{openTerminal(STDOUT_FILENO)};
  std::unique_ptr<std::FILE, CloseFile> input;
  std::unique_ptr<std::FILE, CloseFile> spool;
  // Never deleted: the panel library keeps memory for each screen. There is one screen in a process.
  SCREEN* screen = nullptr;
  std::unique_ptr<Palette> palette;
  std::unique_ptr<ScreenRestorer> restorer;
  std::unique_ptr<WINDOW, DeleteWindow> keys;  // a pad, since reading from a window also draws it
  std::vector<std::unique_ptr<StackedWindow>> stack;
  std::string backlog;
  bool isGone = false;

  [[nodiscard]] Size terminalSize() const {
    winsize size{};
    if (ioctl(output.get(), TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0) {
      return {24, 80};
    }
    return {size.ws_row, size.ws_col};
  }

  void takeSpool() {
    const int file = fileno(spool.get());
    off_t rest = lseek(file, 0, SEEK_CUR);
    std::array<char, 16384> piece;
    for (off_t at = 0; at < rest;) {
      const ssize_t count = pread(file, piece.data(), std::min<std::size_t>(piece.size(), rest - at), at);
      if (count <= 0) {
        break;
      }
      backlog.append(piece.data(), static_cast<std::size_t>(count));
      at += count;
    }
    lseek(file, 0, SEEK_SET);
  }

  void drawLayer(const Layer& layer, WINDOW* window) const {
    werase(window);
    for (const Run& run : layer.runs) {
      const Palette::Look look = palette->look(run.style);
      wattr_set(window, look.attributes | (run.isUnderlined ? A_UNDERLINE : A_NORMAL), look.pair, nullptr);
      const int room = layer.place.columns - run.column;
      const std::u32string characters =
          decodeUtf8(displayWidth(run.text) > room ? truncateEnd(run.text, room) : run.text);
      const std::wstring text(characters.begin(), characters.end());
      mvwaddnwstr(window, run.row, run.column, text.data(), static_cast<int>(text.size()));
    }
    wattr_set(window, A_NORMAL, 0, nullptr);
  }
};

Screen::Screen(const std::string& atEnd) : state_(std::make_unique<State>()) {
  State& state = *state_;
  const int memory = openMemoryFile();
  state.input.reset(fdopen(openTerminal(STDIN_FILENO), "r"));
  state.spool.reset(memory < 0 ? nullptr : fdopen(memory, "w+"));
  if (state.output.get() < 0 || state.input == nullptr || state.spool == nullptr) {
    throw std::runtime_error(_("cannot open the terminal"));
  }
  state.screen = newterm(nullptr, state.spool.get(), state.input.get());
  if (state.screen == nullptr) {
    throw std::runtime_error(_("cannot use the terminal"));
  }
  state.restorer = std::make_unique<ScreenRestorer>(state.output.get(), leaveScreenSequence() + atEnd);
  state.palette = std::make_unique<Palette>();
  noecho();
  curs_set(0);
  typeahead(-1);
  set_escdelay(25);
  mousemask(kMouseEvents, nullptr);
  mouseinterval(0);
  state.keys.reset(newpad(1, 1));
  keypad(state.keys.get(), TRUE);
  nodelay(state.keys.get(), TRUE);
  takeNewSize();
}

Screen::~Screen() {
  State& state = *state_;
  // Wait a moment for a slow terminal; drop the rest of the output.
  pollfd output{state.output.get(), POLLOUT, 0};
  while (!state.backlog.empty() && !state.isGone && poll(&output, 1, 1000) > 0) {
    writeBacklog();
  }
  state.stack.clear();
  endwin();
}

Size Screen::size() const { return state_->terminalSize(); }

const Signs& Screen::signs() { return terminalHasSigns() ? unicodeSigns() : plainSigns(); }

void Screen::draw(const std::vector<Layer>& layers) {
  auto& stack = state_->stack;
  // Recreate all layers from the first that differs: a new panel is always on top.
  std::size_t same = 0;
  while (same < std::min(stack.size(), layers.size()) && stack[same]->place() == layers[same].place) {
    ++same;
  }
  while (stack.size() > same) {
    stack.pop_back();
  }
  for (std::size_t i = 0; i < layers.size(); ++i) {
    if (i >= same) {
      stack.push_back(std::make_unique<StackedWindow>(layers[i].place));
    }
    if (WINDOW* window = stack[i]->window()) {
      state_->drawLayer(layers[i], window);
    }
  }
  update_panels();
  doupdate();
  state_->takeSpool();
  writeBacklog();
}

void Screen::send(const std::string& sequences) {
  if (!sequences.empty()) {
    state_->backlog += sequences;
    writeBacklog();
  }
}

void Screen::takeNewSize() {
  const Size size = state_->terminalSize();
  state_->stack.clear();
  resizeterm(size.rows, size.columns);
  drawAllAnew();
}

void Screen::drawAllAnew() { clearok(curscr, TRUE); }

void Screen::comeBack() {
  endwin();  // the next drawing enters the full screen again
  state_->restorer->setScreenModes();
  takeNewSize();
}

std::vector<Input> Screen::read() {
  std::vector<Input> inputs;
  wint_t code = 0;
  for (int kind = 0; (kind = wget_wch(state_->keys.get(), &code)) != ERR;) {
    if (kind != KEY_CODE_YES) {
      inputs.push_back({Input::Kind::character, static_cast<std::int32_t>(code)});
    } else if (code != KEY_MOUSE) {
      inputs.push_back({Input::Kind::key, static_cast<std::int32_t>(code)});
    } else {
      const std::vector<Input> ofMouse = mouseInputs();
      inputs.insert(inputs.end(), ofMouse.begin(), ofMouse.end());
    }
  }
  return inputs;
}

void Screen::writeBacklog() {
  std::string& backlog = state_->backlog;
  pollfd output{state_->output.get(), POLLOUT, 0};
  while (!backlog.empty() && poll(&output, 1, 0) > 0) {
    // In pieces, for the one case in which a write may block.
    const ssize_t count = write(output.fd, backlog.data(), std::min<std::size_t>(backlog.size(), 1024));
    if (count > 0) {
      backlog.erase(0, static_cast<std::size_t>(count));
    } else if (count < 0 && errno != EAGAIN && errno != EINTR) {
      state_->isGone = true;
      backlog.clear();
    } else {
      return;
    }
  }
}

bool Screen::isBacklogged() const { return !state_->backlog.empty(); }

int Screen::inputDescriptor() const { return fileno(state_->input.get()); }

int Screen::outputDescriptor() const { return state_->output.get(); }

bool Screen::isGone() const { return state_->isGone; }

}  // namespace tavenhall
